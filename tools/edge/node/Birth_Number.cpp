#include "edge/node/Birth_Number.h"

#include <filesystem>
#include <stdexcept>
#include <utility>

#include "text/Number.h"
#include "text/Output_File.h"
#include "text/Text.h"
#include "text/Text_Input.h"

namespace vornex::edge {

namespace {

const int Numbers = 256;

}  // namespace

// The file has the last number that was used.
Birth_Number::Birth_Number(std::string file) : path(std::move(file)) {
    std::error_code error;
    if (!std::filesystem::exists(path, error)) return;
    try {
        upcoming = (wholeNumber<int>(trimmed(split(wholeText(path), '\n')[0]), 0, Numbers - 1) + 1) % Numbers;
    } catch (const File_Error& mistake) {
        problem = mistake.what();
    } catch (const std::invalid_argument& mistake) {
        problem = path + ": " + mistake.what();
    }
}

int Birth_Number::next() {
    const int number = std::exchange(upcoming, (upcoming + 1) % Numbers);
    try {
        writeWholeFile(path, std::to_string(number) + "\n", {Existing_File::Replace, {}});
    } catch (const Output_Error& error) {
        problem = error.what();
    }
    return number;
}

std::string Birth_Number::takeProblem() { return std::exchange(problem, std::string()); }

}  // namespace vornex::edge
