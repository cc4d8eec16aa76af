#include "driver/Reply_Dispatch.h"

#include <climits>

#include "base/Shared_Word.h"
#include "protocol/Func_DealData.h"
#include "protocol/Reply_Validation.h"

namespace {

// Third argument of the notify callback.
enum Notify_State { StateGood = 1, StateGivenUp = 2 };

bool isLocal(const RW_VAR& request) { return request.areaId == PLC_driver.settings().localAreaId; }

bool lengthDiffers(int expected, int length) { return expected != length && expected != -1; }

void storeReply(QByteArray& reply) {
    const Mutex_Lock lock(PLC_driver.dataMutex);
    SaveToLocalDataErea(&reply);
}

int checkLocalReply(QByteArray& reply, int length, int expected) {
    if (length == 0 && expected != 0) return CheckNoReply;
    if (expected == 0) return CheckAccepted;
    if (lengthDiffers(expected, length)) return CheckWrongLength;
    const Reply_Kind kind = replyKind(reply);
    if (kind == BadReply) return CheckBadReply;
    if (kind == ReadReply) storeReply(reply);
    return CheckAccepted;
}

int checkRemoteReply(QByteArray& reply, int length, int expected) {
    if (length == 0 && expected != 0) return CheckRemoteNoReply;
    if (lengthDiffers(expected, length)) return CheckRemoteWrongLength;
    if (replyKind(reply) == BadReply) return CheckRemoteBadReply;
    if (PLC_driver.protocolList.first().request.remoteStore != -1) return CheckRemoteNotStored;
    storeReply(reply);
    return PLC_driver.settings().frameDone == 1 ? CheckRemoteNotStored : CheckAccepted;
}

int checkReply(QByteArray* reply, int length, bool local) {
    QByteArray none;
    QByteArray& bytes = reply != nullptr ? *reply : none;
    const int expected = PLC_driver.protocolList.first().replyLength;
    return local ? checkLocalReply(bytes, length, expected) : checkRemoteReply(bytes, length, expected);
}

bool sameVariable(const RW_VAR& a, const RW_VAR& b) { return a.varType == b.varType && a.varId == b.varId; }

void notify(const RW_VAR& finished, Notify_State state) {
    if (PLC_driver.notifyFunc != nullptr)
        PLC_driver.notifyFunc(PLC_driver.settings().hostHandle, finished.varType, finished.varId, state);
}

// Whether another piece of the first entry's variable is queued behind it. `localOnly`: only pieces of the local area
// count.
bool morePieces(const QList<RW_VAR>& queue, bool localOnly) {
    for (int i = 1; i < queue.size(); ++i)
        if (sameVariable(queue.at(i), queue.first()) && (!localOnly || isLocal(queue.at(i)))) return true;
    return false;
}

// Tells the host of a variable once: when its last piece is done, or when a piece of it is given up.
void notifyHead(const QList<RW_VAR>& queue, bool localOnly, bool failed) {
    if (failed)
        notify(queue.first(), StateGivenUp);
    else if (!morePieces(queue, localOnly))
        notify(queue.first(), StateGood);
}

void finishHead(QList<RW_VAR>& queue) REQUIRES(PLC_driver.listMutex) {
    passRetValue(queue.at(0), PLC_driver.result);
    removeQueued(queue, 0);
}

// Moves the reads of the finished frame to the end of the cyclic list. When the list was rebuilt while the frame was in
// flight, its first entry is not marked as sent and nothing is moved.
void finishCyclicRead() REQUIRES(PLC_driver.listMutex) {
    QList<RW_VAR>& list = PLC_driver.readList;
    if (list.isEmpty() || list.first().status != StatusReplyPending) return;
    list.first().status = 0;
    passRetValue(list.first(), PLC_driver.result);
    rotate(list, PLC_driver.groupList.size());
}

void finishRequest(bool local, bool failed) REQUIRES(PLC_driver.listMutex) {
    if (PLC_driver.currentKind == Write && !PLC_driver.writeList.isEmpty()) {
        notifyHead(PLC_driver.writeList, false, failed);
        finishHead(PLC_driver.writeList);
    } else if (PLC_driver.currentKind == OnceRead && !PLC_driver.onceReadList.isEmpty()) {
        if (local) notifyHead(PLC_driver.onceReadList, true, failed);
        finishHead(PLC_driver.onceReadList);
    } else if (PLC_driver.currentKind == CyclicRead) {
        finishCyclicRead();
    }
}

// Removes the other pieces of the variable that was given up.
void dropPieces(QList<RW_VAR>& queue, const RW_VAR& failed) REQUIRES(PLC_driver.listMutex) {
    const bool minded = PLC_driver.settings().multiStation != 0;
    for (int i = queue.size() - 1; i >= 0; --i)
        if (sameVariable(queue.at(i), failed) && (!minded || queue.at(i).station == failed.station))
            removeQueued(queue, i);
}

void dropFailed() REQUIRES(PLC_driver.listMutex) {
    if (PLC_driver.failureFunc != nullptr) {
        QList<RW_VAR> none;
        PLC_driver.failureFunc(&none, PLC_driver.result.varType, 1);
    }
    if (PLC_driver.currentKind == Write) dropPieces(PLC_driver.writeList, PLC_driver.result);
    if (PLC_driver.currentKind == OnceRead) dropPieces(PLC_driver.onceReadList, PLC_driver.result);
}

// Counts a completed local request while finishFlag is 0, and sets the flag once more have been completed than the
// cyclic list has entries. Writes and one-shot reads count as well.
void countTowardsFullPass(bool local) REQUIRES(PLC_driver.listMutex) {
    if (!local || sharedRead(PLC_driver.settings().finishFlag) != 0) return;
    if (++PLC_driver.cycleCount <= PLC_driver.readList.size()) return;
    PLC_driver.cycleCount = 0;
    sharedWrite(PLC_driver.settings().finishFlag, 1);
}

void countFailure(int code, bool local) EXCLUDES(PLC_driver.listMutex) {
    ComInfo& settings = PLC_driver.settings();
    // Never reset by a good reply: the limit bounds the failures since the last give-up, whatever request they hit.
    if (settings.retryCount < INT_MAX) ++settings.retryCount;
    const Mutex_Lock lock(PLC_driver.listMutex);
    if (settings.retryCount <= settings.retryLimit) {
        PLC_driver.result.status = ResultRetrying;
        return;
    }
    settings.retryCount = 0;
    sharedWrite(PLC_driver.commFailed, true);
    PLC_driver.cycleCount = 0;
    sharedWrite(settings.finishFlag, 0);
    PLC_driver.protocolList.clear();
    finishRequest(local, true);
    dropFailed();
    PLC_driver.result.status = code;
}

void countGoodReply(int code, bool local) EXCLUDES(PLC_driver.listMutex) {
    ComInfo& settings = PLC_driver.settings();
    sharedWrite(PLC_driver.commFailed, false);
    ++settings.frameDone;
    const Mutex_Lock lock(PLC_driver.listMutex);
    PLC_driver.protocolList.removeFirst();
    if (settings.frameDone >= settings.frameTotal) {
        countTowardsFullPass(local);
        finishRequest(local, false);
    }
    PLC_driver.result.status = code;
}

// Needs no lock here: only the exchange thread touches the record, and the host reads it on that thread between calls.
RW_VAR& resultRecord() NO_THREAD_SAFETY_ANALYSIS { return PLC_driver.result; }

}  // namespace

RW_VAR* DataCom(QByteArray* reply, int length) {
    resultRecord().status = ResultGood;
    if (!PLC_driver.protocolList.isEmpty()) {
        const bool local = isLocal(PLC_driver.protocolList.first().request);
        const int code = GetDriverReturnValue(checkReply(reply, length, local));
        if (code == ResultGood || code == ResultGoodRemote)
            countGoodReply(code, local);
        else
            countFailure(code, local);
    }
    return &resultRecord();
}

int GetDriverReturnValue(int check) {
    switch (check) {
        case CheckAccepted: return ResultGood;
        case CheckBadReply: return SwitchErrorReturn(ResultBadReply - 1);
        case CheckNoReply: return SwitchErrorReturn(ResultNoReply - 1);
        case CheckWrongLength: return SwitchErrorReturn(ResultWrongLength - 1);
        case CheckRemoteNotStored: return ResultGoodRemote;
        case CheckRemoteBadReply: return SwitchErrorReturn(ResultRemoteBadReply - 1);
        case CheckRemoteNoReply: return SwitchErrorReturn(ResultRemoteNoReply - 1);
        case CheckRemoteWrongLength: return SwitchErrorReturn(ResultRemoteWrongLength - 1);
        default: return ResultUnknownCheck;
    }
}

int SwitchErrorReturn(int base) {
    const int varType = PLC_driver.protocolList.isEmpty() ? 0 : PLC_driver.protocolList.first().request.varType;
    const bool known = varType >= 1 && varType <= 11;
    return base + 1 + (known ? varType : 0);
}
