// What the driver's tests share: a driver as after loading, records in a line, and a controller that answers.
#ifndef VORNEX_TESTS_DRIVER_FIXTURE_H
#define VORNEX_TESTS_DRIVER_FIXTURE_H

#include <gtest/gtest.h>

#include <QtCore/QVector>

#include "driver/Communication_Protocol.h"

inline QByteArray hex(const char* text) {
    return QByteArray::fromHex(text);
}

inline QString text(const char* latin1) {
    return QString::fromLatin1(latin1);
}

// CRC-16/XMODEM bit by bit: slow, obvious, and not the code under test.
inline unsigned slowCrc(const QByteArray& bytes) {
    unsigned crc = 0;
    for (int i = 0; i < bytes.size(); ++i) {
        crc ^= static_cast<unsigned char>(bytes.at(i)) << 8;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x8000 ? crc << 1 ^ 0x1021 : crc << 1) & 0xFFFF;
    }
    return crc;
}

inline QByteArray sealed(QByteArray bytes) {
    const unsigned crc = slowCrc(bytes);
    return bytes.append(static_cast<char>(crc & 0xFF)).append(static_cast<char>(crc >> 8));
}

enum { LocalArea = 7, RemoteArea = 8 };

inline RW_VAR makeRequest(quint32 address, int length, int varId = 1, int station = 0) {
    RW_VAR request;
    request.varId = varId;
    request.areaId = LocalArea;
    request.address = address;
    request.length = length;
    request.station = station;
    return request;
}

inline RW_VAR makeWrite(quint32 address, const QByteArray& data, int varId = 1, int station = 0) {
    RW_VAR request = makeRequest(address, data.size(), varId, station);
    request.accessMode = 1;
    request.data = data;
    return request;
}

inline Label_Type_Info makeLabel(const char* name, int typeFlags, quint32 address,
                                 const QList<int>& dimensions = QList<int>()) {
    Label_Type_Info label;
    label.name = text(name);
    label.typeFlags = static_cast<quint16>(typeFlags | (dimensions.isEmpty() ? 0 : LabelIsArray));
    label.address = address;
    label.dimensions = dimensions;
    label.dimensionCount = static_cast<quint32>(dimensions.size() / 2);
    return label;
}

inline Label_Type_Info makeStruct(quint32 size, const QList<Label_Type_Info>& members) {
    Label_Type_Info type = makeLabel("", LabelIsStructType, size);
    type.members = members;
    type.memberCount = static_cast<quint32>(members.size());
    return type;
}

inline Label_Type_Info makeInstance(const char* name, quint32 address, const Label_Type_Info& type,
                                    const QList<int>& dimensions = QList<int>()) {
    Label_Type_Info label = makeLabel(name, StructTypeCode, address, dimensions);
    label.elementType.append(type);
    return label;
}

struct Notice {
    int varType;
    int varId;
    int state;
};

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

    // Back to the state after loading: the library has one object and no call that resets it.
    static void forget() {
        PLC_driver.readList.clear();
        PLC_driver.writeList.clear();
        PLC_driver.onceReadList.clear();
        PLC_driver.protocolList.clear();
        PLC_driver.groupList.clear();
        PLC_driver.dataImage.clear();
        PLC_driver.labelTable.clear();
        PLC_driver.labelCache.clear();
        PLC_driver.result = RW_VAR();
        PLC_driver.currentKind = NoRequestYet;
        PLC_driver.writeBurst = PLC_driver.onceReadBurst = PLC_driver.cycleCount = 0;
        PLC_driver.commFailed = false;
        EnableEthernet(-1, 0);
        notices().clear();
        failures().clear();
    }
};

#endif
