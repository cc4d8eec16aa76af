// Text from files and from standard input, and mistakes in it. A device or a file of something else ends in an error,
// not in all memory.
#ifndef VORNEX_TEXT_TEXT_INPUT_H
#define VORNEX_TEXT_TEXT_INPUT_H

#include <istream>
#include <stdexcept>
#include <string>

namespace vornex {

// A mistake in a file that the user wrote. what() is "FILE:LINE: label 'NAME': REASON", ready to print.
class File_Error : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The whole file. Throws File_Error when it cannot be read or has more than 64 MiB.
std::string wholeText(const std::string& path);
// The same of a file that holds text: File_Error for UTF-16 and UTF-32, which editors call "Unicode".
std::string wholeUtf8(const std::string& path);
// "UTF-16" or "UTF-32" when that is what the beginning of a text looks like, else empty.
std::string wideEncoding(const std::string& text);
// Takes the next line, without its end; false when there is none. Throws std::invalid_argument when it cannot be
// read or has more than 128 MiB, room for a label file written in JSON.
bool nextLine(std::istream& in, std::string& line);

}  // namespace vornex

#endif
