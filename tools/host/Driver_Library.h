// The driver as a panel loads it: dlopen, and every entry point looked up by its plain name.
#ifndef VORNEX_HOST_DRIVER_LIBRARY_H
#define VORNEX_HOST_DRIVER_LIBRARY_H

#include <string>
#include <vector>

#include <vornex_label_tcp/Entry_Points.h>

namespace vornex {

// Every entry point, for what is declared, bound and told of each.
#define VORNEX_EACH_ENTRY_POINT(DO) \
    DO(SetComInfo)                  \
    DO(RegistCallBackFuncIntf)      \
    DO(FlashLocalRegister)          \
    DO(EnableEthernet)              \
    DO(EnCommStation)               \
    DO(QueryFinishFlag)             \
    DO(PLCAddressChangeIntef)       \
    DO(PassVarName_2)               \
    DO(AddListWriteVar)             \
    DO(AddListReadVar)              \
    DO(AddListOnceReadVar)          \
    DO(ReCreatReadVarList)          \
    DO(ComCommunication)            \
    DO(DataCom)                     \
    DO(GetRegisterData)             \
    DO(SetRegisterData)             \
    DO(customMessageHandler)

// The entry points, with types and contracts of Entry_Points.h.
struct Driver_Entry_Points {
#define VORNEX_SLOT(name) decltype(&::name) name = nullptr;  // NOLINT(bugprone-macro-parentheses): it declares
    VORNEX_EACH_ENTRY_POINT(VORNEX_SLOT)
#undef VORNEX_SLOT
};

// Loaded once and never unloaded: the driver is one global object, and its threads of use end with the process.
class Driver_Library : public Driver_Entry_Points {
public:
    // Loads `file`, or without one searches: the build tree beside the tool, the installed place beside the tool, then
    // the loader's path. Throws Host_Error Library that names the file and the reason, or every missing entry point.
    explicit Driver_Library(const std::string& file);

    const std::string& path() const { return loadedPath; }  // as the loader found it
    void* symbol(const char* name) const;                   // null when the library has none
    static std::vector<std::string> entryPointNames();

private:
    void open(const std::string& file);
    void bindAll();

    void* handle = nullptr;
    std::string loadedPath;
};

}  // namespace vornex

#endif
