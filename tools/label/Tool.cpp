#include "label/Tool.h"

#include <stdexcept>

#include "labels/Raw_Label.h"
#include "text/Text.h"

namespace vornex {

namespace {

Output::Format formatOf(const std::string& name) {
    if (name == "json") return Output::Format::Json;
    if (name == "influx") return Output::Format::Influx;
    return name == "csv" ? Output::Format::Csv : Output::Format::Text;
}

}  // namespace

Tool::Tool(const Common_Options& commonOptions)
    : options(commonOptions),
      out(formatOf(commonOptions.format),
          commonOptions.times == "relative" ? Output::Times::Relative : Output::Times::Absolute, commonOptions.quiet,
          commonOptions.verbose) {
    const auto served = options.settings.find("served");
    if (served != options.settings.end()) out.sayController(served->second.value);
}

const Label_File& Tool::labels() {
    if (labelFile) return *labelFile;
    if (options.labelFile.empty() && !noLabels.labels.empty()) return noLabels;
    if (options.labelFile.empty())
        throw Tool_Error(Exit_Code::Usage, "no label file: name one with -l FILE, VORNEX_LABELS or vornex.toml");
    labelFile = std::make_unique<Label_File>(readLabels(options.labelFile));
    out.detail("label file " + options.labelFile + ": " + std::to_string(labelFile->labels.size()) + " labels");
    return *labelFile;
}

Label_File Tool::readLabels(const std::string& path) {
    return readLabelFile(path, options.strict, [this](const std::string& warning) { out.warn(warning); });
}

const Label_File& Tool::labelsIfAny() { return options.labelFile.empty() ? noLabels : labels(); }

std::vector<std::string> Tool::takeRawLabels(std::vector<std::string> labels) {
    for (std::string& label : labels) {
        if (label.empty() || label[0] != '@') continue;
        labelsIfAny();  // loads the file
        try {
            label = takeRawLabel(labelFile ? *labelFile : noLabels, label);
        } catch (const std::invalid_argument& mistake) {
            throw Tool_Error(Exit_Code::Label, mistake.what());
        }
        for (const std::string& file : options.traces) {
            if (!endsIn(file, ".jsonl")) continue;
            throw Tool_Error(Exit_Code::Usage,
                             "a record for replay holds the label file, which has no '" + label + "'");
        }
    }
    return labels;
}

const Driver_Library& Tool::driver() {
    if (!library) {
        library = std::make_unique<Driver_Library>(options.library);
        out.detail("driver library " + library->path());
    }
    return *library;
}

Output_Policy Tool::outputPolicy() const {
    Output_Policy policy;
    if (options.force) policy.existing = Existing_File::Replace;
    if (options.append) policy.existing = Existing_File::Append;
    for (const std::string& file : {options.labelFile, options.library}) {
        if (!file.empty()) policy.filesRead.push_back(file);
    }
    return policy;
}

void Tool::outputIncomplete(const std::string& words) {
    failedOutput = true;
    out.warn(words);
}

void Tool::outputFailed(const Output_Error& error) {
    failedOutput = true;
    out.warn(std::string(error.what()) + "; the run goes on without it");
}

}  // namespace vornex
