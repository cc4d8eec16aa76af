#!/usr/bin/env python3
"""rooms_test.py ROOT: plants faults in a copy of the tree; scripts/check-rooms has to name file, line and rule of each.

The tree itself has to pass, so has what only looks like a fault, and every rule has to be seen red.
"""
import contextlib
import importlib.machinery
import importlib.util
import io
import os
import re
import shutil
import sys
import tempfile

TABLE = "scripts/rooms.toml"
DOCUMENT = "docs/architecture.md"
RULES = {"table", "room", "direction", "others", "include", "folder", "length", "function", "drawing"}
LAST = None  # the line that is added to a file

# A header to include stands in each of these, so that a row is one file and what is said of it.
TARGETS = ["src/base", "src/driver", "src/label", "src/lists", "src/protocol", "tools/text", "tools/labels",
           "tools/host", "tools/trace", "tools/watch", "tools/label", "tools/sim/net"]

# File, new or to be added to; line and text of the include; the room that it is in and the room that it must not see.
DIRECTIONS = [
    ("src/base/New.cpp", 1, '#include "driver/Communication_Protocol.h"', "src/base", "state"),
    ("src/label/New.cpp", 2, '\n#include "protocol/Planted.h"', "src/label", "src/protocol"),
    ("src/protocol/New.cpp", 1, '#include "label/Planted.h"', "src/protocol", "src/label"),
    ("src/lists/New.cpp", 1, '#include "../protocol/Planted.h"', "src/lists", "src/protocol"),
    ("src/lists/New.cpp", 1, "#include <protocol/Func_DealData.h>", "src/lists", "data image"),
    ("src/data/New.cpp", 1, '#include "driver/Planted.h"', "src/data", "src/driver"),
    ("src/driver/Mutex.h", LAST, '#include "Planted.h"', "state", "src/driver"),
    ("src/protocol/Func_DealData.h", LAST, '#include "Planted.h"', "data image", "src/protocol"),
    ("src/protocol/Frame_Layout.h", LAST, '#include "Planted.h"', "src/base", "src/protocol"),
    ("src/driver/New.cpp", 1, '#include "text/Planted.h"', "src/driver", "tools/text"),
    ("tools/text/New.cpp", 1, '#include "labels/Planted.h"', "tools/text", "tools/labels"),
    ("tools/wire/New.cpp", 1, "#include <host/Planted.h>", "tools/wire", "tools/host"),
    ("tools/values/New.cpp", 1, '#include "host/Planted.h"', "tools/values", "tools/host"),
    ("tools/host/link/New.cpp", 1, '#include "../../label/Planted.h"', "tools/host", "tools/label"),
    ("tools/watch/New.cpp", 1, '#include "../watch/../trace/Planted.h"', "tools/watch", "tools/trace"),
    ("tools/trace/New.cpp", 1, "#include <trace/../watch/Planted.h>", "tools/trace", "tools/watch"),
    ("tools/label/verbs/New.cpp", 1, '#include "sim/net/Planted.h"', "tools/label", "tools/sim"),
    ("tools/label/New.cpp", 1, '#include "lists/Planted.h"', "tools/label", "src/lists"),
    ("tools/sim/New.cpp", 1, '#include "label/Planted.h"', "tools/sim", "tools/label"),
    ("tools/sim/New.cpp", 1, '#include "../../src/base/Planted.h"', "tools/sim", "src/base"),
    ("tools/sim/plant/New.cpp", 1, "#include <vornex_label_tcp/Entry_Points.h>", "tools/sim", "include"),
    # spellings that a compiler takes
    ("tools/wire/New.cpp", 2, '/*\n*/ # \\\n include /* */ "host/Planted.h" // more', "tools/wire", "tools/host"),
    ("tools/wire/New.cpp", 1, '%:include"host/Planted.h"', "tools/wire", "tools/host"),
    ("tools/wire/New.cpp", 2, 'const char* url = "http://";\n#include "host/Planted.h"', "tools/wire", "tools/host"),
]

# File; its text; rule and text of what has to be said.
FILES = [
    ("tools/labels/New.cpp:1", "#include <QtCore/QString>", "others", "tools/labels does without Qt"),
    ("tools/sim/New.cpp:1", "#include <QString>", "others", "tools/sim does without Qt"),
    ("tools/host/New.cpp:1", "#include <CLI/CLI.hpp>", "others", "tools/host does without CLI11"),
    ("tools/watch/New.cpp:1", "#include <asio/post.hpp>", "others", "tools/watch does without asio"),
    ("tools/wire/New.cpp:1", "#include <nlohmann/json.hpp>", "others", "tools/wire does without JSON"),
    ("src/lists/New.cpp:1", "#include <unistd.h>", "others", "src/lists does without system"),
    ("tools/text/New.cpp:1", "#include <boost/any.hpp>", "others", "<boost/any.hpp> is of no known family"),
    ("tools/text/New.cpp:1", "#include </usr/include/elf.h>", "others", "</usr/include/elf.h> is of no known family"),
    ("tools/text/New.cpp:1", '#include "text/Nothing.h"', "include", '"text/Nothing.h" is not found'),
    ("tools/text/New.cpp:1", "#include HEADER", "include", "HEADER cannot be followed"),
    ("tools/text/New.cpp:1", '#include "New.cpp"', "include", "tools/text/New.cpp is no header"),
    ("tools/new/New.cpp:1", "", "room", "the folder tools/new belongs to no room"),
    ("tools/label/new/New.h:1", "", "room", "the folder tools/label/new belongs to no room"),
    ("src/New.cpp:1", "", "room", "the folder src belongs to no room"),
    ("tools/text/New.cpp:400", "// a line\n" * 399, "length", "the file is longer than"),
    ("tools/text/New.cpp:4", "#include <string>\n\n// not the comment\nint f() {\n" + "    g();\n" * 39 + "}", "function",
     "the function has 41 lines, at most 40"),
    ("tools/text/New.h:2", "struct New {\n    New(\n        int b) : a{b} {\n" + "        g();\n" * 38 + "    }\n    int a;\n};",
     "function", "the function has 41 lines"),
    ("src/base/New.cpp:2", "\nint operator==(\n    const char* a = \"{\") {\n" + "    do { g(); } while (h());\n" * 58 + "}",
     "function", "the function has 61 lines, at most 60"),
    ("tests/New_Test.cpp:301", "// a line\n" * 300, "length", "the file is longer than 300 lines"),
]

# What stands in the table or the document, what is put in its place; where, rule and text of what has to be said.
CHANGES = [
    (TABLE, 'sees = ["tools/text"]', 'sees = ["tools/host"]',
     TABLE, "table", "tools/labels on floor 1 cannot see tools/host on floor 3"),
    (TABLE, 'sees = ["tools/text"]', 'sees = ["tools/new"]', TABLE, "table", "which is no room"),
    (TABLE, 'others = ["JSON", "system"]', 'others = ["Json", "system"]', TABLE, "table", "tools/text includes Json, which is no family"),
    (TABLE, 'others = ["JSON", "system"]', 'others = ["JSON", "Qt"]', TABLE, "table", "tools/sim must never reach Qt"),
    (TABLE, 'files = ["src/driver/', 'files = ["src/driver/New.h", "src/driver/',
     TABLE, "table", "state names src/driver/New.h, which is no file"),
    (TABLE, 'files = ["src/driver/', 'files = ["src/protocol/Func_DealData.h", "src/driver/',
     "src/protocol/Func_DealData.h", "table", "is in two rooms, state and data image"),
    (TABLE, '"tools/host/link"]', '"tools/host/link", "tools/watch"]',
     "tools/watch/Planted.h", "table", "is in two rooms, tools/host and tools/watch"),
    (TABLE, '[tools."tools/watch"]', '[tools."tools/new"]',
     "tools/watch/Planted.h", "room", "the folder tools/watch belongs to no room"),
    (TABLE, '[tools."tools/watch"]', '[tools."tools/new"]', TABLE, "table", "tools/new holds no file"),
    (TABLE, 'does = "', 'does = "not ', DOCUMENT, "drawing", "differs from"),
    (DOCUMENT, "| Question |", "| Answer |", DOCUMENT, "drawing", "differs from"),
    (DOCUMENT, "<!-- rooms: tools", "<!-- room: tools", DOCUMENT, "drawing", "has no part"),
]

HARMLESS = [
    '// #include "labels/Planted.h"',
    '/*\n#include "labels/Planted.h"\n*/',
    'const char* raw = R"(\n#include "labels/Planted.h"\n)";',
    '#include <vector>\n#include "Planted.h"\n#include <nlohmann/json.hpp>\n',
    "int f() {\n" + "    g();\n" * 38 + "}\n",
    "const int Table[] = {\n" + "    1,\n" * 50 + "};\n",
    "struct Long {\n" + "    int f() { return g({1}); }\n" * 50 + "};\n",
]


def load(script):
    """The script as a module, so that a row does not take a process."""
    sys.dont_write_bytecode = True
    loader = importlib.machinery.SourceFileLoader("check_rooms", script)
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("check_rooms", loader))
    loader.exec_module(module)
    return module


class Trial:
    """A copy of the tree, the check run in it, and what it did not say."""

    def __init__(self, source, root):
        self.root = root
        self.script = load(os.path.join(source, "scripts/check-rooms"))
        self.failed = []
        self.red = set()
        for top in ("src", "include", "tools", "docs"):
            shutil.copytree(os.path.join(source, top), self.path(top))
        self.write(TABLE, open(os.path.join(source, TABLE), encoding="utf-8").read())

    def path(self, name):
        return os.path.join(self.root, name)

    def read(self, name):
        with open(self.path(name), encoding="utf-8") as file:
            return file.read()

    def write(self, name, text):
        os.makedirs(os.path.dirname(self.path(name)), exist_ok=True)
        with open(self.path(name), "w", encoding="utf-8") as file:
            file.write(text)

    def check(self, *options):
        said = io.StringIO()
        with contextlib.redirect_stdout(said):
            code = self.script.main([*options, self.root])
        return code, said.getvalue()

    def expectGood(self, what, *options):
        code, said = self.check(*options)
        if code != 0:
            self.failed.append(f"{what}\n  has to pass, but: {said}")

    def expectFault(self, what, place, rule, text):
        code, said = self.check()
        wanted = re.compile(rf"^{re.escape(place)}(:\d+)?: {rule}: .*{re.escape(text)}", re.MULTILINE)
        if code == 1 and wanted.search(said):
            self.red.add(rule)
        else:
            self.failed.append(f"{what}\n  has to give {place}: {rule}: {text}\n  gives {code}, {said}")

    def withFile(self, name, text, act):
        """Runs `act` while the file holds the text, and puts things back."""
        before = self.read(name) if os.path.exists(self.path(name)) else None
        self.write(name, text)
        act()
        if before is None:
            os.remove(self.path(name))
            while not os.listdir(os.path.dirname(self.path(name))):
                name = os.path.dirname(name)
                os.rmdir(self.path(name))
        else:
            self.write(name, before)


def tryIncludes(trial):
    for name, line, text, room, unseen in DIRECTIONS:
        if line is LAST:
            before = trial.read(name)
            line, text = before.count("\n") + 1, before + text
        trial.withFile(name, text + "\n", lambda: trial.expectFault(
            text[-60:], f"{name}:{line}", "direction", f"{room} does not see {unseen} ("))
    for place, text, rule, said in FILES:
        trial.withFile(place.split(":")[0], text + "\n", lambda: trial.expectFault(text[-60:], place, rule, said))
    for text in HARMLESS:
        trial.withFile("tools/text/New.cpp", text, lambda: trial.expectGood(text))


def tryChanges(trial):
    for name, old, new, place, rule, said in CHANGES:
        before = trial.read(name)
        changed = before.replace(old, new, 1)
        if changed == before:
            trial.failed.append(f"{name} no longer holds {old}: give this row another text")
            continue
        trial.withFile(name, changed, lambda: trial.expectFault(f"{old} -> {new}", place, rule, said))


def tryFolder(trial):
    for number in range(30):
        trial.write(f"tools/watch/Filler_{number}.h", "")
    trial.expectFault("30 files more", "tools/watch", "folder", "at most 25")
    for number in range(30):
        os.remove(trial.path(f"tools/watch/Filler_{number}.h"))


def tryDrawing(trial):
    """A part that was lost comes back as it was."""
    before = trial.read(DOCUMENT)
    emptied = re.sub(r"(<!-- rooms: tools[^\n]*\n).*?(<!-- rooms end)", r"\1\2", before, flags=re.DOTALL)
    trial.write(DOCUMENT, emptied)
    trial.expectGood("--draw", "--draw")
    if trial.read(DOCUMENT) != before:
        trial.failed.append("--draw does not bring back what was in the document")


def main(source):
    with tempfile.TemporaryDirectory() as root:
        trial = Trial(source, root)
        trial.expectGood("the tree as it stands")
        for folder in TARGETS:
            trial.write(f"{folder}/Planted.h", "")
        trial.expectGood("headers planted")
        tryIncludes(trial)
        tryChanges(trial)
        tryFolder(trial)
        tryDrawing(trial)
        trial.expectGood("the tree afterwards")
    if trial.red != RULES:
        trial.failed.append(f"never seen red: {', '.join(sorted(RULES - trial.red))}")
    print("\n".join(trial.failed) or
          f"{len(DIRECTIONS) + len(FILES) + len(CHANGES) + 1} faults planted, each found; {len(RULES)} rules seen red")
    return 1 if trial.failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
