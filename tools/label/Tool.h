// What a verb works with, and how it ends: options, output, the label file and the driver, the last two fetched when
// first asked for.
#ifndef VORNEX_LABEL_TOOL_H
#define VORNEX_LABEL_TOOL_H

#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>

#include "host/Driver_Library.h"
#include "label/Common_Options.h"
#include "label/Output.h"
#include "labels/Label_File.h"

namespace vornex {

// Scripts rely on these numbers.
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

class Tool {
public:
    explicit Tool(const Common_Options& commonOptions);

    // The label file of -l. Throws Tool_Error Usage without -l, File_Error for a mistake in the file.
    const Label_File& labels();
    // The same, but an empty file without -l: for verbs that can do without labels.
    const Label_File& labelsIfAny();
    // Before a session: bare addresses ("@100:INT") among the labels become labels, with a label file or without one.
    // Throws Tool_Error Label for an address or type that is none.
    std::vector<std::string> takeRawLabels(std::vector<std::string> labels);
    // Another label file. Throws File_Error; what was passed over in it is told, or with --strict a mistake.
    Label_File readLabels(const std::string& path);
    // The driver, loaded. Throws Tool_Error Library.
    const Driver_Library& driver();

    // How the files of this run treat what is there already.
    Output_Policy outputPolicy() const;
    // Any thread: one of several outputs has ended too early. It is told, and the exit code will say so.
    void outputFailed(const Output_Error& error);
    // The same for one that goes on and lacks something.
    void outputIncomplete(const std::string& words);
    bool anOutputFailed() const { return failedOutput; }

    const Common_Options options;
    Output out;

private:
    std::unique_ptr<Label_File> labelFile;
    Label_File noLabels;  // but those made up
    std::unique_ptr<Driver_Library> library;
    std::atomic<bool> failedOutput{false};
};

}  // namespace vornex

#endif
