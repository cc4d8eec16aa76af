// Values of variables as metrics carry them, and the other way round.
#ifndef VORNEX_EDGE_PAYLOAD_WIRE_VALUE_H
#define VORNEX_EDGE_PAYLOAD_WIRE_VALUE_H

#include <cstdint>

#include "edge/payload/Payload.h"
#include "labels/Label_Type.h"
#include "values/Value.h"

namespace vornex::edge {

// The datatype of an element of `bytes` bytes under the view. Elements that hold a list, and bytes, are texts. A value
// that is scaled is a Double, whatever its view.
Data_Type dataTypeOf(View view, std::uint32_t bytes, bool isScaled = false);

// Nothing for a value that is not known, and for one that the datatype cannot carry.
Wire_Value wireValue(Data_Type type, const Value& value);

// What a command asks for, as it would be typed: digits, true or false, a text; the datatype is one of dataTypeOf().
// Throws std::invalid_argument: null, a value of another kind than the datatype's, a number beyond its range.
std::string typedText(Data_Type type, const Wire_Value& value);

}  // namespace vornex::edge

#endif
