// The records that host and driver exchange by pointer, and the host's two callbacks.
//
// Both sides work on the same bytes: field order and widths are part of the binary interface, pinned by the
// assertions at the end of this file in units of the pointer size. Build both sides against the same Qt.
#ifndef VORNEX_LABEL_TCP_HOST_RECORDS_H
#define VORNEX_LABEL_TCP_HOST_RECORDS_H

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>

#include <cstddef>

// Bytes of host data between HOST_VAR::station and HOST_VAR::labelIndex, which the driver does not read. It has to
// match the host's record; with natural alignment, 1 puts labelIndex at offset 4 on the board.
#ifndef VORNEX_HOST_VAR_DATA_BYTES
#define VORNEX_HOST_VAR_DATA_BYTES 1
#endif
#if VORNEX_HOST_VAR_DATA_BYTES < 1
#error "VORNEX_HOST_VAR_DATA_BYTES must be at least 1 (1 and 0 give the same layout)"
#endif

// Result codes in RW_VAR::status. In the bands the type offset is added: varType when it is 1 to 11, else 0.
enum Result_Code {
    ResultRetrying = 0,             // a failed frame stays in flight: send it again
    ResultGood = 1,                 // good reply
    ResultBadReply = 11,            // 11 to 22: given up, local area: too short, wrong check value or wrong item counts
    ResultNoReply = 41,             // 41 to 52: given up, local area: no reply where one was expected
    ResultWrongLength = 71,         // 71 to 82: given up, local area: reply of another length than expected
    ResultGoodRemote = 100,         // good remote-area reply that was not stored, or the second one of a request
    ResultRemoteBadReply = 111,     // 111 to 122: given up, remote area, as 11 to 22
    ResultRemoteNoReply = 141,      // 141 to 152: given up, remote area, as 41 to 52
    ResultRemoteWrongLength = 171,  // 171 to 182: given up, remote area, as 71 to 82
    ResultUnknownCheck = 200,       // never given
};

// One variable request: a read or a write of a run of controller bytes.
struct RW_VAR {
    int varType = 0;      // host's type code of the variable; 1 to 11 choose the offset in the error bands
    int varId = 0;        // host's identifier; (varType, varId) name the variable in callbacks and clean-up
    int accessMode = 0;   // 0 read, else write
    int remoteMode = 0;   // copy of ComInfo::remoteMode, never tested
    int areaId = 0;       // copy of ComInfo::localAreaId; equal to the current one: local area, else remote area
    int status = 0;       // result code (docs/host-interface.md); -1 in the cyclic list: sent, reply pending
    QString label;        // label text
    QString labelIndex;   // decimal number put into a label template; empty means 0
    int dataType = 0;     // host's data type code; copied, and compared by the duplicate test of one-shot reads
    quint32 address = 0;  // controller byte address of the first byte
    int station = 0;      // station (controller) number
    int length = 0;       // bytes
    int remoteStore = 0;  // -1: a remote-area reply is stored; request builders set 0
    int reserved14 = 0;   // request builders set 0
    QByteArray data;      // bytes to write; empty for reads
};

// One prepared request frame and the request it serves.
struct Protocol {
    QByteArray frame;         // bytes to send
    int frameLength = 0;      // bytes of frame, the two check bytes included
    int replyLength = 0;      // bytes the reply must have; 0: none is expected, -1: any length is taken
    int replyDataOffset = 0;  // position of the first data item in the reply: 4 for reads, 0 for writes
    int payloadLength = 0;    // reads: sum of (2 + length) of the requests served; writes: 0
    RW_VAR request;           // the request served, for a group its first one
    int spare1 = 0;
    int spare2 = 0;
    int spare3 = 0;
};

// The host's settings. The host owns the record and may make it longer; the driver reads and updates these words in
// place. The host changes them only while no entry point runs, or on the exchange thread between two calls;
// finishFlag may be read at any time.
struct ComInfo {
    qint32 hostWord0 = 0;
    qint32 hostWord1 = 0;
    qint32 hostWord2 = 0;
    qint32 hostWord3 = 0;
    qint32 maxBytesPerRequest = 0;  // bytes of one read request at most; longer ones are cut; at least 1
    qint32 hostWord5 = 0;
    qint32 stationNo = 0;     // station of every request while multiStation is 0
    qint32 retryLimit = 0;    // failed replies borne before the driver gives up
    qint32 retryCount = 0;    // driver: failed replies since the last give-up
    qint32 multiStation = 0;  // nonzero: each request carries its own station, and a give-up minds it
    qint32 reserved10 = 0;    // SetComInfo sets 0
    qint32 frameTotal = 0;    // driver: good replies that complete the request in flight
    qint32 frameDone = 0;     // driver: good replies received for it
    qint32 reserved13 = 0;    // SetComInfo sets 0
    qint32 remoteMode = 0;    // nonzero: no frames are built, the remote hooks take the requests
    qint32 localAreaId = 0;   // area that is handled as local
    qint32 writeMode = 0;     // 2: host writes go to the controller; else to the data image alone
    qint32 finishFlag = 0;    // driver: 1 when more requests have completed than the cyclic list has entries, or when
                              // nothing is to be sent; 0 after a rebuild or a give-up
    qint32 hostHandle = 0;    // first argument of the notify callback
};

// The host's definition of one variable to poll.
struct HOST_VAR {
    quint8 hostByte = 0;                               // the host's own, not read
    quint8 dataType = 0;                               // host's data type code, copied to the request
    quint8 station = 0;                                // used while ComInfo::multiStation is nonzero
    quint8 hostData[VORNEX_HOST_VAR_DATA_BYTES] = {};  // the host's own, not read
    QString labelIndex;                                // decimal number put into a label template; empty means 0
    QString label;                                     // label text
    int count = 0;  // size of the variable: bytes for type codes 1, 2, 10, 11; 16-bit words for 3 to 9
};

// Reports that a variable's write or one-shot read is finished: state 1 good, 2 given up. Runs on the thread that
// called DataCom with listMutex held: it must not call AddList..., ReCreatReadVarList, SetRegisterData,
// ComCommunication or DataCom.
typedef void (*Notify_Func)(int hostHandle, int varType, int varId, int state);

// Called once for each request the driver gives up on, with an empty list, the varType of the result record and
// flag 1. Same thread, lock and restrictions as Notify_Func.
typedef void (*Failure_Func)(QList<RW_VAR>* requests, int varType, int flag);

namespace vornex_host_records_layout {
enum { P = sizeof(void*), HostData = VORNEX_HOST_VAR_DATA_BYTES };
constexpr unsigned roundUp(unsigned bytes) { return (bytes + P - 1) / P * P; }

static_assert(sizeof(QString) == P && sizeof(QByteArray) == P, "Qt values are one pointer (Qt 4 and 5, not 6)");

static_assert(offsetof(RW_VAR, varType) == 0 && offsetof(RW_VAR, varId) == 4, "varType, varId");
static_assert(offsetof(RW_VAR, accessMode) == 8 && offsetof(RW_VAR, remoteMode) == 12, "accessMode, remoteMode");
static_assert(offsetof(RW_VAR, areaId) == 16 && offsetof(RW_VAR, status) == 20, "areaId, status");
static_assert(offsetof(RW_VAR, label) == 24 && offsetof(RW_VAR, labelIndex) == 24 + P, "label, labelIndex");
static_assert(offsetof(RW_VAR, dataType) == 24 + 2 * P && offsetof(RW_VAR, address) == 28 + 2 * P, "dataType, address");
static_assert(offsetof(RW_VAR, station) == 32 + 2 * P && offsetof(RW_VAR, length) == 36 + 2 * P, "station, length");
static_assert(offsetof(RW_VAR, remoteStore) == 40 + 2 * P, "remoteStore");
static_assert(offsetof(RW_VAR, reserved14) == 44 + 2 * P && offsetof(RW_VAR, data) == 48 + 2 * P, "reserved14, data");
static_assert(sizeof(RW_VAR) == 48 + 3 * P, "RW_VAR: 60 bytes on the board");

static_assert(offsetof(Protocol, frame) == 0 && offsetof(Protocol, frameLength) == P, "frame, frameLength");
static_assert(offsetof(Protocol, replyLength) == P + 4, "replyLength");
static_assert(offsetof(Protocol, replyDataOffset) == P + 8, "replyDataOffset");
static_assert(offsetof(Protocol, payloadLength) == P + 12, "payloadLength");
static_assert(offsetof(Protocol, request) == P + 16, "request");
static_assert(offsetof(Protocol, spare1) == 64 + 4 * P && offsetof(Protocol, spare2) == 68 + 4 * P, "spare1, spare2");
static_assert(offsetof(Protocol, spare3) == 72 + 4 * P, "spare3");
static_assert(sizeof(Protocol) == roundUp(76 + 4 * P), "Protocol: 92 bytes on the board");

static_assert(offsetof(ComInfo, maxBytesPerRequest) == 4 * 4, "maxBytesPerRequest");
static_assert(offsetof(ComInfo, stationNo) == 4 * 6 && offsetof(ComInfo, retryLimit) == 4 * 7, "stationNo, retryLimit");
static_assert(offsetof(ComInfo, retryCount) == 4 * 8, "retryCount");
static_assert(offsetof(ComInfo, multiStation) == 4 * 9, "multiStation");
static_assert(offsetof(ComInfo, reserved10) == 4 * 10 && offsetof(ComInfo, reserved13) == 4 * 13, "reserved words");
static_assert(offsetof(ComInfo, frameTotal) == 4 * 11 && offsetof(ComInfo, frameDone) == 4 * 12, "frame counters");
static_assert(offsetof(ComInfo, remoteMode) == 4 * 14, "remoteMode");
static_assert(offsetof(ComInfo, localAreaId) == 4 * 15, "localAreaId");
static_assert(offsetof(ComInfo, writeMode) == 4 * 16, "writeMode");
static_assert(offsetof(ComInfo, finishFlag) == 4 * 17, "finishFlag");
static_assert(offsetof(ComInfo, hostHandle) == 4 * 18 && sizeof(ComInfo) == 4 * 19, "hostHandle");

static_assert(offsetof(HOST_VAR, dataType) == 1 && offsetof(HOST_VAR, station) == 2, "dataType, station");
static_assert(offsetof(HOST_VAR, hostData) == 3, "hostData");
static_assert(offsetof(HOST_VAR, labelIndex) == roundUp(3 + HostData), "labelIndex");
static_assert(offsetof(HOST_VAR, label) == roundUp(3 + HostData) + P, "label");
static_assert(offsetof(HOST_VAR, count) == roundUp(3 + HostData) + 2 * P, "count");
static_assert(sizeof(HOST_VAR) == roundUp(roundUp(3 + HostData) + 2 * P + 4), "HOST_VAR: 16 bytes on the board");
}  // namespace vornex_host_records_layout

#endif
