// What the host hands to the driver, as the driver's records: settings, label definitions and texts.
#ifndef VORNEX_HOST_DRIVER_LABELS_H
#define VORNEX_HOST_DRIVER_LABELS_H

#include <vornex_label_tcp/Host_Records.h>
#include <vornex_label_tcp/Label_Records.h>

#include "labels/Label_File.h"

namespace vornex {

// A run of bytes behind a label, in the terms of the driver's entry points.
struct Label_Range {
    std::string label;  // as the driver resolves it, templates included
    int index = 0;      // for a template
    int code = 0;       // type code of its element
    std::uint32_t bytes = 0;
};

// Every label of the file, structures with their members to any depth. The file has been checked by its reader.
QList<Label_Type_Info> driverLabels(const Label_File& file);
QString driverText(const std::string& text);

// The settings record as the host sets it up.
void setUpComInfo(ComInfo& comInfo, int maxBytes, int retries);

// The host's count for the run: bytes for type codes 1, 2, 10 and 11, 16-bit words for the others.
int hostCount(const Label_Range& range);
// Controller bytes for the range as the driver takes them to write: the value of a type 2 element from a 16-bit word.
std::string hostLayout(const Label_Range& range, const std::string& bytes);

// Stands for bare memory: pointed to where it is needed. No label file has such a name.
extern const char MemoryLabel[];
// The definitions that point it there.
QList<Label_Type_Info> memoryLabel(std::uint32_t address, int code);

}  // namespace vornex

#endif
