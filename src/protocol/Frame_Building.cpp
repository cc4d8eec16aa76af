#include "protocol/Frame_Building.h"

#include "protocol/Check_Functions.h"
#include "protocol/Frame_Layout.h"

void putHeader(Frame_Writer& writer, int bodyLength, int command) {
    writer.put8(frame_layout::StartByte);
    writer.put16(static_cast<unsigned>(bodyLength));
    writer.put8(static_cast<unsigned>(command));
}

void putCheckValue(Frame_Writer& writer) {
    writer.put16(CalCRC(writer.begin(), static_cast<unsigned short>(writer.written())));
}

void putInFlight(const Protocol& protocol) {
    PLC_driver.protocolList.append(protocol);
    PLC_driver.settings().frameTotal = 1;
    PLC_driver.settings().frameDone = 0;
}
