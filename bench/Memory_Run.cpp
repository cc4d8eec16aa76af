// memory-run: heap bytes that the driver takes for each byte, label and request, what many exchanges add, and the pages
// of the library itself.
#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Scene.h"
#include "Straightforward.h"
#include "label/Label_Resolution.h"
#include "protocol/Func_DealData.h"

namespace {

// Bytes of all blocks that are in use, the allocator's word before each counted with it.
size_t inUse = 0;
size_t mostInUse = 0;

void* counted(void* block) {
    if (block == nullptr) return nullptr;
    inUse += malloc_usable_size(block) + sizeof(size_t);
    mostInUse = std::max(mostInUse, inUse);
    return block;
}

void givenBack(void* block) {
    if (block != nullptr) inUse -= malloc_usable_size(block) + sizeof(size_t);
}

}  // namespace

// The program's own definitions go before the C library's, for Qt and the driver as well.
extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void __libc_free(void*);

void* malloc(size_t bytes) noexcept { return counted(__libc_malloc(bytes)); }
void* calloc(size_t count, size_t bytes) noexcept { return counted(__libc_calloc(count, bytes)); }
void* realloc(void* block, size_t bytes) noexcept {
    givenBack(block);
    void* const moved = __libc_realloc(block, bytes);
    if (moved == nullptr && bytes != 0) std::abort();
    return counted(moved);
}
void free(void* block) noexcept {
    givenBack(block);
    __libc_free(block);
}
}

namespace {

enum { Bytes = 65536, Tags = 10000, Queued = 2000, Exchanges = 20000 };

// Heap bytes that `step` leaves behind.
template <class Step>
double taken(Step step) {
    const size_t before = inUse;
    step();
    return static_cast<double>(inUse) - static_cast<double>(before);
}

// Heap bytes that `step` takes at its worst.
template <class Step>
double peak(Step step) {
    const size_t before = inUse;
    mostInUse = inUse;
    step();
    return static_cast<double>(mostInUse - before);
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

// The host's own list is there before, and is not counted.
double loadingPeak() {
    scene::reset();
    QList<Label_Type_Info> labels = scene::tags(Tags);
    return peak([&] { PassVarName_2(&labels); });
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

// All that the driver holds for a panel that polls `bytes` bytes as 32-bit values and has shown each of them.
double panel(int bytes) {
    scene::reset();
    return taken([bytes] {
        const QStringList labels = scene::pollArea(bytes);
        scene::pollUntilItRepeats();
        QByteArray out;
        for (int i = 0; i < labels.size(); ++i)
            if (GetRegisterData(labels.at(i), 0, QString(), 0, &out, 2) != 1) std::abort();
    });
}

// KiB of the library's file mappings that smaps tells under `key`.
int libraryPages(const char* key) {
    std::FILE* const maps = std::fopen("/proc/self/smaps", "r");
    if (maps == nullptr) std::abort();
    char line[4352];
    bool inLibrary = false;
    int sum = 0;
    while (std::fgets(line, sizeof line, maps) != nullptr) {
        int kib = 0;
        char name[32];
        if (std::strchr("0123456789abcdef", line[0]) != nullptr)  // a mapping; its own lines begin with capitals
            inLibrary = std::strstr(line, "libvornex_label_tcp.so") != nullptr;
        else if (inLibrary && std::sscanf(line, "%31[A-Za-z_]: %d kB", name, &kib) == 2 && std::strcmp(name, key) == 0)
            sum += kib;
    }
    std::fclose(maps);
    return sum;
}

}  // namespace

int main() {
    const int resident = libraryPages("Rss");  // before any call: what loading it takes
    const int dirty = libraryPages("Private_Dirty");
    ComInfo& settings = scene::reset();
    std::printf("{\"hash_byte\": %.1f", hashByte());
    std::printf(", \"image_byte\": %.1f", imageByte());
    std::printf(", \"definition\": %.0f", definition());
    std::printf(", \"loading_peak\": %.0f", loadingPeak());
    std::printf(", \"cached_label\": %.0f", cachedLabel());
    std::printf(", \"cyclic_request\": %.0f", cyclicRequest(settings));
    std::printf(", \"once_read\": %.0f", onceRead());
    for (const int bytes : {500, 2000, 8000})
        std::printf(", \"panel_%d\": %.0f", bytes, panel(bytes));
    std::printf(", \"library_resident_kib\": %d, \"library_dirty_kib\": %d", resident, dirty);
    std::printf(", \"growth\": %.0f}\n", growth());
    return 0;
}
