// The driver's entry points. This is the one header a host includes.
//
// The host looks these names up with dlsym, or links the library; they carry no type information. The driver has no
// thread, timer or socket and writes no messages: everything happens inside these calls, none of which blocks for
// the controller. docs/host-interface.md tells the whole story with every result code.
//
// Threads: the exchange thread is the one on which the host calls ComCommunication and DataCom in turn. Each group
// below says where its calls may be made; where it says "any thread", they may be made at any time, also beside the
// exchange. The locks named are the driver's own and are released before the call returns.
//
// A pointer is valid or null; null never crashes and means "nothing", which each call says for itself. The host keeps
// what it owns: the driver copies what it needs and frees nothing of the host's.
//
// Any call may come first. Until SetComInfo the driver works on settings of its own, whose words are all 0: the image
// can be read and written, complete requests go their way and are given up at the first failed reply, but nothing can
// be cut into requests, so that AddListOnceReadVar and ReCreatReadVarList queue nothing and return 0.
#ifndef VORNEX_LABEL_TCP_ENTRY_POINTS_H
#define VORNEX_LABEL_TCP_ENTRY_POINTS_H

#include "Host_Records.h"
#include "Label_Records.h"

#define VORNEX_EXPORT __attribute__((visibility("default")))

extern "C" {

// --- Set-up: on any thread while no other entry point runs. No locks. -----------------------------------------------

// Makes `settings` the record the driver works on and sets its words reserved10 and reserved13 to 0. The record must
// live as long as the driver is used; a later call switches to another record, null to the driver's own. Requests
// that are queued already keep the area and station that the settings of their time gave them.
VORNEX_EXPORT void SetComInfo(ComInfo* settings);

// Registers the two callbacks, replacing earlier ones. Null: that callback is skipped.
VORNEX_EXPORT void RegistCallBackFuncIntf(Notify_Func notify, Failure_Func failure);

// Keeps three pointers to host memory areas in the exported globals LB, LW and RWI, for the host to read back.
VORNEX_EXPORT void FlashLocalRegister(void* localBits, void* localWords, void* indexWords);
VORNEX_EXPORT extern void* LB;
VORNEX_EXPORT extern void* LW;
VORNEX_EXPORT extern void* RWI;

// --- Stations, labels, fixed answers: on any thread ------------------------------------------------------------------

// Switches a station off (flag 0) or on (flag 1); any other flag changes nothing. A negative station switches all
// stations on, whatever the flag. While a station is off, its queued writes and one-shot reads are discarded when
// their turn comes, without a callback, and its cyclic reads are passed over. EnCommStation does the same.
// Takes stationMutex.
VORNEX_EXPORT void EnableEthernet(int station, int flag);
VORNEX_EXPORT void EnCommStation(int station, int flag);

// Always 1; the state of the cyclic pass is in ComInfo::finishFlag.
VORNEX_EXPORT int QueryFinishFlag();

// Always 0; controller addresses come from labels alone. (The host looks it up in this spelling.)
VORNEX_EXPORT int PLCAddressChangeIntef(int kind, QString text);

// Adds label definitions to the label table. A name that is there already gets the new definition; none is ever
// removed. Every call, also with an empty list or null, drops all cached resolutions. The list is only read.
// Definitions are not checked here: a broken one gives result 1 when its label is resolved.
// Takes labelMutex; once it has returned, no resolution uses an old definition.
VORNEX_EXPORT void PassVarName_2(QList<Label_Type_Info>* labels);

// --- Requests: on any thread. All take listMutex; the two that resolve labels take labelMutex too. ------------------

// Queues a copy of a complete write request (address, station, length and data set), unchanged and without a
// duplicate test. Returns the entries in the write queue. At 2048 entries the request is dropped, and the returned
// 2048 is the only sign of it. Null queues nothing.
VORNEX_EXPORT int AddListWriteVar(RW_VAR* request);

// Appends a copy of a complete read request to the cyclic list, unchanged. Returns the entries in the list. Null
// appends nothing.
VORNEX_EXPORT int AddListReadVar(RW_VAR* request);

// Resolves the request's label and queues one read of `length` bytes, cut into pieces of at most maxBytesPerRequest;
// pieces that are queued already are not queued again. Returns the entries in the one-shot queue (pieces beyond 2048
// entries are dropped), or 0 when the label does not resolve: then nothing is queued and the record is unchanged.
// Otherwise the record holds station, remoteStore 0, reserved14 0, the address one past its last piece and that
// piece's length. A maxBytesPerRequest below 1 queues nothing and keeps `length`. Null: 0.
// Releases labelMutex before it takes listMutex.
VORNEX_EXPORT int AddListOnceReadVar(RW_VAR* request);

// Replaces the cyclic list: resolves each definition, sorts by address and packs neighbours into requests of at most
// maxBytesPerRequest bytes. Definitions that do not resolve, have no elementary type or a negative count are left
// out without a sign. Returns the requests in the list, 0 for an empty list of definitions or a maxBytesPerRequest
// below 1. Unless the list of definitions is empty, finishFlag becomes 0. Null counts as an empty list.
// Takes labelMutex while it holds listMutex.
VORNEX_EXPORT int ReCreatReadVarList(QList<HOST_VAR>* definitions);

// --- Exchange: on the exchange thread -------------------------------------------------------------------------------

// The frame to send next, or null when there is nothing to send (finishFlag is then 1). Until DataCom removes the
// frame every call returns it again: that is how a frame is sent once more. The driver owns the frame.
// Takes listMutex, and stationMutex or dataMutex while it holds that.
VORNEX_EXPORT Protocol* ComCommunication();

// Takes the reply to the frame in flight: `length` bytes were received, `reply` holds them (null counts as empty).
// Pass length 0 with an empty reply when none came in time. Returns the result record, overwritten by the next call,
// whose status is 0: failed, send the frame again; 1: good; 100: good remote-area reply; a band code: given up.
// Without a frame in flight nothing changes but the status, which becomes 1.
// Takes dataMutex while values are stored, then listMutex, under which the callbacks run.
VORNEX_EXPORT RW_VAR* DataCom(QByteArray* reply, int length);

// --- Values: on any thread. They take labelMutex, dataMutex and, for a write, listMutex, one after the other. --------

// Copies a variable's bytes out of the data image into `out`, in ascending address order and as they are on the
// wire. `count` is in bytes for type codes 1, 2, 10 and 11 and in 16-bit words for 3 to 9; whole elements are read.
// Returns 1, or 0 when the label does not resolve: `out` then holds 2 * count zero bytes. Bytes that no reply has
// filled yet read as 0. A negative count empties `out`. More than 16 MiB are never handed out. `out` null: 0.
// dataType and station are not used.
VORNEX_EXPORT int GetRegisterData(QString label, int dataType, QString labelIndex, int station, QByteArray* out,
                                  int count);

// Writes a variable: queues write requests of at most 1000 bytes (writeMode 2), or changes the data image alone (any
// other writeMode). `count` as for GetRegisterData; `data` holds the value as it is on the wire, but for type code 2
// one 16-bit word per element, of which the first byte is taken. A short `data` is filled with zeros. Always returns
// 0: an unresolved label, a type that cannot be written (10, 11) and a full queue leave no sign, except that a
// template which cannot be rewritten turns `data` into 2 * count zero bytes. `data` null: nothing is written.
// The notify callback reports (varType, varId) when the last piece is done.
VORNEX_EXPORT int SetRegisterData(QString label, int dataType, QString labelIndex, int station, QByteArray* data,
                                  int count, int varType, int varId);

// --- Diagnostics: on any thread, without locks ----------------------------------------------------------------------

// A message handler for the host to install with qInstallMsgHandler: appends "time:message" to /tmp/debug.log. The
// driver never installs it and writes no messages of its own. A file that cannot be opened loses the message. Null
// counts as an empty message.
VORNEX_EXPORT void customMessageHandler(QtMsgType type, const char* message);

}  // extern "C"

#endif
