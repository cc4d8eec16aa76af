// Host threads beside the exchange thread. Worth most under the thread sanitizer; also checks what they may see.
#include <atomic>
#include <thread>
#include <vector>

#include "Driver_Fixture.h"
#include "label/Label_Resolution.h"

namespace {

// Each part runs on a thread of its own until the exchange is done.
class Threads : public Driver_Fixture {
protected:
    void exchangeFrames() {
        for (int i = 0; i < 3000 || reads < 100 || delivered == 0; ++i) {
            if (ComCommunication() == nullptr) continue;
            answer(i % 7 == 0 ? QByteArray() : goodReply());
        }
        done = true;
    }
    void writeValues() {
        for (int i = 0; !done; ++i) {
            QByteArray data(4, static_cast<char>(i));
            SetRegisterData(text("Wide"), 0, QString(), 0, &data, 2, 3, i);
        }
    }
    void rebuildTheList() {
        QList<HOST_VAR> definitions;
        HOST_VAR polled;
        polled.label = text("Value");
        polled.count = 2;
        definitions << polled;
        polled.label = text("Block[0]");
        polled.count = 1200;
        definitions << polled;
        while (!done) {
            QList<HOST_VAR> handedOver = definitions;
            ReCreatReadVarList(&handedOver);
            RW_VAR once = makeRequest(0, 600);
            once.label = text("Block[3]");
            AddListOnceReadVar(&once);
        }
    }
    void deliverLabels() {
        for (quint32 i = 1; !done; ++i) {
            QList<Label_Type_Info> fresh = {makeLabel("Other", 3, i), makeLabel("Value", 5, 0x100)};
            PassVarName_2(&fresh);
            delivered = i;
        }
    }
    void resolveLabels() {
        while (!done) {
            const quint32 before = delivered;
            if (before == 0) continue;
            ControlInformationM info;
            EXPECT_EQ(LabelOk, get_label_address(text("Other"), info));
            EXPECT_LE(before, info.address) << "an old definition after the delivery had returned";
            QString label = text("Block[%%]");
            EXPECT_EQ(LabelOk, get_label_address(label, 3));
            EXPECT_EQ(LabelPathMismatch, get_label_address(text("Other[1]"), info));
        }
    }
    void switchStations() {
        for (int i = 0; !done; ++i) {
            EnableEthernet(i % 3 + 1, i % 2);
            RW_VAR read = makeRequest(0x100, 4, -1, i % 4);
            if (i % 64 == 0) AddListReadVar(&read);
        }
    }
    void readValues() {
        const QByteArray unread(4, '\0');
        while (!done) {
            QByteArray out;
            EXPECT_EQ(1, GetRegisterData(text("Value"), 0, QString(), 0, &out, 2));
            if (out != unread) {
                EXPECT_EQ(hex("00010203"), out) << "a mix of old and new bytes";
            }
            ++reads;
        }
    }

    std::atomic<bool> done{false};
    std::atomic<int> reads{0};
    std::atomic<quint32> delivered{0};
};

TEST_F(Threads, hostThreadsBesideTheExchange) {
    settings.retryLimit = 1;
    QList<Label_Type_Info> labels = {makeLabel("Value", 5, 0x100), makeLabel("Block", 1, 0x400, {10, 0, 1200}),
                                     makeLabel("Wide", 3, 0x1000)};
    PassVarName_2(&labels);
    std::vector<std::thread> threads;
    threads.emplace_back([this] { exchangeFrames(); });
    threads.emplace_back([this] { writeValues(); });
    threads.emplace_back([this] { rebuildTheList(); });
    threads.emplace_back([this] { deliverLabels(); });
    threads.emplace_back([this] { resolveLabels(); });
    threads.emplace_back([this] { switchStations(); });
    readValues();
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_GE(reads, 100);
    EXPECT_GT(delivered, 0u);
}

}  // namespace
