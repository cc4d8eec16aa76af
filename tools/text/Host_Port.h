// "plc.local:2000": where a controller answers.
#ifndef VORNEX_TEXT_HOST_PORT_H
#define VORNEX_TEXT_HOST_PORT_H

#include <cstdint>
#include <string>

namespace vornex {

struct Host_Port {
    std::string host;  // a name or an address, without brackets
    std::uint16_t port = 0;
};

// Reads "127.0.0.1:2000", "plc.local:2000" or "[::1]:2000". A port is 1 to 65535 in digits; names of services are none,
// since they mean other ports on other machines. Throws std::invalid_argument "'TEXT' is not HOST:PORT: REASON".
Host_Port parseHostPort(const std::string& text);

}  // namespace vornex

#endif
