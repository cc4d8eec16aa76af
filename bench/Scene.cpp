#include "Scene.h"

#include "Straightforward.h"
#include "protocol/Frame_Layout.h"

namespace scene {

const char* const PlainLabel = "Tag%1";
const char* const MemberLabel = "Motors[%1].Temp";
const char* const DeepLabel = "Line[%1].Drives[2,1].Limits.High";
const char* const Template = "Motors[%%].Temp";

namespace {

enum { TagStep = 8, BlockAddress = 0x10000 };

// A number that shares no factor with the counts in use: i * Stride modulo the count visits every tag once.
enum { Stride = 7919 };

ComInfo settings;

Label_Type_Info element(const char* name, int typeCode, unsigned address) {
    Label_Type_Info info;
    info.name = QLatin1String(name);
    info.typeFlags = static_cast<quint16>(typeCode);
    info.address = address;
    return info;
}

Label_Type_Info array(Label_Type_Info info, const QList<int>& dimensions) {
    info.typeFlags |= LabelIsArray;
    info.dimensionCount = static_cast<quint32>((dimensions.size() - 1) / 2);
    info.dimensions = dimensions;
    return info;
}

Label_Type_Info structure(const char* name, unsigned address, unsigned size, const QList<Label_Type_Info>& members) {
    Label_Type_Info type = element(name, 0, size);
    type.typeFlags = LabelIsStructType;
    type.members = members;
    type.memberCount = static_cast<quint32>(members.size());
    Label_Type_Info info = element(name, StructTypeCode, address);
    info.elementType << type;
    return info;
}

QList<Label_Type_Info> shapes() {
    const QList<int> many = QList<int>() << 10 << 0 << static_cast<int>(ShapeElements);
    const QList<int> grid = QList<int>() << 10 << 0 << 4 << 0 << 3;
    const Label_Type_Info limits =
        structure("Limits", 8, 8, QList<Label_Type_Info>() << element("Low", 5, 0) << element("High", 5, 4));
    const QList<Label_Type_Info> motor = QList<Label_Type_Info>()
                                         << element("Id", 3, 0) << element("Speed", 7, 4) << element("Temp", 4, 8);
    const QList<Label_Type_Info> drive = QList<Label_Type_Info>() << element("State", 3, 0) << limits;
    const QList<Label_Type_Info> line = QList<Label_Type_Info>()
                                        << element("Name", 3, 0) << array(structure("Drives", 4, 16, drive), grid);
    return QList<Label_Type_Info>() << array(structure("Motors", 500, 12, motor), many)
                                    << array(structure("Line", 4000, 200, line), many);
}

QList<Label_Type_Info> tagsFrom(unsigned address, int count, int step) {
    QList<Label_Type_Info> labels;
    for (int i = 0; i < count; ++i)
        labels.append(element(tag(i).toLatin1(), 5, address + static_cast<unsigned>(i * step)));
    return labels;
}

void emptyLists() {
    const Mutex_Lock lock(PLC_driver.listMutex);
    PLC_driver.readList.clear();
    PLC_driver.writeList.clear();
    PLC_driver.onceReadList.clear();
    PLC_driver.groupList.clear();
    PLC_driver.protocolList.clear();
    PLC_driver.writeBurst = 0;
    PLC_driver.onceReadBurst = 0;
}

}  // namespace

ComInfo& reset(int maxBytesPerRequest) {
    settings = ComInfo();
    settings.maxBytesPerRequest = maxBytesPerRequest;
    settings.retryLimit = 3;
    settings.writeMode = 2;
    SetComInfo(&settings);
    emptyLists();
    {
        const Mutex_Lock lock(PLC_driver.labelMutex);
        PLC_driver.labelTable.clear();
    }
    forgetResolved();  // after the table, whose size is what the cache is made ready for
    const Mutex_Lock lock(PLC_driver.dataMutex);
    PLC_driver.dataImage.clear();
    return settings;
}

QString tag(int number) { return QString::fromLatin1(PlainLabel).arg(number); }

QList<Label_Type_Info> tags(int count) { return tagsFrom(0, count, TagStep); }

void passTags(int count) {
    QList<Label_Type_Info> labels = tags(count);
    PassVarName_2(&labels);
}

void passShapes() {
    QList<Label_Type_Info> labels = shapes();
    PassVarName_2(&labels);
}

QList<HOST_VAR> scatteredTags(int count) {
    QList<HOST_VAR> definitions;
    for (int i = 0; i < count; ++i) {
        HOST_VAR definition;
        definition.label = tag(static_cast<int>(static_cast<qint64>(i) * Stride % count));
        definition.count = 2;
        definitions.append(definition);
    }
    return definitions;
}

QList<RW_VAR> scatteredRequests(int count) {
    QList<RW_VAR> requests;
    for (int i = 0; i < count; ++i) {
        RW_VAR request;
        request.varId = -1;
        request.label = tag(static_cast<int>(static_cast<qint64>(i) * Stride % count));
        request.address = static_cast<quint32>(static_cast<qint64>(i) * Stride % count * TagStep);
        request.length = 4;
        requests.append(request);
    }
    return requests;
}

void pollOneGroup() {
    QList<Label_Type_Info> labels;
    labels << array(element("Block", 1, BlockAddress), QList<int>() << 10 << 0 << 4096);
    PassVarName_2(&labels);
    HOST_VAR definition;
    definition.label = QLatin1String("Block[0]");
    definition.count = GroupBytes;
    QList<HOST_VAR> definitions;
    definitions << definition;
    settings.maxBytesPerRequest = GroupBytes;
    ReCreatReadVarList(&definitions);
}

QStringList pollArea(int bytes) {
    enum { ValueBytes = 4 };
    const int count = bytes / ValueBytes;
    QList<Label_Type_Info> labels = tagsFrom(BlockAddress, count, ValueBytes);
    PassVarName_2(&labels);
    QList<HOST_VAR> definitions = scatteredTags(count);
    ReCreatReadVarList(&definitions);
    QStringList texts;
    for (int i = 0; i < definitions.size(); ++i)
        texts.append(definitions.at(i).label);
    return texts;
}

QList<Poll_Reply> pollUntilItRepeats() {
    QList<Poll_Reply> replies;
    QByteArray first;
    for (;;) {
        const Protocol* const frame = ComCommunication();
        if (frame == nullptr || frame->frame == first) break;
        if (first.isEmpty()) first = frame->frame;
        Poll_Reply reply = {replyTo(*frame), 0};
        const int items =
            (frame->frameLength - frame_layout::HeaderSize - frame_layout::CheckSize) / frame_layout::RangeSize;
        reply.polled = frame->payloadLength - items * frame_layout::CountSize;
        DataCom(&reply.bytes, reply.bytes.size());
        replies.append(reply);
    }
    if (replies.isEmpty()) return replies;
    // The first frame is in flight again; its reply completes it, and the second one is the next.
    DataCom(&replies.first().bytes, replies.first().bytes.size());
    replies.append(replies.takeFirst());
    return replies;
}

QByteArray replyTo(const Protocol& frame) {
    using namespace frame_layout;
    QByteArray reply(HeaderSize, '\0');
    const unsigned char* range = reinterpret_cast<const unsigned char*>(frame.frame.constData()) + HeaderSize;
    for (; reply.size() < frame.replyLength - CheckSize; range += RangeSize) {
        const int count = range[4] | range[5] << 8;
        reply.append(static_cast<char>(range[4])).append(static_cast<char>(range[5]));
        for (int i = 0; i < count; ++i)
            reply.append(static_cast<char>(i));
    }
    const unsigned short check = straightforward::crc(reinterpret_cast<const unsigned char*>(reply.constData()),
                                                      static_cast<unsigned short>(reply.size()));
    return reply.append(static_cast<char>(check & 0xFF)).append(static_cast<char>(check >> 8));
}

void forgetResolved() {
    QList<Label_Type_Info> none;
    PassVarName_2(&none);
}

RW_VAR tagRead(int number) {
    RW_VAR read;
    read.varType = 3;
    read.varId = number;
    read.label = tag(number);
    read.length = 4;
    return read;
}

void exchange(QByteArray& reply, int times) {
    for (int i = 0; i < times; ++i)
        if (ComCommunication() != nullptr) DataCom(&reply, reply.size());
}

}  // namespace scene
