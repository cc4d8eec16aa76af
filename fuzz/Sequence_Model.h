// What the sequence fuzzer's model knows beside the driver: labels, the image, writes.
#ifndef VORNEX_FUZZ_SEQUENCE_MODEL_H
#define VORNEX_FUZZ_SEQUENCE_MODEL_H

#include <algorithm>

#include "Driver_Records.h"
#include "Fuzz_Input.h"

// The labels, all known to the model: name, type code, address, host units in one element.
struct Known_Label {
    QString name;
    QString nameInTemplate;  // with index 2
    int typeCode;
    quint32 address;
    int elementBytes;
};
const Known_Label Labels[] = {{text("V"), text("V"), 5, 0x100, 4},
                              {text("W"), text("W"), 3, 0x1000, 2},
                              {text("Q"), text("Q"), 8, 0xFFFFFFF8, 8},
                              {text("B[2]"), text("B[%%]"), 1, 0x402, 1}};

inline int bytesOf(const Known_Label& label, int count) {
    const int units = label.elementBytes == 1 ? 1 : label.elementBytes / 2;  // host units in an element
    return (count + units - 1) / units * label.elementBytes;
}

// What the driver's image must hold. The labels lie close together, from 8 below address 0 on, so that a plain array
// does: a hash as the driver's own would take half of the fuzzer's time.
class Image_Model {
public:
    Image_Model() { std::fill_n(bytes, Size, -1); }

    void store(quint32 address, const QByteArray& data) {
        for (int i = 0; i < data.size(); ++i)
            set(address + static_cast<quint32>(i), static_cast<unsigned char>(data.at(i)));
    }
    // A byte that was never stored shows as 0, and is in the image from then on.
    unsigned show(quint32 address) {
        short& byte = slot(address);
        if (byte < 0) set(address, 0);
        return static_cast<unsigned>(byte);
    }
    bool equals(const QHash<unsigned int, unsigned char>& image) {
        for (auto byte = image.constBegin(); byte != image.constEnd(); ++byte)
            if (slot(byte.key()) != byte.value()) return false;
        return image.size() == known;
    }

private:
    enum { Size = 0x1800, First = -8 };

    short& slot(quint32 address) {
        const quint32 at = address - static_cast<quint32>(First);
        REQUIRE(at < Size);
        return bytes[at];
    }
    void set(quint32 address, unsigned char value) {
        short& byte = slot(address);
        known += byte < 0 ? 1 : 0;
        byte = value;
    }

    short bytes[Size];  // -1: not in the image
    int known = 0;
};

struct Model_Write {
    quint32 address;
    QByteArray data;
    int varId;
    int station;
};

inline unsigned byteAt(const QByteArray& bytes, int at) { return static_cast<unsigned char>(bytes.at(at)); }
inline quint32 wordAt(const QByteArray& bytes, int at) {
    return byteAt(bytes, at) | byteAt(bytes, at + 1) << 8 | byteAt(bytes, at + 2) << 16 | byteAt(bytes, at + 3) << 24;
}

#endif
