// The label file as the driver's label definitions.
#ifndef VORNEX_LABEL_DRIVER_LABELS_H
#define VORNEX_LABEL_DRIVER_LABELS_H

#include <vornex_label_tcp/Label_Records.h>

#include "../common/Label_File.h"

namespace vornex {

// Every label of the file, structures with their members to any depth. The file has been checked by its reader.
QList<Label_Type_Info> driverLabels(const Label_File& file);

}  // namespace vornex

#endif
