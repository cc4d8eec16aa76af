#include "driver/Communication_Protocol.h"

VORNEX_EXPORT Communication_Protocol PLC_driver;

Communication_Protocol::Communication_Protocol()
    : comInfo(nullptr),
      notifyFunc(nullptr),
      failureFunc(nullptr),
      currentKind(NoRequestYet),
      writeBurst(0),
      onceReadBurst(0),
      cycleCount(0),
      commFailed(false),
      spareFlag(false),
      labelGeneration(0) {}

void passRetValue(const RW_VAR& source, RW_VAR& target) {
    target = source;
    target.data.clear();
}
