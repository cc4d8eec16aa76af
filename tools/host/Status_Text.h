// The driver's result codes in words.
#ifndef VORNEX_HOST_STATUS_TEXT_H
#define VORNEX_HOST_STATUS_TEXT_H

#include <string>

namespace vornex {

// "no reply (code 44, type 3)"
std::string statusText(int code);
// The first code of the band that a code lies in (11, 41, 71, 111, 141, 171), the code itself outside of the bands.
int statusBand(int code);
// What a band means, without code and type: "no reply".
std::string bandText(int band);

}  // namespace vornex

#endif
