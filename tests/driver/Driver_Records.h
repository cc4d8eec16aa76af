// Records in a line, an independent check value, and a driver as after loading: for tests and fuzzers.
#ifndef VORNEX_TESTS_DRIVER_RECORDS_H
#define VORNEX_TESTS_DRIVER_RECORDS_H

#include <QtCore/QVector>

#include "Test_Bytes.h"
#include "driver/Communication_Protocol.h"

inline QByteArray hex(const char* text) { return QByteArray::fromHex(text); }

inline QString text(const char* latin1) { return QString::fromLatin1(latin1); }

inline std::string plain(const QByteArray& bytes) {
    return std::string(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

// The bytes with their check value behind them; the check value is not that of the code under test.
inline QByteArray sealed(const QByteArray& bytes) {
    const std::string whole = vornex::test::sealed(plain(bytes));
    return QByteArray(whole.data(), static_cast<int>(whole.size()));
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

// Back to the state after loading: the library has one object and no call that resets it.
inline void forgetEverything() {
    PLC_driver.readList.clear();
    PLC_driver.writeList.clear();
    PLC_driver.onceReadList.clear();
    PLC_driver.protocolList.clear();
    PLC_driver.groupList.clear();
    PLC_driver.dataImage.clear();
    PLC_driver.labelTable.clear();
    PLC_driver.labelCache.clear();
    PLC_driver.result = RW_VAR();
    PLC_driver.ownSettings = ComInfo();
    SetComInfo(nullptr);
    PLC_driver.currentKind = NoRequestYet;
    PLC_driver.writeBurst = PLC_driver.onceReadBurst = PLC_driver.cycleCount = 0;
    PLC_driver.commFailed = false;
    EnableEthernet(-1, 0);
}

#endif
