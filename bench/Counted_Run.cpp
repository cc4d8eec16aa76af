// counted-run OPERATION TIMES: sets the driver up, then does the operation that many times. Run under callgrind with
// two different TIMES; the difference of the two counts is the operation's own, whatever setting up takes.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Scene.h"
#include "label/Label_Resolution.h"

namespace {

enum { RebuildTags = 1000, KnownTags = 1000 };

void exchangeGroup(int times) {
    scene::pollOneGroup();
    QByteArray reply = scene::replyTo(*ComCommunication());
    scene::exchange(reply, times);
}

void readCached(int times) {
    scene::passTags(KnownTags);
    const QString label = scene::tag(500);
    QByteArray out;
    for (int i = 0; i < times; ++i)
        GetRegisterData(label, 0, QString(), 0, &out, 2);
}

// Each time the label is taken out of the cache again, which is counted with it: one lookup and one deallocation.
void resolveMember(int times) {
    scene::passTags(KnownTags);
    scene::passShapes();
    const QString label = QString::fromLatin1(scene::MemberLabel).arg(3);
    ControlInformationM info;
    for (int i = 0; i < times; ++i) {
        if (get_label_address(label, info) != LabelOk) std::abort();
        const Mutex_Lock lock(PLC_driver.labelMutex);
        PLC_driver.labelCache.remove(label);
    }
}

void rebuild(int times) {
    scene::passTags(RebuildTags);
    QList<HOST_VAR> definitions = scene::scatteredTags(RebuildTags);
    for (int i = 0; i < times; ++i)
        if (ReCreatReadVarList(&definitions) == 0) std::abort();
}

struct Operation {
    const char* name;
    void (*run)(int times);
};

const Operation operations[] = {{"exchange-999", exchangeGroup},
                                {"read-cached", readCached},
                                {"resolve-member", resolveMember},
                                {"rebuild-1000", rebuild}};

}  // namespace

int main(int argc, char** argv) {
    for (const Operation& operation : operations) {
        if (argc != 3 || std::strcmp(argv[1], operation.name) != 0) continue;
        scene::reset();
        operation.run(std::atoi(argv[2]));
        return 0;
    }
    std::fputs("usage: counted-run OPERATION TIMES, OPERATION one of:", stderr);
    for (const Operation& operation : operations)
        std::fprintf(stderr, " %s", operation.name);
    std::fputc('\n', stderr);
    return 2;
}
