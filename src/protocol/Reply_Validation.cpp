#include "protocol/Reply_Validation.h"

#include "base/Little_Endian.h"
#include "protocol/Check_Functions.h"
#include "protocol/Frame_Layout.h"
#include "protocol/Func_DealData.h"

using namespace frame_layout;

int CheckGetData(const QByteArray* reply, int count) {
    if (reply == nullptr || count < ShortestReply || count > reply->size()) return BadReply;

    const int covered = count - CheckSize;
    int stored = 0;
    const bool taken = Reply_Reader(*reply, covered, count).take16(stored);
    // CalCRC does not write, its signature only says so.
    unsigned char* const bytes = reinterpret_cast<unsigned char*>(const_cast<char*>(reply->constData()));
    if (!taken || stored != CalCRC(bytes, static_cast<unsigned short>(covered))) return BadReply;
    return PLC_driver.protocolList.first().request.accessMode == 0 ? ReadReply : WriteReply;
}

Reply_Kind replyKind(const QByteArray& reply) {
    const Reply_Kind kind = static_cast<Reply_Kind>(CheckGetData(&reply, reply.size()));
    return kind == ReadReply && !replyItemsFit(reply) ? BadReply : kind;
}
