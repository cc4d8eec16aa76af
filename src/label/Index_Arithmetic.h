// Index groups of label segments: splitting them off, turning them into element numbers, rewriting templates.
// Free functions without state: any thread, no locks.
#ifndef VORNEX_LABEL_INDEX_ARITHMETIC_H
#define VORNEX_LABEL_INDEX_ARITHMETIC_H

#include "label/Label_Path.h"
#include "vornex_label_tcp/Entry_Points.h"

// Results of label operations. Label_IndexBad and the others leave no trace but the code.
enum Label_Result {
    LabelOk = 0,
    LabelPathMismatch = 1,   // the path does not fit the definitions, or a definition breaks its promises
    LabelUnknown = 2,        // the first name is not in the label table
    LabelIndexBad = 3,       // an index is no number in the array's radix, or outside its dimension
    LabelEmpty = 6,          // the label text is empty
    LabelMemberUnknown = 7,  // a segment names no member of the structure
};

// Results of Address_offset.
enum Offset_Result {
    OffsetRewritten = 0,
    OffsetNoIndexSyntax = 1,  // the segment holds no "%%", "[" or "]"
    OffsetMalformed = 2,      // no "[", no "]" behind it, or a definition that breaks its promises
};

// Splits the index group off a segment, as splitSegment does. False: there is none, both texts unchanged.
bool get_label_address_array_split(QString& segment, QString& indexList);

// Turns an index list into the number of the element in row-major order, counted from 0. Results: LabelOk,
// LabelPathMismatch, LabelIndexBad; `element` is set by LabelOk only.
VORNEX_EXPORT int get_label_address_array_memory_index(QString indexList, int dimensionCount,
                                                       const QList<int>& dimensions, unsigned int& element)
    __attribute__((warn_unused_result));
int elementNumber(const Text_View& indexList, int dimensionCount, const QList<int>& dimensions, unsigned int& element)
    __attribute__((warn_unused_result));

// Rewrites the index group of one array segment for an index number: "%%" becomes the number, "a+b" its sum, missing
// indexes the lowest ones; indexes past the end carry into the next outer dimension, past the whole array into its
// last element. Offset_Result; anything but OffsetRewritten leaves `segment` unchanged.
VORNEX_EXPORT int Address_offset(const Label_Type_Info& entry, QString& segment, int index)
    __attribute__((warn_unused_result));

// Finds the first array segment of `path`, from number `segment` on, that carries index syntax, and rewrites it.
// `entry` is what that segment refers to. Results: LabelOk, LabelPathMismatch, LabelMemberUnknown; only LabelOk
// changes `path`.
VORNEX_EXPORT int get_label_address_address_offset(const Label_Type_Info& entry, QStringList& path, int segment,
                                                   int index) __attribute__((warn_unused_result));

// The first of the structure type's members with that name, or null. Looks only at members that exist.
const Label_Type_Info* findMember(const Label_Type_Info& structType, const Text_View& name);

#endif
