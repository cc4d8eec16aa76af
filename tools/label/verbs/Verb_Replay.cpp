// vornex-label replay
#include <fstream>
#include <memory>
#include <stdexcept>

#include "label/Tool.h"
#include "label/verbs/Verb_Table.h"
#include "text/Text_Input.h"
#include "trace/Trace_Player.h"

namespace vornex {

namespace {

void show(Output& out, const Trace_Player& player, int line, const Trace_Difference& difference) {
    const bool equal = difference.recorded.empty();
    Row row;
    row.add(key::frames, player.frames).add(key::calls, player.calls).add(key::equal, equal);
    row.add(key::line, equal ? Value() : Value(line))
        .add(key::recorded, difference.recorded)
        .add(key::now, difference.now);
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

void addReplayVerb(Verbs& verbs) {
    const auto path = std::make_shared<std::string>();
    const Page page = {
        "Feed a recorded link through the driver, without a controller",
        "Takes a record made with --trace FILE.jsonl, repeats the host's calls on the driver and hands it the recorded "
        "replies. Every frame and result is compared with the record; the first difference is shown and ends the tool "
        "with exit status 5. The record holds its label file, so that no other file is needed.",
        {{"replay link.jsonl", "Does this driver still do what it did?"},
         {"replay link.jsonl --library ./libvornex_label_tcp.so.1", "The same for another build of the driver."},
         {"replay link.jsonl -o json", "The outcome as a JSON object."}}};
    CLI::App& verb = verbs.add("replay", page, UsesDriver, [path](Tool& tool) { return replay(tool, *path); });
    addArgument(verb, "FILE", *path, "The record.", Need::Must);
}

}  // namespace vornex
