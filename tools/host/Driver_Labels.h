// What the tool hands to the driver, as the driver's records: settings, label definitions and texts.
#ifndef VORNEX_HOST_DRIVER_LABELS_H
#define VORNEX_HOST_DRIVER_LABELS_H

#include <vornex_label_tcp/Host_Records.h>
#include <vornex_label_tcp/Label_Records.h>

#include "labels/Label_File.h"

namespace vornex {

// Every label of the file, structures with their members to any depth. The file has been checked by its reader.
QList<Label_Type_Info> driverLabels(const Label_File& file);
QString driverText(const std::string& text);

// The settings record as the tool sets it up.
void setUpComInfo(ComInfo& comInfo, int maxBytes, int retries);

// The host's count for a run of bytes: bytes for type codes 1, 2, 10 and 11, 16-bit words for the others.
int hostCount(int code, std::uint32_t bytes);

// Stands for bare memory: pointed to where it is needed. No label file has such a name.
extern const char MemoryLabel[];

}  // namespace vornex

#endif
