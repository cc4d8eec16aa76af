// What lies in a run of controller memory, by name.
#ifndef VORNEX_VALUES_NAMED_VALUES_H
#define VORNEX_VALUES_NAMED_VALUES_H

#include <cstdint>
#include <string>

#include "labels/Label_Names.h"

namespace vornex {

// "Speed = 1500, Motors[1].Id = 7, ... 3 more": the elements in the run, with the values that `data` holds for them;
// without values when `data` is shorter than the run. Empty when there is none.
std::string namedValues(const Label_Names& names, std::uint32_t address, std::uint32_t length, const std::string& data);

}  // namespace vornex

#endif
