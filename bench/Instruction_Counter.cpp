// A plug-in of qemu's user-mode emulator that counts instructions by where they lie: scripts/count-instructions builds
// it for this machine and reads what it writes. Argument: out=FILE.
//
// FILE gets a line "COUNT OFFSET PATH" for each instruction that ran: how often, and its place in the file that was
// mapped there. What lies in no file (the emulator's own pages) is summed up under "-".
#include <cinttypes>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unordered_map>
#include <vector>

// The emulator's interface, version 1, as far as it is needed: Debian packages no header of it.
extern "C" {
struct qemu_plugin_tb;
struct qemu_plugin_insn;
typedef std::uint64_t qemu_plugin_id_t;
enum qemu_plugin_op { QEMU_PLUGIN_INLINE_ADD_U64 };
void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t id, void (*translated)(qemu_plugin_id_t, qemu_plugin_tb*));
void qemu_plugin_register_atexit_cb(qemu_plugin_id_t id, void (*atExit)(qemu_plugin_id_t, void*), void* data);
std::size_t qemu_plugin_tb_n_insns(const qemu_plugin_tb* block);
qemu_plugin_insn* qemu_plugin_tb_get_insn(const qemu_plugin_tb* block, std::size_t place);
void* qemu_plugin_insn_haddr(const qemu_plugin_insn* instruction);
void qemu_plugin_register_vcpu_insn_exec_inline(qemu_plugin_insn* instruction, qemu_plugin_op op, void* counter,
                                                std::uint64_t step);

__attribute__((visibility("default"))) extern int qemu_plugin_version;
int qemu_plugin_version = 1;
__attribute__((visibility("default"))) int qemu_plugin_install(qemu_plugin_id_t id, const void* emulator, int count,
                                                               char** arguments);
}

namespace {

// By the instruction's address in the emulator's memory. Nodes of a map keep their place, which the emulated code adds
// to; nothing is freed, since code may still run when the process ends.
std::unordered_map<std::uintptr_t, std::uint64_t>& counters() {
    static auto* const all = new std::unordered_map<std::uintptr_t, std::uint64_t>;
    return *all;
}

std::string& outName() {
    static auto* const name = new std::string;
    return *name;
}

struct Mapping {
    std::uintptr_t begin;
    std::uintptr_t end;
    std::uint64_t offset;
    std::string path;
};

std::vector<Mapping> mappings() {
    std::vector<Mapping> found;
    std::FILE* const maps = std::fopen("/proc/self/maps", "r");
    if (maps == nullptr) return found;
    char line[4352];
    while (std::fgets(line, sizeof line, maps) != nullptr) {
        Mapping one;
        int path = 0;
        if (std::sscanf(line, "%" SCNxPTR "-%" SCNxPTR " %*s %" SCNx64 " %*s %*s %n", &one.begin, &one.end, &one.offset,
                        &path) != 3)
            continue;
        line[std::strcspn(line, "\n")] = '\0';
        one.path = line + path;
        if (one.path[0] == '/') found.push_back(one);
    }
    std::fclose(maps);
    return found;
}

void countBlock(qemu_plugin_id_t, qemu_plugin_tb* block) {
    for (std::size_t i = 0; i < qemu_plugin_tb_n_insns(block); ++i) {
        qemu_plugin_insn* const instruction = qemu_plugin_tb_get_insn(block, i);
        std::uint64_t& counter = counters()[reinterpret_cast<std::uintptr_t>(qemu_plugin_insn_haddr(instruction))];
        qemu_plugin_register_vcpu_insn_exec_inline(instruction, QEMU_PLUGIN_INLINE_ADD_U64, &counter, 1);
    }
}

void write(qemu_plugin_id_t, void*) {
    const std::vector<Mapping> files = mappings();
    std::uint64_t elsewhere = 0;
    std::FILE* const out = std::fopen(outName().c_str(), "w");
    if (out == nullptr) std::abort();
    for (const auto& one : counters()) {
        const Mapping* in = nullptr;
        for (const Mapping& file : files)
            if (one.first >= file.begin && one.first < file.end) in = &file;
        if (in == nullptr)
            elsewhere += one.second;
        else
            std::fprintf(out, "%" PRIu64 " %" PRIx64 " %s\n", one.second, one.first - in->begin + in->offset,
                         in->path.c_str());
    }
    std::fprintf(out, "%" PRIu64 " 0 -\n", elsewhere);
    if (std::ferror(out) != 0 || std::fclose(out) != 0) std::abort();
}

}  // namespace

int qemu_plugin_install(qemu_plugin_id_t id, const void*, int count, char** arguments) {
    for (int i = 0; i < count; ++i)
        if (std::strncmp(arguments[i], "out=", 4) == 0) outName() = arguments[i] + 4;
    if (outName().empty()) return -1;
    qemu_plugin_register_vcpu_tb_trans_cb(id, countBlock);
    qemu_plugin_register_atexit_cb(id, write, nullptr);
    return 0;
}
