#include "protocol/Func_DealData.h"

#include "base/Byte_Count.h"
#include "base/Little_Endian.h"
#include "protocol/Frame_Layout.h"

namespace {

// groupList is changed by the exchange thread alone, and only that thread stores replies.
const QList<RW_VAR>& servedRequests() NO_THREAD_SAFETY_ANALYSIS { return PLC_driver.groupList; }

// A reader over the item area: from the first item to the check value.
Reply_Reader itemReader(const QByteArray& reply) {
    const int from = PLC_driver.protocolList.first().replyDataOffset;
    return Reply_Reader(reply, from, reply.size() - frame_layout::CheckSize);
}

// Its lookups are compiled in line ("flatten"): as calls, they take a third more instructions for each byte.
__attribute__((flatten)) void storeBytes(unsigned int address, const unsigned char* bytes, int count)
    REQUIRES(PLC_driver.dataMutex) {
    // operator[] finds the entry or creates it with 0: one lookup for both.
    for (int i = 0; i < count; ++i)
        PLC_driver.dataImage[address + static_cast<unsigned>(i)] = bytes[i];
}

}  // namespace

unsigned int ExtendFindSameVar(const unsigned int& address) {
    PLC_driver.dataImage[address];
    return address;
}

bool replyItemsFit(const QByteArray& reply) {
    Reply_Reader reader = itemReader(reply);
    int count = 0;
    for (int i = 0; i < servedRequests().size(); ++i)
        if (!reader.take16(count) || reader.takeBytes(count) == nullptr) return false;
    return true;
}

void SaveToLocalDataErea(QByteArray* reply) {
    if (PLC_driver.protocolList.isEmpty() || !replyItemsFit(*reply)) return;
    const QList<RW_VAR>& requests = servedRequests();
    Reply_Reader reader = itemReader(*reply);
    for (int i = 0; i < requests.size(); ++i) {
        int count = 0;
        if (!reader.take16(count)) return;
        storeBytes(requests.at(i).address, reader.takeBytes(count), count);
    }
}

void WriteDataToLocal(RW_VAR* request) {
    const int length = heldValueBytes(request->length);
    const QByteArray& data = request->data;
    const int known = qMin(length, data.size());

    const Mutex_Lock lock(PLC_driver.dataMutex);
    storeBytes(request->address, reinterpret_cast<const unsigned char*>(data.constData()), known);
    for (int i = known; i < length; ++i)
        PLC_driver.dataImage[request->address + static_cast<unsigned>(i)] = 0;
}

__attribute__((flatten)) void readImage(unsigned int address, char* bytes, int count) {
    for (int i = 0; i < count; ++i)
        bytes[i] = static_cast<char>(PLC_driver.dataImage[address + static_cast<unsigned>(i)]);
}
