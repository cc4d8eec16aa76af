// What a template says by itself, before the driver carries indexes that pass an array's end into other elements.
#ifndef VORNEX_LABELS_TEMPLATE_TEXT_H
#define VORNEX_LABELS_TEMPLATE_TEXT_H

#include <optional>
#include <string>

#include "labels/Label_File.h"

namespace vornex {

bool isTemplate(const std::string& text);

// "Motors[7].Speed" for "Motors[%%].Speed" and 7, whether or not there is such an element: the first array of the path
// gets the number, in its radix; sums are added up, missing indexes are the lowest ones. Nothing when the text leads to
// no array with an index group.
std::optional<std::string> templateText(const Label_File& file, const std::string& text, int number);

}  // namespace vornex

#endif
