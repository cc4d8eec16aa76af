#include "Driver_Labels.h"

namespace vornex {

namespace {

Label_Type_Info structType(const Label_File& file, const std::string& name) {
    const Struct_Type& type = file.structs.at(name);
    Label_Type_Info info;
    info.name = QString::fromUtf8(name.c_str());
    info.typeFlags = static_cast<quint16>(StructTypeCode | LabelIsStructType);
    info.address = type.size;
    info.memberCount = static_cast<quint32>(type.members.size());
    for (const Label& member : type.members) info.members.append(driverLabel(file, member));
    return info;
}

// Radix, then lowest index and end of each dimension: the end is one past the file's inclusive bound.
QList<int> dimensionList(const Type_Ref& type) {
    QList<int> list;
    list.append(type.radix);
    for (const Index_Bounds& bounds : type.bounds) {
        list.append(bounds.low);
        list.append(bounds.high + 1);
    }
    return list;
}

}  // namespace

Label_Type_Info driverLabel(const Label_File& file, const Label& label) {
    Label_Type_Info info;
    info.name = QString::fromUtf8(label.name.c_str());
    info.typeFlags = static_cast<quint16>(label.type.code);
    info.address = label.at;
    if (!label.type.bounds.empty()) {
        info.typeFlags = static_cast<quint16>(info.typeFlags | LabelIsArray);
        info.dimensionCount = static_cast<quint32>(label.type.bounds.size());
        info.dimensions = dimensionList(label.type);
    }
    if (label.type.code == StructTypeCode) info.elementType.append(structType(file, label.type.structName));
    return info;
}

QList<Label_Type_Info> driverLabels(const Label_File& file) {
    QList<Label_Type_Info> labels;
    for (const Label& label : file.labels) labels.append(driverLabel(file, label));
    return labels;
}

}  // namespace vornex
