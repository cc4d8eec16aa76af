#include "host/Driver_Library.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <type_traits>

#include "host/Host_Error.h"

namespace vornex {

namespace {

const char LibraryName[] = "libvornex_label_tcp.so.1";

std::string folderOfTool() {
    char path[4096];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    const std::string text(path, length > 0 ? static_cast<std::size_t>(length) : 0);
    return text.substr(0, text.rfind('/') + 1);
}

std::vector<std::string> candidates() {
    const std::string folder = folderOfTool();
    return {folder + "../../src/" + LibraryName, folder + "../" VORNEX_LIBDIR "/" + LibraryName, LibraryName};
}

bool exists(const std::string& file) { return access(file.c_str(), F_OK) == 0; }

}  // namespace

Driver_Library::Driver_Library(const std::string& file) {
    if (!file.empty()) {
        // Without a slash the loader would search its own path and might load another file than the one named.
        open(file.find('/') == std::string::npos && exists(file) ? "./" + file : file);
    } else {
        for (const std::string& candidate : candidates()) {
            const bool last = candidate == LibraryName;
            if (!last && !exists(candidate)) continue;
            open(candidate);
            break;
        }
    }
    bindAll();
}

void Driver_Library::open(const std::string& file) {
    handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle)
        throw Host_Error(Host_Error::Kind::Library, std::string("cannot load the driver library: ") + dlerror());
    loadedPath = file;
    link_map* map = nullptr;
    if (dlinfo(handle, RTLD_DI_LINKMAP, &map) == 0 && map && map->l_name[0] != '\0') loadedPath = map->l_name;
}

void* Driver_Library::symbol(const char* name) const { return dlsym(handle, name); }

std::vector<std::string> Driver_Library::entryPointNames() {
#define VORNEX_NAME(name) #name,
    return {VORNEX_EACH_ENTRY_POINT(VORNEX_NAME)};
#undef VORNEX_NAME
}

void Driver_Library::bindAll() {
    std::string missing;
    const auto bind = [&](auto& entryPoint, const char* name) {
        entryPoint = reinterpret_cast<std::decay_t<decltype(entryPoint)>>(symbol(name));
        if (!entryPoint) missing += (missing.empty() ? "" : ", ") + std::string(name);
    };
#define VORNEX_BIND(name) bind(name, #name);
    VORNEX_EACH_ENTRY_POINT(VORNEX_BIND)
#undef VORNEX_BIND
    if (missing.empty()) return;
    throw Host_Error(Host_Error::Kind::Library, loadedPath + " is not the driver: no entry point " + missing);
}

}  // namespace vornex
