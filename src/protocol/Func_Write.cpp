#include "protocol/Func_Write.h"

#include "base/Shared_Word.h"
#include "protocol/Frame_Building.h"
#include "protocol/Frame_Layout.h"
#include "protocol/Func_DealData.h"

using namespace frame_layout;

void WriteRegister(RW_VAR* request) {
    WriteAnalog(request);
    if (!sharedRead(PLC_driver.commFailed)) WriteDataToLocal(request);
}

void WriteAnalog(RW_VAR* request) {
    const int bodyLength = RangeSize + request->data.size();

    Protocol protocol;
    protocol.frame = QByteArray(HeaderSize + bodyLength + CheckSize, '\0');
    Frame_Writer writer(protocol.frame);
    putHeader(writer, bodyLength, WriteCommand);
    writer.put32(request->address);
    writer.put16(static_cast<unsigned>(request->length));
    writer.putBytes(request->data);
    putCheckValue(writer);

    protocol.frameLength = protocol.frame.size();
    protocol.replyLength = ShortestReply;
    protocol.request = *request;
    putInFlight(protocol);
}
