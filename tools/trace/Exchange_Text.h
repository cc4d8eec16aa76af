// Exchanges in words, as a trace shows them.
#ifndef VORNEX_TRACE_EXCHANGE_TEXT_H
#define VORNEX_TRACE_EXCHANGE_TEXT_H

#include <string>

#include "host/link/Exchange.h"
#include "labels/Label_Names.h"

namespace vornex {

// "100+2 Speed; 200+40 Motors[1].Id .. Motors[4].Temp (12 labels)"
std::string itemsText(const Request& request, const Label_Names& names);
// "good", "no complete reply: ...; again", "...; given up: no reply (code 44, type 3)"
std::string outcomeText(const Exchange& exchange);

// A line with its time, what it is about and the outcome, then lines of its bytes in hex.
std::string requestLines(const Exchange& exchange, const Label_Names& names);
std::string replyLines(const Exchange& exchange);

}  // namespace vornex

#endif
