// Reads any number of variables once, with as few one-shot reads as their addresses allow.
#ifndef VORNEX_HOST_SPAN_READ_H
#define VORNEX_HOST_SPAN_READ_H

#include <functional>
#include <vector>

#include "host/Session.h"
#include "host/Variables.h"

namespace vornex {

// One one-shot read. The label leads to its first byte; MemoryLabel stands for bare memory.
struct Span {
    Label_Range range;
    std::uint32_t address = 0;
    Completion completion;
};

// Spans that cover `elements` elements of each variable; neighbours share one.
std::vector<Span> spansOf(const std::vector<Variable>& variables, std::uint32_t elements, int maxBytes);
// Spans of bare memory. Adds to `spans`, in the order of the addresses.
void addMemorySpans(std::vector<Span>& spans, std::uint32_t address, std::uint64_t bytes, int maxBytes);

// Called after each span, on the reader's thread.
using Read_Progress = std::function<void(std::size_t done, std::size_t all)>;

// Reads them all and notes each outcome. After a give-up for want of a reply nothing more is started: the rest stays
// Pending, and so it does after Session::interrupt(): what came before is there to be used.
void readSpans(Session& session, std::vector<Span>& spans, const Read_Progress& progress = {});

// Why a span has no data, in words.
std::string completionText(const Completion& completion);
// The first span that did not end well, null when all did.
const Span* firstFailure(const std::vector<Span>& spans);

}  // namespace vornex

#endif
