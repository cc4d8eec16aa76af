// The one place where bytes become numbers and numbers bytes: low byte first, as on the wire.
#ifndef VORNEX_BASE_LITTLE_ENDIAN_H
#define VORNEX_BASE_LITTLE_ENDIAN_H

#include <QtCore/QByteArray>

#include <cstring>

// Fills a byte array that was sized once. The caller sizes it to what it writes: a write past the end is a defect of
// the caller and is dropped, never carried out.
class Frame_Writer {
public:
    explicit Frame_Writer(QByteArray& frame)
        : begin_(reinterpret_cast<unsigned char*>(frame.data())), at_(begin_), end_(begin_ + frame.size()) {}

    void put8(unsigned value) {
        if (at_ != end_) *at_++ = static_cast<unsigned char>(value);
    }
    void put16(unsigned value) {
        put8(value & 0xFF);
        put8(value >> 8 & 0xFF);
    }
    void put32(unsigned value) {
        put16(value & 0xFFFF);
        put16(value >> 16);
    }
    void putBytes(const QByteArray& bytes) {
        if (bytes.size() > end_ - at_) return;
        std::memcpy(at_, bytes.constData(), static_cast<size_t>(bytes.size()));
        at_ += bytes.size();
    }

    unsigned char* begin() const { return begin_; }
    int written() const { return static_cast<int>(at_ - begin_); }

private:
    unsigned char* const begin_;
    unsigned char* at_;
    unsigned char* const end_;
};

// A cursor over received bytes that cannot pass its end.
class Reply_Reader {
public:
    // Reads from `from` up to, not including, `to`; both are held inside the bytes.
    Reply_Reader(const QByteArray& bytes, int from, int to) {
        const int last = to < bytes.size() ? to : bytes.size();
        const int first = from < 0 ? 0 : from;
        at_ = reinterpret_cast<const unsigned char*>(bytes.constData()) + (first < last ? first : 0);
        left_ = first < last ? last - first : 0;
    }

    // False when the bytes do not reach: nothing is taken then.
    bool take16(int& value) {
        if (left_ < 2) return false;
        value = at_[0] | at_[1] << 8;
        at_ += 2;
        left_ -= 2;
        return true;
    }
    // The next `count` bytes, or null when they do not reach.
    const unsigned char* takeBytes(int count) {
        if (count < 0 || left_ < count) return nullptr;
        const unsigned char* const taken = at_;
        at_ += count;
        left_ -= count;
        return taken;
    }

private:
    const unsigned char* at_;
    int left_;
};

#endif
