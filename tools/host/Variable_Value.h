// Values of variables: out of bytes for the reader, and out of the user's text into bytes.
#ifndef VORNEX_HOST_VARIABLE_VALUE_H
#define VORNEX_HOST_VARIABLE_VALUE_H

#include <string>

#include "host/Variables.h"
#include "values/Shown_Value.h"

namespace vornex {

// How the variable's values are shown and typed.
Value_Form formOf(const Variable& variable);

// The run of `bytes` under the variable's view, as the bytes have it: one value, or a list when it holds several. Text
// and bytes show a run of one-byte elements as one value; of a bit it is true or false.
Value rawValue(const Variable& variable, const std::string& bytes);
// The same as it is shown: scaled, by the names of states.
Value shownValue(const Variable& variable, const std::string& bytes);

// The controller bytes for what the user wrote: a value as bytesOfShown() takes it, text in quotes over one-byte
// elements, a list [1, 2, 3], @FILE with raw bytes. Throws std::invalid_argument with the reason: not a value of the
// view, out of range or of the label file's limits, more elements than the array has from here on. A single value does
// not fit a whole array. Of a bit it is the element with no other bit set.
std::string bytesOfValue(const Variable& variable, bool wholeArray, const std::string& text);

// What people may not expect of the write that bytesOfValue() made of `text`: "" mostly. A text fills its array with
// zeros, a list that is shorter than its array leaves the rest; a float holds the nearest number.
std::string writeRemark(const Variable& variable, bool wholeArray, const std::string& text, std::size_t bytesWritten);

// "Speed = 1500 rpm", and with a band "Speed = 1500 rpm (high)"
std::string assignmentText(const Variable& variable, const Value& value, const std::string& band = "");

}  // namespace vornex

#endif
