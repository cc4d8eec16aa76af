#include "host/Driver_Labels.h"

#include <map>

namespace vornex {

namespace {

const int WritesGoToController = 2;

// Makes the record of each structure once: all that use it share its members.
class Definitions {
public:
    explicit Definitions(const Label_File& labelFile) : file(labelFile) {}

    Label_Type_Info of(const Label& label);

private:
    const Label_Type_Info& structType(const std::string& name);

    const Label_File& file;
    std::map<std::string, Label_Type_Info> structTypes;
};

// Radix, then lowest index and end of each dimension: the end is one past the file's inclusive bound.
QList<int> dimensionList(const Type_Ref& type) {
    QList<int> list;
    list.append(type.radix);
    for (const Index_Bounds& bounds : type.bounds) {
        list.append(bounds.low);
        list.append(bounds.high + 1);
    }
    if (type.textBytes > 0) {  // the bytes of each text are a dimension more
        list.append(0);
        list.append(static_cast<int>(type.textBytes));
    }
    return list;
}

const Label_Type_Info& Definitions::structType(const std::string& name) {
    const auto known = structTypes.find(name);
    if (known != structTypes.end()) return known->second;
    const Struct_Type& type = file.structs.at(name);
    Label_Type_Info info;
    info.name = driverText(name);
    info.typeFlags = static_cast<quint16>(StructTypeCode | LabelIsStructType);
    info.address = type.size;
    info.memberCount = static_cast<quint32>(type.members.size());
    for (const Label& member : type.members)
        info.members.append(of(member));
    return structTypes[name] = info;
}

Label_Type_Info Definitions::of(const Label& label) {
    Label_Type_Info info;
    info.name = driverText(label.name);
    info.typeFlags = static_cast<quint16>(label.type.code);
    info.address = label.at;
    if (!label.type.bounds.empty()) {
        info.typeFlags = static_cast<quint16>(info.typeFlags | LabelIsArray);
        info.dimensions = dimensionList(label.type);
        info.dimensionCount = static_cast<quint32>(info.dimensions.size() / 2);
    }
    if (label.type.code == StructTypeCode) info.elementType.append(structType(label.type.structName));
    return info;
}

}  // namespace

const char MemoryLabel[] = "@memory";

QString driverText(const std::string& text) { return QString::fromUtf8(text.data(), static_cast<int>(text.size())); }

int hostCount(const Label_Range& range) {
    return static_cast<int>(range.code >= 3 && range.code <= 9 ? range.bytes / 2 : range.bytes);
}

std::string hostLayout(const Label_Range& range, const std::string& bytes) {
    if (range.code != 2) return bytes;
    std::string words;
    for (char byte : bytes)
        words += {byte, '\0'};
    return words;
}

QList<Label_Type_Info> memoryLabel(std::uint32_t address, int code) {
    Label_Type_Info info;
    info.name = MemoryLabel;
    info.typeFlags = static_cast<quint16>(code);
    info.address = address;
    QList<Label_Type_Info> labels;
    labels.append(info);
    return labels;
}

void setUpComInfo(ComInfo& comInfo, int maxBytes, int retries) {
    comInfo.maxBytesPerRequest = maxBytes;
    comInfo.retryLimit = retries;
    comInfo.writeMode = WritesGoToController;
}

QList<Label_Type_Info> driverLabels(const Label_File& file) {
    Definitions definitions(file);
    QList<Label_Type_Info> labels;
    for (const Label& label : file.labels)
        labels.append(definitions.of(label));
    return labels;
}

}  // namespace vornex
