// Layout of the frames, drawn byte by byte in docs/wire-format.md. Sizes are in bytes.
#ifndef VORNEX_PROTOCOL_FRAME_LAYOUT_H
#define VORNEX_PROTOCOL_FRAME_LAYOUT_H

namespace frame_layout {

enum {
    StartByte = 0x02,
    ReadCommand = 0x41,   // "A"
    WriteCommand = 0x40,  // "@"

    HeaderSize = 1 + 2 + 1,  // start, body length, command; in a reply: not examined
    CheckSize = 2,           // CalCRC over all bytes before it
    RangeSize = 4 + 2,       // address, byte count
    CountSize = 2,           // of a reply item, before its data

    ShortestReply = HeaderSize + CheckSize,

    // Ranges in one read frame: the body length and the count of CalCRC are 16-bit numbers.
    MostRanges = (0xFFFF - HeaderSize) / RangeSize,
};

}  // namespace frame_layout

#endif
