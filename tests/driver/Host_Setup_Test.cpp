// Calls that a host makes too early or with null: none crashes, each gives its result for "nothing".
#include <functional>

#include "Driver_Fixture.h"
#include "driver/Host_Setup.h"

namespace {

// A driver as after loading, but for one label.
class Early_Call : public Driver_Fixture {
protected:
    void SetUp() override {
        forgetEverything();
        RegistCallBackFuncIntf(nullptr, nullptr);
        QList<Label_Type_Info> labels = {makeLabel("W", 3, 0x100), makeLabel("A", 3, 0x200, {10, 0, 5})};
        PassVarName_2(&labels);
    }
};

HOST_VAR pollOf(const char* label) {
    HOST_VAR definition;
    definition.label = text(label);
    definition.count = 1;
    return definition;
}

RW_VAR readOf(const char* label) {
    RW_VAR read = makeRequest(0, 2);
    read.label = text(label);
    return read;
}

int rebuild(QList<HOST_VAR> definitions) { return ReCreatReadVarList(&definitions); }
int write(const char* label, QByteArray data) { return SetRegisterData(text(label), 0, text("1"), 0, &data, 1, 0, 0); }
int read(const char* label, QByteArray& out) { return GetRegisterData(text(label), 0, text("1"), 0, &out, 1); }

struct Call_Row {
    const char* name;
    std::function<int()> call;
    int result;
};

TEST_F(Early_Call, nothingIsSetYet) {
    QByteArray out;
    RW_VAR once = readOf("W");
    RW_VAR byTemplate = readOf("A[%%]");
    RW_VAR queued = makeWrite(0x100, "xy");
    RW_VAR polled = makeRequest(0x100, 2);
    const Call_Row rows[] = {
        {"no frame", [] { return ComCommunication() == nullptr ? 0 : 1; }, 0},
        {"reply without a frame", [] { return DataCom(nullptr, 0)->status; }, 1},
        {"QueryFinishFlag", [] { return QueryFinishFlag(); }, 1},
        {"PLCAddressChangeIntef", [] { return PLCAddressChangeIntef(1, text("D100")); }, 0},
        {"station off", [] { return EnableEthernet(4, 0), Ethernetcontains(4) ? 1 : 0; }, 1},
        {"station on", [] { return EnCommStation(4, 1), Ethernetcontains(4) ? 1 : 0; }, 0},
        {"areas", [] { return FlashLocalRegister(nullptr, &PLC_driver, nullptr), LW == &PLC_driver ? 1 : 0; }, 1},
        {"one-shot read", [&once] { return AddListOnceReadVar(&once); }, 0},
        {"one-shot read by template", [&byTemplate] { return AddListOnceReadVar(&byTemplate); }, 0},
        {"rebuild",
         [] {
             return rebuild({pollOf("W"), pollOf("A[%%]")});
         },
         0},
        {"value written", [] { return write("W", hex("D204")); }, 0},
        {"value written by template", [] { return write("A[%%]", hex("0102")); }, 0},
        {"value read", [&out] { return read("W", out); }, 1},
        {"value read by template", [&out] { return read("A[%%]", out); }, 1},
        {"unknown value read", [&out] { return read("Nope", out); }, 0},
        {"write request", [&queued] { return AddListWriteVar(&queued); }, 1},
        {"read request", [&polled] { return AddListReadVar(&polled); }, 1},
    };
    for (const Call_Row& row : rows)
        EXPECT_EQ(row.result, row.call()) << row.name;
    EXPECT_EQ(2, once.length);
    EXPECT_EQ(1, read("W", out));
    EXPECT_EQ(hex("d204"), out) << "a write reaches the image alone";
    EXPECT_EQ(1, read("A[1]", out));
    EXPECT_EQ(hex("0102"), out);
}

// Complete requests need no settings: they are sent, answered, and given up at the first failed reply.
TEST_F(Early_Call, completeRequestsGoTheirWay) {
    for (const int areaId : {0, static_cast<int>(RemoteArea)}) {
        RW_VAR write = makeWrite(0x100, "xy");
        RW_VAR polled = makeRequest(0x200, 2);
        write.areaId = polled.areaId = areaId;
        AddListReadVar(&polled);
        for (const bool answered : {true, false}) {
            AddListWriteVar(&write);
            ASSERT_NE(nullptr, ComCommunication());
            const int good = areaId == 0 ? 1 : 100;
            const int failed = areaId == 0 ? 41 : 141;
            EXPECT_EQ(answered ? good : failed, answer(answered ? goodReply() : QByteArray()));
            EXPECT_EQ(0x200, exchange());
            EXPECT_TRUE(PLC_driver.writeList.isEmpty());
        }
        PLC_driver.readList.clear();
    }
    EXPECT_EQ(nullptr, ComCommunication());
}

TEST_F(Early_Call, nullIsNothing) {
    ComInfo host;
    host.maxBytesPerRequest = 200;
    host.writeMode = 2;
    const Call_Row rows[] = {
        {"PassVarName_2", [] { return PassVarName_2(nullptr), PLC_driver.labelCache.size(); }, 0},
        {"AddListWriteVar", [] { return AddListWriteVar(nullptr); }, 0},
        {"AddListReadVar", [] { return AddListReadVar(nullptr); }, 0},
        {"AddListOnceReadVar", [] { return AddListOnceReadVar(nullptr); }, 0},
        {"ReCreatReadVarList", [] { return ReCreatReadVarList(nullptr); }, 0},
        {"GetRegisterData", [] { return GetRegisterData(text("W"), 0, QString(), 0, nullptr, 1); }, 0},
        {"SetRegisterData", [] { return SetRegisterData(text("W"), 0, QString(), 0, nullptr, 1, 0, 0); }, 0},
        {"SetRegisterData, no template",
         [] { return SetRegisterData(text("Nope[%%]"), 0, QString(), 0, nullptr, 1, 0, 0); }, 0},
        {"DataCom", [] { return DataCom(nullptr, 6)->status; }, 1},
        {"ComCommunication", [] { return ComCommunication() == nullptr ? 0 : 1; }, 0},
    };
    for (ComInfo* const set : {static_cast<ComInfo*>(nullptr), &host}) {
        SetComInfo(set);
        for (const Call_Row& row : rows)
            EXPECT_EQ(row.result, row.call()) << row.name;
        EXPECT_TRUE(PLC_driver.dataImage.isEmpty()) << "nothing may be written or looked up";
    }
    rebuild({pollOf("W")});
    EXPECT_EQ(0, ReCreatReadVarList(nullptr));
    EXPECT_TRUE(PLC_driver.readList.isEmpty()) << "null counts as an empty list";
}

TEST_F(Early_Call, settingsComeAndGo) {
    ComInfo host;
    host.maxBytesPerRequest = 200;
    host.reserved10 = host.reserved13 = 5;
    host.hostWord0 = 6;
    SetComInfo(&host);
    EXPECT_EQ(0, host.reserved10);
    EXPECT_EQ(0, host.reserved13);
    EXPECT_EQ(6, host.hostWord0);
    EXPECT_EQ(1, rebuild({pollOf("W")}));
    SetComInfo(nullptr);
    host.finishFlag = 7;
    EXPECT_EQ(0, rebuild({pollOf("W")})) << "on settings of its own again";
    EXPECT_EQ(7, host.finishFlag) << "and off the host's";
}

}  // namespace
