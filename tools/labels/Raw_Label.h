// Bare addresses in place of labels: "@100", "@0x64:REAL*8".
#ifndef VORNEX_LABELS_RAW_LABEL_H
#define VORNEX_LABELS_RAW_LABEL_H

#include <string>

#include "labels/Label_File.h"

namespace vornex {

// "@ADDRESS" or "@ADDRESS:TYPE" with any elementary type of Label_Type.h; without one UINT, 16 bits. The address is
// decimal or 0x. Gives the file a label for it and returns that label's name, under which all else is as with any
// other: "@100:REAL", with "[0]" to "[7]". Any other text, and a label of the file that begins so, comes back as it is.
// Throws std::invalid_argument with the reason.
std::string takeRawLabel(Label_File& file, const std::string& text);

}  // namespace vornex

#endif
