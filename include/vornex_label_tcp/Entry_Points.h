// The driver's entry points. This is the one header a host includes.
//
// The host looks these names up with dlsym, or links the library; they carry no type information. The driver has no
// thread, timer or socket and writes no messages: everything happens inside these calls, none of which blocks for
// the controller. docs/host-interface.md tells the whole story with every result code.
//
// Threads: "exchange thread" is the one thread on which the host calls ComCommunication and DataCom in turn. "Any"
// is any host thread, at any time after set-up, also beside the exchange. "Set-up" is any thread while no other
// entry point runs.
//
// Every pointer must be valid, except where null is allowed. The host keeps what it owns: the driver copies what it
// needs and frees nothing of the host's.
#ifndef VORNEX_LABEL_TCP_ENTRY_POINTS_H
#define VORNEX_LABEL_TCP_ENTRY_POINTS_H

#include "Host_Records.h"
#include "Label_Records.h"

#define VORNEX_EXPORT __attribute__((visibility("default")))

extern "C" {

// --- Set-up ---------------------------------------------------------------------------------------------------------

// Makes `settings` the record the driver works on and sets its words reserved10 and reserved13 to 0. The record must
// live as long as the driver is used; a later call switches to another record.
// Thread: set-up, before anything is queued. Locks: none.
VORNEX_EXPORT void SetComInfo(ComInfo* settings);

// Registers the two callbacks, replacing earlier ones. Null: that callback is skipped.
// Thread: set-up. Locks: none.
VORNEX_EXPORT void RegistCallBackFuncIntf(Notify_Func notify, Failure_Func failure);

// Keeps three pointers to host memory areas in the exported globals LB, LW and RWI, for the host to read back.
// Thread: set-up. Locks: none.
VORNEX_EXPORT void FlashLocalRegister(void* localBits, void* localWords, void* indexWords);
VORNEX_EXPORT extern void* LB;
VORNEX_EXPORT extern void* LW;
VORNEX_EXPORT extern void* RWI;

// Switches a station off (flag 0) or on (flag 1); any other flag changes nothing. A negative station switches all
// stations on, whatever the flag. While a station is off, its queued writes and one-shot reads are discarded when
// their turn comes, without a callback, and its cyclic reads are passed over. EnCommStation does the same.
// Thread: any. Locks: stationMutex.
VORNEX_EXPORT void EnableEthernet(int station, int flag);
VORNEX_EXPORT void EnCommStation(int station, int flag);

// Always 1; the state of the cyclic pass is in ComInfo::finishFlag.
// Thread: any. Locks: none.
VORNEX_EXPORT int QueryFinishFlag();

// Always 0; controller addresses come from labels alone. (The host looks it up in this spelling.)
// Thread: any. Locks: none.
VORNEX_EXPORT int PLCAddressChangeIntef(int kind, QString text);

// Adds label definitions to the label table. A name that is there already gets the new definition; none is ever
// removed. Every call, also with an empty list, drops all cached resolutions. The list is only read.
// Definitions are not checked here: a broken one gives result 1 when its label is resolved.
// Thread: any. Locks: labelMutex. Once it has returned, no resolution uses an old definition.
VORNEX_EXPORT void PassVarName_2(QList<Label_Type_Info>* labels);

// --- Requests -------------------------------------------------------------------------------------------------------

// Queues a copy of a complete write request (address, station, length and data set), unchanged and without a
// duplicate test. Returns the entries in the write queue. At 2048 entries the request is dropped, and the returned
// 2048 is the only sign of it.
// Thread: any. Locks: listMutex.
VORNEX_EXPORT int AddListWriteVar(RW_VAR* request);

// Appends a copy of a complete read request to the cyclic list, unchanged. Returns the entries in the list.
// Thread: any. Locks: listMutex.
VORNEX_EXPORT int AddListReadVar(RW_VAR* request);

// Resolves the request's label and queues one read of `length` bytes, cut into pieces of at most maxBytesPerRequest;
// pieces that are queued already are not queued again. Returns the entries in the one-shot queue (pieces beyond 2048
// entries are dropped), or 0 when the label does not resolve: then nothing is queued and the record is unchanged.
// Otherwise the record holds station, remoteStore 0, reserved14 0, the address one past its last piece and that
// piece's length. A maxBytesPerRequest below 1 queues nothing and keeps `length`.
// Thread: any. Locks: labelMutex, then listMutex, not together.
VORNEX_EXPORT int AddListOnceReadVar(RW_VAR* request);

// Replaces the cyclic list: resolves each definition, sorts by address and packs neighbours into requests of at most
// maxBytesPerRequest bytes. Definitions that do not resolve, have no elementary type or a negative count are left
// out without a sign. Returns the requests in the list, 0 for an empty list of definitions or a maxBytesPerRequest
// below 1. Unless the list of definitions is empty, finishFlag becomes 0.
// Thread: any. Locks: listMutex, with labelMutex inside.
VORNEX_EXPORT int ReCreatReadVarList(QList<HOST_VAR>* definitions);

// --- Exchange -------------------------------------------------------------------------------------------------------

// The frame to send next, or null when there is nothing to send (finishFlag is then 1). Until DataCom removes the
// frame every call returns it again: that is how a frame is sent once more. The driver owns the frame.
// Thread: exchange. Locks: listMutex, with stationMutex or dataMutex inside.
VORNEX_EXPORT Protocol* ComCommunication();

// Takes the reply to the frame in flight: `length` bytes were received, `reply` holds them (null counts as empty).
// Pass length 0 with an empty reply when none came in time. Returns the result record, overwritten by the next call,
// whose status is 0: failed, send the frame again; 1: good; 100: good remote-area reply; a band code: given up.
// Without a frame in flight nothing changes but the status, which becomes 1.
// Thread: exchange. Locks: listMutex, and dataMutex while values are stored. Callbacks run inside.
VORNEX_EXPORT RW_VAR* DataCom(QByteArray* reply, int length);

// --- Values ---------------------------------------------------------------------------------------------------------

// Copies a variable's bytes out of the data image into `out`, in ascending address order and as they are on the
// wire. `count` is in bytes for type codes 1, 2, 10 and 11 and in 16-bit words for 3 to 9; whole elements are read.
// Returns 1, or 0 when the label does not resolve: `out` then holds 2 * count zero bytes. Bytes that no reply has
// filled yet read as 0. A negative count empties `out`. More than 16 MiB are never handed out.
// dataType and station are not used.
// Thread: any. Locks: labelMutex, then dataMutex, not together.
VORNEX_EXPORT int GetRegisterData(QString label, int dataType, QString labelIndex, int station, QByteArray* out,
                                  int count);

// Writes a variable: queues write requests of at most 1000 bytes (writeMode 2), or changes the data image alone (any
// other writeMode). `count` as for GetRegisterData; `data` holds the value as it is on the wire, but for type code 2
// one 16-bit word per element, of which the first byte is taken. A short `data` is filled with zeros. Always returns
// 0: an unresolved label, a type that cannot be written (10, 11) and a full queue leave no sign, except that a
// template which cannot be rewritten turns `data` into 2 * count zero bytes.
// The notify callback reports (varType, varId) when the last piece is done.
// Thread: any. Locks: labelMutex, then listMutex and dataMutex, no two together.
VORNEX_EXPORT int SetRegisterData(QString label, int dataType, QString labelIndex, int station, QByteArray* data,
                                  int count, int varType, int varId);

// --- Diagnostics ----------------------------------------------------------------------------------------------------

// A message handler for the host to install with qInstallMsgHandler: appends "time:message" to /tmp/debug.log. The
// driver never installs it and writes no messages of its own. A file that cannot be opened loses the message.
// Thread: any. Locks: none.
VORNEX_EXPORT void customMessageHandler(QtMsgType type, const char* message);

}  // extern "C"

#endif
