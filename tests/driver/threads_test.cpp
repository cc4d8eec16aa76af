// Host threads beside the exchange thread. Worth most under the thread sanitizer; also checks what they may see.
#include <atomic>
#include <thread>

#include "Driver_Fixture.h"
#include "label/Label_Resolution.h"

namespace {

class Threads : public Driver_Fixture {};

TEST_F(Threads, HostThreadsBesideTheExchange) {
    settings.retryLimit = 1;
    QList<Label_Type_Info> labels = {makeLabel("Value", 5, 0x100), makeLabel("Block", 1, 0x400, {10, 0, 1200}),
                                     makeLabel("Wide", 3, 0x1000)};
    PassVarName_2(&labels);
    std::atomic<bool> done{false};

    std::atomic<int> reads{0};

    std::thread exchangeThread([&done, &reads] {
        for (int i = 0; i < 3000 || reads < 100; ++i) {
            if (ComCommunication() == nullptr) continue;
            answer(i % 7 == 0 ? QByteArray() : goodReply());
        }
        done = true;
    });
    std::thread writer([&done] {
        for (int i = 0; !done; ++i) {
            QByteArray data(4, static_cast<char>(i));
            SetRegisterData(text("Wide"), 0, QString(), 0, &data, 2, 3, i);
        }
    });
    std::thread rebuilder([&done] {
        while (!done) {
            QList<HOST_VAR> definitions;
            HOST_VAR value;
            value.label = text("Value");
            value.count = 2;
            definitions << value;
            value.label = text("Block[0]");
            value.count = 1200;
            definitions << value;
            ReCreatReadVarList(&definitions);
            RW_VAR once = makeRequest(0, 600);
            once.label = text("Block[3]");
            AddListOnceReadVar(&once);
        }
    });
    std::atomic<quint32> delivered{0};
    std::thread definer([&done, &delivered] {
        for (quint32 i = 1; !done; ++i) {
            QList<Label_Type_Info> fresh = {makeLabel("Other", 3, i), makeLabel("Value", 5, 0x100)};
            PassVarName_2(&fresh);
            delivered = i;
        }
    });
    std::thread resolver([&done, &delivered] {
        while (delivered == 0 && !done)
            std::this_thread::yield();
        while (!done) {
            const quint32 before = delivered;
            ControlInformationM info;
            const int result = get_label_address(text("Other"), info);
            EXPECT_EQ(0, result * static_cast<int>(before));
            EXPECT_LE(before, info.address);  // never an old definition once the delivery has returned
            QString label = text("Block[%%]");
            EXPECT_EQ(0, get_label_address(label, 3));
            EXPECT_EQ(1, get_label_address(text("Other[1]"), info));
        }
    });
    std::thread switcher([&done] {
        for (int i = 0; !done; ++i) {
            EnableEthernet(i % 3 + 1, i % 2);
            RW_VAR read = makeRequest(0x100, 4, -1, i % 4);
            if (i % 64 == 0) AddListReadVar(&read);
        }
    });
    while (!done) {
        QByteArray out;
        EXPECT_EQ(1, GetRegisterData(text("Value"), 0, QString(), 0, &out, 2));
        EXPECT_TRUE(out == QByteArray(4, '\0') || out == hex("00010203")) << out.toHex().constData();  // never a mix
        ++reads;
    }
    exchangeThread.join();
    writer.join();
    rebuilder.join();
    definer.join();
    resolver.join();
    switcher.join();
}

}  // namespace
