// vornex-label replay
#include <fstream>
#include <memory>
#include <stdexcept>

#include "../common/Text_Input.h"
#include "Tool.h"
#include "Trace_Player.h"
#include "Verb_Table.h"

namespace vornex {

namespace {

void show(Output& out, const Trace_Player& player, int line, const Trace_Difference& difference) {
    const bool equal = difference.recorded.empty();
    Row row;
    row.add("frames", player.frames).add("calls", player.calls).add("equal", equal);
    row.add("line", equal ? Value() : Value(line)).add("recorded", difference.recorded).add("now", difference.now);
    const std::string counts = std::to_string(player.frames) + " frames, " + std::to_string(player.calls) + " calls";
    out.row(row, equal ? "equal: " + counts
                       : "differs at line " + std::to_string(line) + " after " + counts +
                             "\n  recorded: " + difference.recorded + "\n  now:      " + difference.now);
}

Exit_Code replay(Tool& tool, const std::string& path) {
    std::ifstream file(path);
    if (!file) throw Tool_Error(Exit_Code::Usage, "record '" + path + "' cannot be read");
    Trace_Player player(tool.driver());
    int line = 0;
    try {
        for (std::string text; nextLine(file, text);) {
            ++line;
            player.play(text);
            if (line % 1000 == 0) tool.out.progress("line " + std::to_string(line));
        }
    } catch (const Trace_Difference& difference) {
        show(tool.out, player, line, difference);
        return Exit_Code::VerifyMismatch;
    } catch (const std::exception& mistake) {
        throw Tool_Error(Exit_Code::Usage, path + ":" + std::to_string(line) + ": " + mistake.what());
    }
    if (line == 0) throw Tool_Error(Exit_Code::Usage, "record '" + path + "' is empty");
    show(tool.out, player, line, {});
    return Exit_Code::Ok;
}

}  // namespace

Verb replayVerb() {
    const auto path = std::make_shared<std::string>();
    Verb verb;
    verb.name = "replay";
    verb.summary = "Feed a recorded link through the driver, without a controller";
    verb.description =
        "Takes a record made with --trace FILE.jsonl, repeats the host's calls on the driver and hands it the recorded "
        "replies. Every frame and result is compared with the record; the first difference is shown and ends the tool "
        "with exit status 5. The record holds its label file, so that no other file is needed.";
    verb.options = {Option("FILE", "", "The record.", path.get()).must()};
    verb.examples = {
        {"replay link.jsonl", "Does this driver still do what it did?"},
        {"replay link.jsonl --library ./libvornex_label_tcp.so.1", "The same for another build of the driver."},
        {"replay link.jsonl -o json", "The outcome as a JSON object."},
    };
    verb.run = [path](Tool& tool) { return replay(tool, *path); };
    return verb;
}

}  // namespace vornex
