// info: which library this is, and whether it fits the tool.
#include <dlfcn.h>
#include <elf.h>
#include <link.h>

#include <filesystem>
#include <vector>

#include <vornex_label_tcp/Entry_Points.h>

#include "label/Tool.h"
#include "label/verbs/Verb_Table.h"
#include "text/Text.h"

namespace vornex {

namespace {

// What the library's dynamic section says.
struct Library_Facts {
    std::string soname;
    std::vector<std::string> needed;
    std::string runPath;
};

Library_Facts factsOf(const std::string& path) {
    Library_Facts facts;
    // loaded already: this only finds it
    void* const handle = dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    link_map* map = nullptr;
    if (!handle || dlinfo(handle, RTLD_DI_LINKMAP, &map) != 0 || !map) return facts;
    const char* strings = nullptr;
    for (const ElfW(Dyn)* entry = map->l_ld; entry->d_tag != DT_NULL; ++entry) {
        if (entry->d_tag == DT_STRTAB) strings = reinterpret_cast<const char*>(entry->d_un.d_ptr);
    }
    for (const ElfW(Dyn)* entry = map->l_ld; strings && entry->d_tag != DT_NULL; ++entry) {
        const char* const text = strings + entry->d_un.d_val;
        if (entry->d_tag == DT_SONAME) facts.soname = text;
        if (entry->d_tag == DT_NEEDED) facts.needed.push_back(text);
        if (entry->d_tag == DT_RUNPATH || entry->d_tag == DT_RPATH) facts.runPath = text;
    }
    dlclose(handle);
    return facts;
}

class Report {
public:
    explicit Report(Output& output) : out(output) {}
    void fact(const std::string& name, const Value& value) {
        const std::size_t width = 24;
        Row row;
        row.add(key::fact, name).add(key::text, value);
        out.row(row, padded(name, width) + value.shown());
    }

private:
    Output& out;
};

void tellTool(Report& report) {
    report.fact("tool", "vornex-label " VORNEX_VERSION);
    report.fact("tool compiler", __VERSION__);
    report.fact("tool built for Qt", QT_VERSION_STR);
    report.fact("Qt in use", qVersion());
    report.fact("pointer bytes", sizeof(void*));
}

// Host and driver work on the same bytes: these must be the panel's numbers.
void tellRecords(Report& report) {
    report.fact("sizeof RW_VAR", sizeof(RW_VAR));
    report.fact("sizeof Protocol", sizeof(Protocol));
    report.fact("sizeof ComInfo", sizeof(ComInfo));
    report.fact("sizeof HOST_VAR", sizeof(HOST_VAR));
    report.fact("HOST_VAR data bytes", VORNEX_HOST_VAR_DATA_BYTES);
    report.fact("sizeof Label_Type_Info", sizeof(Label_Type_Info));
}

void tellLibrary(Report& report, const Driver_Library& library) {
    const Library_Facts facts = factsOf(library.path());
    std::error_code isNone;
    const std::string real = std::filesystem::canonical(library.path(), isNone);
    report.fact("library", isNone ? library.path() : real);
    report.fact("library SONAME", facts.soname);
    report.fact("library needs", joined(facts.needed, " "));
    if (!facts.runPath.empty()) report.fact("library run path", facts.runPath);
    const std::vector<std::string> names = Driver_Library::entryPointNames();
    report.fact("entry points", std::to_string(names.size()) + " of " + std::to_string(names.size()));
    std::vector<std::string> missing;
    for (const char* name : {"LB", "LW", "RWI", "PLC_driver"}) {
        if (!library.symbol(name)) missing.push_back(name);
    }
    report.fact("exported data", missing.empty() ? "LB LW RWI PLC_driver" : "missing: " + joined(missing, " "));
    const bool codes = library.symbol("_Z17get_label_address7QStringR19ControlInformationM") != nullptr;
    report.fact("label result codes", codes);
}

Exit_Code runInfo(Tool& tool) {
    Report report(tool.out);
    tellTool(report);
    tellRecords(report);
    tellLibrary(report, tool.driver());
    return Exit_Code::Ok;
}

}  // namespace

void addInfoVerb(Verbs& verbs) {
    const Page page = {
        "Tell which driver library is used and whether it fits",
        "The library's place, SONAME and what it needs, whether every entry point is there, the sizes of the "
        "records that host and driver share, and the Qt of tool and library. Ends with code 6 when the "
        "library cannot be used.",
        {{"info", "The library that the tool finds by itself."},
         {"info --library ./libvornex_label_tcp.so.1", "Another one."},
         {"info -o json | jq -r 'select(.fact==\"library\").value'", "One fact for a script."}}};
    verbs.add("info", page, UsesDriver, runInfo);
}

}  // namespace vornex
