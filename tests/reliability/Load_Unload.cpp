// Loads the library, uses it, unloads it, three times over. Worth most under valgrind. Argument: the library.
#include <dlfcn.h>

#include <cstdio>

#include "vornex_label_tcp/Entry_Points.h"

namespace {

template <class Function>
Function* find(void* library, const char* name) {
    return reinterpret_cast<Function*>(dlsym(library, name));
}
#define ENTRY_POINT(name) auto* const name = find<decltype(::name)>(library, #name)

// Calls before anything is set up. True when each gives its result for "nothing".
bool useUnset(void* library) {
    ENTRY_POINT(ReCreatReadVarList);
    ENTRY_POINT(SetRegisterData);
    ENTRY_POINT(ComCommunication);
    ENTRY_POINT(DataCom);
    ENTRY_POINT(GetRegisterData);
    QList<HOST_VAR> definitions;
    definitions << HOST_VAR();
    QByteArray value("old");
    return ReCreatReadVarList(&definitions) == 0 && ComCommunication() == nullptr && DataCom(nullptr, 0)->status == 1 &&
           SetRegisterData(QString(), 0, QString(), 0, &value, 1, 0, 0) == 0 &&
           GetRegisterData(QString(), 0, QString(), 0, &value, 1) == 0 && value == QByteArray(2, '\0');
}

// One label written, polled for a while without a controller, and read. True when all calls did their part.
bool use(void* library) {
    ENTRY_POINT(SetComInfo);
    ENTRY_POINT(PassVarName_2);
    ENTRY_POINT(ReCreatReadVarList);
    ENTRY_POINT(SetRegisterData);
    ENTRY_POINT(ComCommunication);
    ENTRY_POINT(DataCom);
    ENTRY_POINT(GetRegisterData);

    ComInfo settings;
    settings.maxBytesPerRequest = 100;
    settings.writeMode = 2;
    SetComInfo(&settings);
    QList<Label_Type_Info> labels;
    labels << Label_Type_Info();
    labels.first().name = QString::fromLatin1("Speed");
    labels.first().typeFlags = 5;
    labels.first().address = 100;
    PassVarName_2(&labels);
    QList<HOST_VAR> definitions;
    definitions << HOST_VAR();
    definitions.first().label = labels.first().name;
    definitions.first().count = 2;
    const int entries = ReCreatReadVarList(&definitions);
    QByteArray value("\1\2\3\4", 4);
    SetRegisterData(labels.first().name, 0, QString(), 0, &value, 2, 1, 1);
    int frames = 0;
    for (int i = 0; i < 8; ++i) {
        const Protocol* const protocol = ComCommunication();
        if (protocol == nullptr) continue;
        ++frames;
        QByteArray reply(protocol->replyLength, '\0');  // of six bytes it is a good one, longer ones hold no item
        DataCom(&reply, i % 3 == 0 ? 0 : reply.size());
    }
    QByteArray out;
    return entries == 1 && frames == 8 && GetRegisterData(labels.first().name, 0, QString(), 0, &out, 2) == 1 &&
           out.size() == 4;
}

}  // namespace

int main(int argc, char** argv) {
    for (int i = 0; argc == 2 && i < 3; ++i) {
        void* const library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr || !useUnset(library) || !use(library) || dlclose(library) != 0) {
            const char* const reason = dlerror();
            std::fprintf(stderr, "%s: %s\n", argv[1], reason != nullptr ? reason : "a call did not do its part");
            return 1;
        }
    }
    return argc == 2 ? 0 : 2;
}
