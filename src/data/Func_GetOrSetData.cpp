// Values by label, for the host: out of the data image, into it, and to the controller.
#include "base/Byte_Count.h"
#include "base/Shared_Word.h"
#include "label/Label_Resolution.h"
#include "protocol/Func_DealData.h"

namespace {

// ComInfo::writeMode: host writes go to the controller. Any other value: to the data image alone.
enum { WriteToController = 2 };

// Bytes of one write request at most.
enum { WriteChunkBytes = 1000 };

// Type code 2 comes as one 16-bit word an element and goes as one byte.
enum { WordPerByteCode = 2 };

// What the host finds for a label that does not resolve.
QByteArray zeroValue(int count) { return QByteArray(heldValueBytes(2LL * count), '\0'); }

// The host's value as controller bytes; empty for types that cannot be written.
QByteArray controllerBytes(int typeCode, int count, const QByteArray& data) {
    const bool writable = typeCode >= 1 && typeCode <= 9;
    QByteArray bytes(writable ? heldValueBytes(CountToBytes(typeCode, count)) : 0, '\0');
    const int step = typeCode == WordPerByteCode ? 2 : 1;
    const int given = qMin(bytes.size(), data.size() / step);
    char* const to = bytes.data();
    for (int i = 0; i < given; ++i)
        to[i] = data.at(i * step);
    return bytes;
}

// While the link is down the host still sees what it wrote; the frame builder does it otherwise.
void writeChunk(RW_VAR& request) {
    if (PLC_driver.settings().writeMode != WriteToController) {
        WriteDataToLocal(&request);
        return;
    }
    AddListWriteVar(&request);
    if (sharedRead(PLC_driver.commFailed)) WriteDataToLocal(&request);
}

void writeChunks(RW_VAR& request, const QByteArray& bytes) {
    for (int offset = 0; offset < bytes.size(); offset += request.length) {
        request.data = bytes.mid(offset, WriteChunkBytes);
        request.length = request.data.size();
        writeChunk(request);
        request.address += static_cast<quint32>(request.length);
    }
}

}  // namespace

int GetRegisterData(QString label, int, QString labelIndex, int, QByteArray* out, int count) {
    if (out == nullptr) return 0;
    ControlInformationM info;
    if (resolveHostLabel(label, labelIndex, info) != HostLabelResolved) {
        *out = zeroValue(count);
        return 0;
    }
    // The host's array keeps its memory from one read to the next; every byte of it is written.
    out->resize(heldValueBytes(CountToBytes(info.typeCode, count)));
    const Mutex_Lock lock(PLC_driver.dataMutex);
    readImage(info.address, out->data(), out->size());
    return 1;
}

int SetRegisterData(QString label, int dataType, QString labelIndex, int station, QByteArray* data, int count,
                    int varType, int varId) {
    if (data == nullptr) return 0;
    ControlInformationM info;
    const Host_Label outcome = resolveHostLabel(label, labelIndex, info);
    if (outcome == HostLabelNotRewritten) *data = zeroValue(count);
    if (outcome != HostLabelResolved) return 0;

    const ComInfo& settings = PLC_driver.settings();
    RW_VAR request;
    request.varType = varType;
    request.varId = varId;
    request.accessMode = 1;
    request.remoteMode = settings.remoteMode;
    request.areaId = settings.localAreaId;
    request.label = label;
    request.labelIndex = labelIndex;
    request.dataType = dataType;
    request.address = info.address;
    request.station = settings.multiStation != 0 ? station : settings.stationNo;
    writeChunks(request, controllerBytes(info.typeCode, count, *data));
    return 0;
}
