// memory-run: heap bytes that the driver takes for each byte, label and request, and what many exchanges add.
#include <malloc.h>

#include <cstdio>
#include <cstdlib>

#include "Scene.h"
#include "Straightforward.h"
#include "label/Label_Resolution.h"
#include "protocol/Func_DealData.h"

namespace {

enum { Bytes = 65536, Tags = 10000, Queued = 2000, Exchanges = 20000 };

double heapBytes() {
    const struct mallinfo2 heap = mallinfo2();
    return static_cast<double>(heap.uordblks + heap.hblkhd);  // large blocks are mapped beside the heap
}

// Heap bytes that `step` leaves behind.
template <class Step>
double taken(Step step) {
    const double before = heapBytes();
    step();
    return heapBytes() - before;
}

double hashByte() {
    straightforward::Image image;
    return taken([&] {
               for (unsigned i = 0; i < Bytes; ++i)
                   image[i] = 1;
           }) /
           Bytes;
}

double imageByte() {
    RW_VAR write;
    write.length = Bytes;
    return taken([&] { WriteDataToLocal(&write); }) / Bytes;
}

double definition() {
    return taken([] { scene::passTags(Tags); }) / Tags;
}

// The label's text is new to the driver each time, so that it counts as well; a host that keeps its texts shares them.
double cachedLabel() {
    return taken([] {
               ControlInformationM info;
               for (int i = 0; i < Tags; ++i)
                   if (get_label_address(scene::tag(i), info) != LabelOk) std::abort();
           }) /
           Tags;
}

double cyclicRequest(ComInfo& settings) {
    QList<HOST_VAR> definitions = scene::scatteredTags(Tags);
    settings.maxBytesPerRequest = 1;  // one request for each label
    return taken([&] { ReCreatReadVarList(&definitions); }) / Tags;
}

double onceRead() {
    return taken([] {
               for (int i = 0; i < Queued; ++i) {
                   RW_VAR read = scene::tagRead(i);
                   AddListOnceReadVar(&read);
               }
           }) /
           Queued;
}

// What 20,000 exchanges leave behind, after those that fill the lists and the image.
double growth() {
    scene::reset();
    scene::pollOneGroup();
    QByteArray reply = scene::replyTo(*ComCommunication());
    scene::exchange(reply, 100);
    return taken([&] { scene::exchange(reply, Exchanges); });
}

}  // namespace

int main() {
    ComInfo& settings = scene::reset();
    std::printf("{\"hash_byte\": %.1f", hashByte());
    std::printf(", \"image_byte\": %.1f", imageByte());
    std::printf(", \"definition\": %.0f", definition());
    std::printf(", \"cached_label\": %.0f", cachedLabel());
    std::printf(", \"cyclic_request\": %.0f", cyclicRequest(settings));
    std::printf(", \"once_read\": %.0f", onceRead());
    std::printf(", \"growth\": %.0f}\n", growth());
    return 0;
}
