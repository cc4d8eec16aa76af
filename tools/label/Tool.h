// What a verb works with: options, output, the label file and the driver, the last two fetched when first asked for.
#ifndef VORNEX_LABEL_TOOL_H
#define VORNEX_LABEL_TOOL_H

#include <atomic>
#include <memory>
#include <string>

#include "host/Driver_Library.h"
#include "label/Common_Options.h"
#include "label/Exit_Code.h"
#include "label/Output.h"
#include "labels/Label_File.h"

namespace vornex {

class Tool {
public:
    explicit Tool(const Common_Options& commonOptions);

    // The label file of -l. Throws Tool_Error Usage without -l, File_Error for a mistake in the file.
    const Label_File& labels();
    // The same, but an empty file without -l: for verbs that can do without labels.
    const Label_File& labelsIfAny();
    // The driver, loaded. Throws Tool_Error Library.
    const Driver_Library& driver();

    // How the files of this run treat what is there already.
    Output_Policy outputPolicy() const;
    // Any thread: one of several outputs has ended too early. It is told, and the exit code will say so.
    void outputFailed(const Output_Error& error);
    bool anOutputFailed() const { return failedOutput; }

    const Common_Options options;
    Output out;

private:
    std::unique_ptr<Label_File> labelFile;
    const Label_File noLabels;
    std::unique_ptr<Driver_Library> library;
    std::atomic<bool> failedOutput{false};
};

}  // namespace vornex

#endif
