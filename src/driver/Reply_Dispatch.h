// Result codes of the reply dispatch. On the exchange thread; no locks.
#ifndef VORNEX_DRIVER_REPLY_DISPATCH_H
#define VORNEX_DRIVER_REPLY_DISPATCH_H

#include "driver/Communication_Protocol.h"

// What became of a reply.
enum Reply_Check {
    CheckAccepted = 0,
    CheckBadReply = 1,
    CheckNoReply = 2,
    CheckWrongLength = 3,
    CheckRemoteNotStored = 4,  // good, but not stored; or stored as the second good reply of its request
    CheckRemoteBadReply = 5,
    CheckRemoteNoReply = 6,
    CheckRemoteWrongLength = 7,
};

// Result_Code of a Reply_Check, with the type offset of the request in flight; 200 for any other number.
VORNEX_EXPORT int GetDriverReturnValue(int check);

// base + 1 + type offset: the varType of the request in flight when it is 1 to 11, else 0.
VORNEX_EXPORT int SwitchErrorReturn(int base);

#endif
