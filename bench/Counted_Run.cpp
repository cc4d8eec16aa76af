// counted-run OPERATION TIMES: sets the driver up, then does the operation that many times. Its instructions are
// counted with two different TIMES; the difference of the two counts is the operation's own, whatever setting up takes.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Scene.h"
#include "label/Label_Resolution.h"

namespace {

enum { KnownTags = 1000 };

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

// What was queued goes to the controller and is answered. After five requests of one kind the driver looks for others
// first, finds none and has nothing to send that time.
void exchangeQueued(QByteArray& reply) {
    const Protocol* frame = ComCommunication();
    if (frame == nullptr) frame = ComCommunication();
    if (frame == nullptr) std::abort();
    if (reply.isEmpty()) reply = scene::replyTo(*frame);
    if (DataCom(&reply, reply.size())->status != ResultGood) std::abort();
}

// The host's write of one value, from the label to the controller's answer.
void writeValue(int times) {
    scene::passTags(KnownTags);
    const QString label = scene::tag(500);
    QByteArray value(4, '\1');
    QByteArray reply;
    for (int i = 0; i < times; ++i) {
        SetRegisterData(label, 0, QString(), 0, &value, 2, 3, 500);
        exchangeQueued(reply);
    }
}

void readOnce(int times) {
    scene::passTags(KnownTags);
    const RW_VAR read = scene::tagRead(500);
    QByteArray reply;
    for (int i = 0; i < times; ++i) {
        RW_VAR queued = read;
        AddListOnceReadVar(&queued);
        exchangeQueued(reply);
    }
}

template <int Tags>
void rebuild(int times) {
    scene::passTags(Tags);
    QList<HOST_VAR> definitions = scene::scatteredTags(Tags);
    for (int i = 0; i < times; ++i)
        if (ReCreatReadVarList(&definitions) == 0) std::abort();
}

// The cache is emptied before each, which is counted with it: one deallocation for each label.
template <int Tags>
void rebuildCold(int times) {
    scene::passTags(Tags);
    QList<HOST_VAR> definitions = scene::scatteredTags(Tags);
    for (int i = 0; i < times; ++i) {
        scene::forgetResolved();
        if (ReCreatReadVarList(&definitions) == 0) std::abort();
    }
}

template <int Tags>
void load(int times) {
    QList<Label_Type_Info> labels = scene::tags(Tags);
    for (int i = 0; i < times; ++i)
        PassVarName_2(&labels);
}

// A panel's round: the whole polled area comes in, and each of its values is read once for the screen.
template <int Bytes>
void panelRound(int times) {
    const QStringList labels = scene::pollArea(Bytes);
    QList<scene::Poll_Reply> replies = scene::pollUntilItRepeats();
    QByteArray out;
    int next = 0;
    int polled = 0;
    for (int i = 0; i < times; ++i) {
        for (polled -= Bytes; polled < 0; next = (next + 1) % replies.size()) {
            QByteArray& reply = replies[next].bytes;
            if (ComCommunication() == nullptr || DataCom(&reply, reply.size())->status != ResultGood) std::abort();
            polled += replies.at(next).polled;
        }
        for (int l = 0; l < labels.size(); ++l)
            if (GetRegisterData(labels.at(l), 0, QString(), 0, &out, 2) != 1) std::abort();
    }
}

struct Operation {
    const char* name;
    void (*run)(int times);
};

const Operation operations[] = {
    {"exchange-999", exchangeGroup}, {"read-cached", readCached},         {"resolve-member", resolveMember},
    {"rebuild-1000", rebuild<1000>}, {"rebuild-cold", rebuildCold<1000>}, {"rebuild-100", rebuild<100>},
    {"write-4", writeValue},         {"once-read-4", readOnce},           {"load-1000", load<1000>},
    {"panel-500", panelRound<500>},  {"panel-2000", panelRound<2000>},    {"panel-8000", panelRound<8000>},
};

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
