// How a host talks to its controller.
#ifndef VORNEX_HOST_HOST_SETTINGS_H
#define VORNEX_HOST_HOST_SETTINGS_H

#include <string>

#include "labels/Label_File.h"

namespace vornex {

// A read item carries 16 bits of length, and the reply's check value covers at most 65,535 bytes.
constexpr int LongestRequest = 65000;

struct Host_Settings {
    std::string target;    // "host:port"; empty: the label file's
    int timeoutMs = 1000;  // of a reply, and of a connection
    int settleMs = 20;     // that a new connection is listened to before anything is sent
    int retries = 2;       // failed replies of one request before the driver gives up on it
    int maxBytes = 240;    // bytes of one read request at most
};

// The settings' target, or else the label file's; may be empty.
inline const std::string& targetOf(const Host_Settings& settings, const Label_File& file) {
    return settings.target.empty() ? file.target : settings.target;
}

}  // namespace vornex

#endif
