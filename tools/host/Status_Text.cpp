#include "host/Status_Text.h"

namespace vornex {

namespace {
const int BandWidth = 12;  // 1 + a type code of 0 to 11
}

int statusBand(int code) {
    for (int band : {11, 41, 71, 111, 141, 171}) {
        if (code >= band && code < band + BandWidth) return band;
    }
    return code;
}

std::string bandText(int band) {
    switch (band) {
        case 0: return "failed, sent again";
        case 1: return "good";
        case 11: return "bad reply";
        case 41: return "no reply";
        case 71: return "reply of the wrong length";
        case 100: return "good, not stored";
        case 111: return "bad reply (remote area)";
        case 141: return "no reply (remote area)";
        case 171: return "reply of the wrong length (remote area)";
        default: return "unknown result";
    }
}

std::string statusText(int code) {
    const int band = statusBand(code);
    std::string text = bandText(band) + " (code " + std::to_string(code);
    if (band != code) text += ", type " + std::to_string(code - band);
    return text + ")";
}

}  // namespace vornex
