// The driver as a panel loads it: dlopen, and every entry point looked up by its plain name.
#ifndef VORNEX_HOST_DRIVER_LIBRARY_H
#define VORNEX_HOST_DRIVER_LIBRARY_H

#include <string>
#include <vector>

#include <vornex_label_tcp/Entry_Points.h>

namespace vornex {

// The entry points, with the contracts of Entry_Points.h.
struct Driver_Entry_Points {
    decltype(&::SetComInfo) SetComInfo = nullptr;
    decltype(&::RegistCallBackFuncIntf) RegistCallBackFuncIntf = nullptr;
    decltype(&::FlashLocalRegister) FlashLocalRegister = nullptr;
    decltype(&::EnableEthernet) EnableEthernet = nullptr;
    decltype(&::EnCommStation) EnCommStation = nullptr;
    decltype(&::QueryFinishFlag) QueryFinishFlag = nullptr;
    decltype(&::PLCAddressChangeIntef) PLCAddressChangeIntef = nullptr;
    decltype(&::PassVarName_2) PassVarName_2 = nullptr;
    decltype(&::AddListWriteVar) AddListWriteVar = nullptr;
    decltype(&::AddListReadVar) AddListReadVar = nullptr;
    decltype(&::AddListOnceReadVar) AddListOnceReadVar = nullptr;
    decltype(&::ReCreatReadVarList) ReCreatReadVarList = nullptr;
    decltype(&::ComCommunication) ComCommunication = nullptr;
    decltype(&::DataCom) DataCom = nullptr;
    decltype(&::GetRegisterData) GetRegisterData = nullptr;
    decltype(&::SetRegisterData) SetRegisterData = nullptr;
    decltype(&::customMessageHandler) customMessageHandler = nullptr;
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
