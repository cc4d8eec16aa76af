// What the driver's tests share: a driver as after loading and a controller that answers.
#ifndef VORNEX_TESTS_DRIVER_FIXTURE_H
#define VORNEX_TESTS_DRIVER_FIXTURE_H

#include <gtest/gtest.h>

#include "Driver_Records.h"
#include "Qt_Printing.h"

struct Notice {
    int varType;
    int varId;
    int state;
};

inline QList<quint32> addressesOf(const QList<RW_VAR>& list) {
    QList<quint32> addresses;
    for (const RW_VAR& request : list)
        addresses.append(request.address);
    return addresses;
}

class Driver_Fixture : public testing::Test {
public:
    static QList<Notice>& notices() {
        static QList<Notice> list;
        return list;
    }
    static QList<int>& failures() {
        static QList<int> list;
        return list;
    }

protected:
    ComInfo settings;

    void SetUp() override {
        forget();
        settings.maxBytesPerRequest = 200;
        settings.retryLimit = 2;
        settings.writeMode = 2;
        settings.localAreaId = LocalArea;
        settings.hostHandle = 4711;
        SetComInfo(&settings);
        RegistCallBackFuncIntf(onNotify, onFailure);
    }
    void TearDown() override { forget(); }

    // The good reply to the frame in flight, each data byte the low byte of its address.
    static QByteArray goodReply() {
        QByteArray reply("HEAD");
        if (PLC_driver.protocolList.first().request.accessMode == 0)
            for (const RW_VAR& range : PLC_driver.groupList) {
                reply.append(static_cast<char>(range.length & 0xFF)).append(static_cast<char>(range.length >> 8));
                for (int i = 0; i < range.length; ++i)
                    reply.append(static_cast<char>(range.address + static_cast<unsigned>(i)));
            }
        return sealed(reply);
    }
    static int answer(QByteArray reply) { return DataCom(&reply, reply.size())->status; }

    // One whole exchange; the address of the request served, or -1 when there was nothing to send.
    static qint64 exchange() {
        const Protocol* const protocol = ComCommunication();
        if (protocol == nullptr) return -1;
        const qint64 address = protocol->request.address;
        answer(goodReply());
        return address;
    }

private:
    static void onNotify(int hostHandle, int varType, int varId, int state) {
        EXPECT_EQ(4711, hostHandle);
        notices().append(Notice{varType, varId, state});
    }
    static void onFailure(QList<RW_VAR>* requests, int varType, int flag) {
        EXPECT_TRUE(requests->isEmpty());
        EXPECT_EQ(1, flag);
        failures().append(varType);
    }

    static void forget() {
        forgetEverything();
        notices().clear();
        failures().clear();
    }
};

#endif
