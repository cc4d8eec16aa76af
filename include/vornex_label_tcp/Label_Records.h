// Label definitions, as the host hands them over, and resolved labels.
//
// Host and driver share these records in memory: field order and widths are part of the binary interface, pinned by
// the assertions at the end of this file. Build both sides against the same Qt.
#ifndef VORNEX_LABEL_TCP_LABEL_RECORDS_H
#define VORNEX_LABEL_TCP_LABEL_RECORDS_H

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <cstddef>

// Bits of Label_Type_Info::typeFlags. Bits 10 to 15 are not interpreted.
enum Label_Flag {
    LabelTypeMask = 0x00FF,      // type code: 1 to 11 elementary, 12 a structure, anything else has no type
    LabelIsArray = 0x0100,       // dimensionCount and dimensions describe an array
    LabelIsStructType = 0x0200,  // the record describes a structure type: members and memberCount are set
};

// The type code of a structure instance or an array of structures.
enum { StructTypeCode = 12 };

// One label definition. Recursive: a structure type holds its members, and a member of structure type holds its
// structure type in elementType.
struct Label_Type_Info {
    QString name;                        // label or member name, compared exactly
    quint16 typeFlags = 0;               // see Label_Flag
    quint32 address = 0;                 // label: controller byte address; member: byte offset in its structure;
                                         // structure type: bytes of one structure
    quint32 dimensionCount = 0;          // array dimensions, when LabelIsArray is set
    quint32 memberCount = 0;             // members of a structure type
    QList<int> dimensions;               // radix of the indexes, then lowest index and end (one past the highest)
                                         // of each dimension, outermost first: 1 + 2 * dimensionCount entries
    QList<Label_Type_Info> members;      // members of a structure type, in declaration order
    QList<Label_Type_Info> elementType;  // type code 12: the first entry is the structure type
    QString auxText;                     // this and the following: the host's own, carried and never read
    qint32 auxValue1 = 0;
    qint32 auxValue2 = 0;
    QList<int> auxIntList;
    QStringList auxNameList;
};

// A resolved label.
struct ControlInformationM {
    quint8 typeCode = 0;  // type code of the element, 1 to 11; 0: the definition names no type
    quint32 address = 0;  // controller byte address of the element's first byte
    qint32 reserved = 0;  // the host's own, never read
};

namespace vornex_label_records_layout {
enum { P = sizeof(void*) };
static_assert(sizeof(QString) == P && sizeof(QList<int>) == P && sizeof(QStringList) == P, "Qt values are one pointer");
static_assert(offsetof(Label_Type_Info, name) == 0, "name");
static_assert(offsetof(Label_Type_Info, typeFlags) == P, "typeFlags");
static_assert(offsetof(Label_Type_Info, address) == P + 4, "address");
static_assert(offsetof(Label_Type_Info, dimensionCount) == P + 8, "dimensionCount");
static_assert(offsetof(Label_Type_Info, memberCount) == P + 12, "memberCount");
static_assert(offsetof(Label_Type_Info, dimensions) == P + 16, "dimensions");
static_assert(offsetof(Label_Type_Info, members) == 2 * P + 16, "members");
static_assert(offsetof(Label_Type_Info, elementType) == 3 * P + 16, "elementType");
static_assert(offsetof(Label_Type_Info, auxText) == 4 * P + 16, "auxText");
static_assert(offsetof(Label_Type_Info, auxValue1) == 5 * P + 16, "auxValue1");
static_assert(offsetof(Label_Type_Info, auxValue2) == 5 * P + 20, "auxValue2");
static_assert(offsetof(Label_Type_Info, auxIntList) == 5 * P + 24, "auxIntList");
static_assert(offsetof(Label_Type_Info, auxNameList) == 6 * P + 24, "auxNameList");
static_assert(sizeof(Label_Type_Info) == 7 * P + 24, "Label_Type_Info: 52 bytes on the board");
static_assert(offsetof(ControlInformationM, typeCode) == 0 && offsetof(ControlInformationM, address) == 4 &&
                  offsetof(ControlInformationM, reserved) == 8 && sizeof(ControlInformationM) == 12,
              "ControlInformationM: 12 bytes");
}  // namespace vornex_label_records_layout

#endif
