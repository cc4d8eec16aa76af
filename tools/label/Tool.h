// What a verb works with: options, output, the label file and the driver, the last two fetched when first asked for.
#ifndef VORNEX_LABEL_TOOL_H
#define VORNEX_LABEL_TOOL_H

#include <memory>
#include <string>

#include "../common/Label_File.h"
#include "Common_Options.h"
#include "Driver_Library.h"
#include "Output.h"

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

    const Common_Options options;
    Output out;

private:
    std::unique_ptr<Label_File> labelFile;
    const Label_File noLabels;
    std::unique_ptr<Driver_Library> library;
};

}  // namespace vornex

#endif
