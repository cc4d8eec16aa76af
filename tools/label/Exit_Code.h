// How the tool ends. Scripts rely on these numbers.
#ifndef VORNEX_LABEL_EXIT_CODE_H
#define VORNEX_LABEL_EXIT_CODE_H

#include <stdexcept>
#include <string>

namespace vornex {

enum class Exit_Code {
    Ok = 0,
    Usage = 1,           // options or arguments
    Label = 2,           // a label or the label file
    NoConnection = 3,    // the controller cannot be reached
    GaveUp = 4,          // the driver gave up on a request, or lost it
    VerifyMismatch = 5,  // what was read back, or replayed, is not what was expected
    Library = 6,         // the driver library cannot be used
    Output = 8,          // an output could not be written; as in vornex-sim
    Interrupted = 130,   // ended by Ctrl-C
    ReaderGone = 141,    // nobody reads standard output any more; told by nothing but this, as shells know it
};

// Ends the verb: the message is printed and the tool exits with the code. So does a File_Error, with Label, and a
// std::invalid_argument, with Usage.
class Tool_Error : public std::runtime_error {
public:
    Tool_Error(Exit_Code exitCode, const std::string& message) : std::runtime_error(message), code(exitCode) {}
    const Exit_Code code;
};

}  // namespace vornex

#endif
