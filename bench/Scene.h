// The driver in a known state, with made-up labels: what every benchmark starts from.
#ifndef VORNEX_BENCH_SCENE_H
#define VORNEX_BENCH_SCENE_H

#include <QtCore/QStringList>

#include "driver/Communication_Protocol.h"

namespace scene {

// One group: the most bytes that the driver asks for in one frame.
enum { GroupBytes = 999 };

// Empties all that the driver holds and gives it fresh settings: requests of up to `maxBytesPerRequest` bytes.
ComInfo& reset(int maxBytesPerRequest = 200);

// Hands the driver `count` labels "Tag0", "Tag1", ...: 32-bit elements, eight bytes apart.
void passTags(int count);
QList<Label_Type_Info> tags(int count);
QString tag(int number);

// Hands the driver the arrays of structures that the resolution benchmarks use.
void passShapes();
// Label texts by number: "%1" stands for 0 to ShapeElements - 1.
enum { ShapeElements = 512 };
extern const char* const PlainLabel;   // a tag: a name alone
extern const char* const MemberLabel;  // an element of an array of structures, then a member
extern const char* const DeepLabel;    // three levels, an index on two of them
extern const char* const Template;     // an index with the mark

// `count` definitions of the tags, scattered: neighbours in the list are far apart in the controller.
QList<HOST_VAR> scatteredTags(int count);

// The tags' polled set as the sort gets it: one request each, unsorted, as the host's list gives them.
QList<RW_VAR> scatteredRequests(int count);

// Hands the driver one block of `GroupBytes` bytes and lets it poll that.
void pollOneGroup();

// Hands the driver 32-bit elements "Tag0", "Tag1", ... side by side in `bytes` bytes and lets it poll them all, in
// requests of up to 200 bytes; gives back their labels.
QStringList pollArea(int bytes);

// A good reply, and the polled bytes in it.
struct Poll_Reply {
    QByteArray bytes;
    int polled;
};

// Polls until the first frame has come and gone again: the replies to the frames, which repeat from the next one on.
// They may stand for several rounds over the polled area, since a frame takes up what the end of a round leaves free.
QList<Poll_Reply> pollUntilItRepeats();

// A good reply to the frame: an item for each requested range, filled with counting bytes.
QByteArray replyTo(const Protocol& frame);

// Empties the cache of resolved labels and keeps the definitions.
void forgetResolved();

// A one-shot read of a tag.
RW_VAR tagRead(int number);

// Takes the next frame and answers it well, `times` times. The same reply serves each read.
void exchange(QByteArray& reply, int times);

}  // namespace scene

#endif
