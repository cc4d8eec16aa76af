#include "protocol/Func_Read.h"

#include <climits>

#include "protocol/Frame_Building.h"
#include "protocol/Frame_Layout.h"

using namespace frame_layout;

namespace {

QByteArray readFrame(const QList<RW_VAR>& ranges) {
    const int bodyLength = RangeSize * ranges.size();
    QByteArray frame(HeaderSize + bodyLength + CheckSize, '\0');
    Frame_Writer writer(frame);
    putHeader(writer, bodyLength, ReadCommand);
    for (int i = 0; i < ranges.size(); ++i) {
        writer.put32(ranges.at(i).address);
        writer.put16(static_cast<unsigned>(ranges.at(i).length));
    }
    putCheckValue(writer);
    return frame;
}

// Bytes of all items of the reply. Lengths come from the host's records: the sum is held at what the fields can say,
// where no reply will ever match.
int itemBytes(const QList<RW_VAR>& ranges) {
    qint64 bytes = 0;
    for (int i = 0; i < ranges.size(); ++i)
        bytes += CountSize + static_cast<qint64>(ranges.at(i).length);
    return static_cast<int>(qBound<qint64>(INT_MIN, bytes, INT_MAX - ShortestReply));
}

}  // namespace

void ReadRegister(RW_VAR* request) { ReadAnalog(request); }

void ReadAnalog(RW_VAR* request) {
    Protocol protocol;
    protocol.frame = readFrame(PLC_driver.groupList);
    protocol.frameLength = protocol.frame.size();
    protocol.payloadLength = itemBytes(PLC_driver.groupList);
    protocol.replyLength = ShortestReply + protocol.payloadLength;
    protocol.replyDataOffset = HeaderSize;
    protocol.request = *request;
    putInFlight(protocol);
}
