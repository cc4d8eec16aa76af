// A mistake in a file that the user wrote.
#ifndef VORNEX_TEXT_FILE_ERROR_H
#define VORNEX_TEXT_FILE_ERROR_H

#include <stdexcept>

namespace vornex {

// what() is "FILE:LINE: label 'NAME': REASON", ready to print.
class File_Error : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace vornex

#endif
