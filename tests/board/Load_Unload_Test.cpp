// load_unload_test LIBRARY TIMES: loads the driver, uses it and unloads it, TIMES times in one process, with work left
// in every list at the end. A leak checker around it (valgrind, address sanitizer) tells what stayed behind.
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

#include "vornex_label_tcp/Entry_Points.h"

namespace {

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "load_unload_test: %s\n", what);
    std::exit(1);
}

// FUNCTION(library, Name): the entry point with its own type.
#define FUNCTION(library, name) (reinterpret_cast<decltype(&name)>(symbol(library, #name)))
void* symbol(void* library, const char* name) {
    void* const found = dlsym(library, name);
    require(found != nullptr, name);
    return found;
}

QList<Label_Type_Info> labels() {
    Label_Type_Info speeds;
    speeds.name = QString::fromLatin1("Speeds");
    speeds.typeFlags = 4 | LabelIsArray;
    speeds.address = 0x100;
    speeds.dimensionCount = 1;
    speeds.dimensions << 10 << 0 << 8;
    QList<Label_Type_Info> list;
    list << speeds;
    return list;
}

QList<HOST_VAR> variables() {
    HOST_VAR variable;
    variable.label = QString::fromLatin1("Speeds[%%]");
    variable.labelIndex = QString::fromLatin1("2");
    variable.count = 1;
    QList<HOST_VAR> list;
    list << variable;
    return list;
}

// Leaves a frame in flight, a queued write, a cached label and bytes in the data image.
void use(void* library, ComInfo& settings) {
    QList<Label_Type_Info> definitions = labels();
    QList<HOST_VAR> polled = variables();
    const QString label = QString::fromLatin1("Speeds[3]");
    QByteArray value("\x12\x34", 2);
    FUNCTION(library, SetComInfo)(&settings);
    FUNCTION(library, PassVarName_2)(&definitions);
    require(FUNCTION(library, ReCreatReadVarList)(&polled) == 1, "the variable is not polled");
    settings.writeMode = 1;  // into the data image
    FUNCTION(library, SetRegisterData)(label, 0, QString(), 0, &value, 1, 1, 1);
    settings.writeMode = 2;  // to the controller
    FUNCTION(library, SetRegisterData)(label, 0, QString(), 0, &value, 1, 1, 1);
    FUNCTION(library, SetRegisterData)(label, 0, QString(), 0, &value, 1, 1, 2);
    require(FUNCTION(library, ComCommunication)() != nullptr, "nothing to send");
    require(FUNCTION(library, DataCom)(nullptr, 0)->status == ResultRetrying, "a missing reply is not a failure");
    QByteArray out;
    require(FUNCTION(library, GetRegisterData)(label, 0, QString(), 0, &out, 1) == 1 && out == value, "value not kept");
}

}  // namespace

int main(int argc, char** argv) {
    require(argc == 3, "usage: load_unload_test LIBRARY TIMES");
    const int times = std::atoi(argv[2]);
    require(times > 0, "TIMES must be above 0");
    for (int i = 0; i < times; ++i) {
        ComInfo settings;
        settings.maxBytesPerRequest = 200;
        settings.retryLimit = 3;
        void* const library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
        require(library != nullptr, dlerror());
        use(library, settings);
        require(dlclose(library) == 0, "dlclose failed");
        require(dlopen(argv[1], RTLD_NOW | RTLD_NOLOAD) == nullptr, "the library is still loaded");
    }
    std::printf("loaded, used and unloaded %d times\n", times);
    return 0;
}
