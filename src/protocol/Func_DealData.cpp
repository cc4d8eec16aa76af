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

// Bytes that are stored or read take one lookup each: by constFind as long as the image knows the addresses, from the
// first new one on by operator[], which creates what it does not find. operator[] alone would do, but it asks for each
// byte whether the image is shared and has to grow, which takes a quarter more instructions.

// The data image, out of the driver object while known bytes are looked up in it. As a local object it cannot change
// behind the compiler's back, and is not fetched anew after each byte.
class Borrowed_Image {
public:
    Borrowed_Image() REQUIRES(PLC_driver.dataMutex) {
        image_.swap(PLC_driver.dataImage);
        image_.detach();
    }
    ~Borrowed_Image() REQUIRES(PLC_driver.dataMutex) { image_.swap(PLC_driver.dataImage); }

    // The byte that is held for the address; null: none yet.
    unsigned char* find(unsigned int address) const {
        const QHash<unsigned int, unsigned char>::const_iterator found = image_.constFind(address);
        // Not const in truth: detached, the image's entries belong to it alone.
        return found == image_.constEnd() ? nullptr : const_cast<unsigned char*>(&*found);
    }

private:
    QHash<unsigned int, unsigned char> image_;
};

// Stores bytes from `at` on, up to `end` or the first address that the image does not know; returns how far it came.
// Here and below the lookups are compiled in line ("flatten"): calls would cost as much again.
__attribute__((flatten)) const unsigned char* storeKnown(unsigned int address, const unsigned char* at,
                                                         const unsigned char* end) REQUIRES(PLC_driver.dataMutex) {
    const Borrowed_Image image;
    for (; at != end; ++at, ++address) {
        unsigned char* const held = image.find(address);
        if (held == nullptr) break;
        *held = *at;
    }
    return at;
}

// Reads in the same way.
__attribute__((flatten)) char* readKnown(unsigned int address, char* __restrict at, const char* end)
    REQUIRES(PLC_driver.dataMutex) {
    const Borrowed_Image image;
    for (; at != end; ++at, ++address) {
        const unsigned char* const held = image.find(address);
        if (held == nullptr) break;
        *at = static_cast<char>(*held);
    }
    return at;
}

void storeBytes(unsigned int address, const unsigned char* bytes, int count) REQUIRES(PLC_driver.dataMutex) {
    const unsigned char* const end = bytes + count;
    for (const unsigned char* at = storeKnown(address, bytes, end); at != end; ++at)
        PLC_driver.dataImage[address + static_cast<unsigned int>(at - bytes)] = *at;
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

void readImage(unsigned int address, char* bytes, int count) {
    const char* const end = bytes + count;
    for (char* at = readKnown(address, bytes, end); at != end; ++at)
        *at = static_cast<char>(PLC_driver.dataImage[address + static_cast<unsigned int>(at - bytes)]);
}
