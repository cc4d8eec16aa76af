#include "text/Host_Port.h"

#include <algorithm>
#include <stdexcept>

namespace vornex {

namespace {

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }
bool isBlank(char letter) { return static_cast<unsigned char>(letter) <= ' ' || letter == '\x7F'; }

[[noreturn]] void refuse(const std::string& text, const char* reason) {
    throw std::invalid_argument("'" + text + "' is not HOST:PORT: " + reason);
}

std::string hostOf(const std::string& text, std::string host) {
    if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
        host = host.substr(1, host.size() - 2);
    } else if (host.find_first_of(":[]") != std::string::npos) {
        refuse(text, "an address with colons stands in brackets, as in [::1]:2000");
    }
    if (host.empty()) refuse(text, "there is no host");
    if (std::any_of(host.begin(), host.end(), isBlank)) refuse(text, "a host has no blanks");
    return host;
}

std::uint16_t portOf(const std::string& text, const std::string& digits) {
    const bool isNumber = !digits.empty() && digits.size() <= 5 && std::all_of(digits.begin(), digits.end(), isDigit);
    const int port = isNumber ? std::stoi(digits) : 0;
    if (port < 1 || port > 65535) refuse(text, "a port is a number from 1 to 65535");
    return static_cast<std::uint16_t>(port);
}

}  // namespace

Host_Port parseHostPort(const std::string& text) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos) refuse(text, "there is no port");
    return {hostOf(text, text.substr(0, colon)), portOf(text, text.substr(colon + 1))};
}

}  // namespace vornex
