// What ends a host's work, for every program that talks to a controller.
#ifndef VORNEX_HOST_HOST_ERROR_H
#define VORNEX_HOST_HOST_ERROR_H

#include <stdexcept>
#include <string>

namespace vornex {

// what() is a sentence for people, without the program's name.
class Host_Error : public std::runtime_error {
public:
    enum class Kind {
        Settings,      // of the program or of the request: target, view, ...
        Label,         // a label that is not there, does not resolve or has no such elements
        NoConnection,  // the controller cannot be reached
        Library,       // the driver library cannot be used
        Interrupted,   // Session::interrupt() was called
    };
    Host_Error(Kind errorKind, const std::string& message) : std::runtime_error(message), kind(errorKind) {}
    const Kind kind;
};

}  // namespace vornex

#endif
