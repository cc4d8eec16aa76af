#include "protocol/Func_Read.h"

#include <climits>

#include "protocol/Frame_Layout.h"
#include "protocol/Frame_Queue.h"

using namespace frame_layout;

void ReadRegister(RW_VAR* request) {
    ReadAnalog(request);
}

void ReadAnalog(RW_VAR* request) {
    const QList<RW_VAR>& group = PLC_driver.groupList;
    const int bodyLength = RangeSize * group.size();

    Protocol protocol;
    protocol.frame = QByteArray(HeaderSize + bodyLength + CheckSize, '\0');
    Frame_Writer writer(protocol.frame);
    putHeader(writer, bodyLength, ReadCommand);
    qint64 payload = 0;
    for (int i = 0; i < group.size(); ++i) {
        const RW_VAR& range = group.at(i);
        writer.put32(range.address);
        writer.put16(static_cast<unsigned>(range.length));
        payload += CountSize + range.length;
    }
    putCheckValue(writer);

    // Lengths come from the host's records: held at what the fields can say, where no reply will ever match.
    const qint64 held = qBound<qint64>(INT_MIN, payload, INT_MAX - ShortestReply);
    protocol.frameLength = protocol.frame.size();
    protocol.replyLength = static_cast<int>(ShortestReply + held);
    protocol.replyDataOffset = HeaderSize;
    protocol.payloadLength = static_cast<int>(held);
    protocol.request = *request;
    putInFlight(protocol);
}
