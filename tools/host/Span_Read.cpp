#include "host/Span_Read.h"

#include <algorithm>
#include <deque>

namespace vornex {

namespace {

// The driver's queue holds 2048 pieces and drops what is beyond: 4 spans of 256 pieces stay clear of it.
const std::uint64_t PiecesOfSpan = 256;
const std::size_t SpansInFlight = 4;
// A gap that is read along costs less than a frame of its own.
const std::uint64_t GapReadAlong = 16;

std::uint64_t longestSpan(int maxBytes) { return PiecesOfSpan * static_cast<std::uint64_t>(maxBytes); }

int start(Session& session, const Span& span) {
    if (span.range.label == MemoryLabel) session.setMemoryLabel(span.address, span.range.code);
    return session.startRead(span.range);
}

bool hopeless(const Completion& completion) {
    return completion.state == Completion::State::GaveUp && statusBand(completion.code) == 41;
}

}  // namespace

void addMemorySpans(std::vector<Span>& spans, std::uint32_t address, std::uint64_t bytes, int maxBytes) {
    const std::uint64_t longest = longestSpan(maxBytes);
    for (std::uint64_t done = 0; done < bytes; done += longest) {
        Span span;
        span.address = static_cast<std::uint32_t>(address + done);
        span.range = {MemoryLabel, 0, 1, static_cast<std::uint32_t>(std::min(longest, bytes - done))};
        spans.push_back(span);
    }
}

std::vector<Span> spansOf(const std::vector<Variable>& variables, std::uint32_t elements, int maxBytes) {
    std::vector<const Variable*> sorted;
    sorted.reserve(variables.size());
    for (const Variable& variable : variables)
        sorted.push_back(&variable);
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const Variable* a, const Variable* b) { return a->address < b->address; });
    const std::uint64_t longest = longestSpan(maxBytes);
    std::vector<Span> spans;
    for (const Variable* variable : sorted) {
        const std::uint64_t bytes = std::uint64_t(variable->bytes) * elements;
        const std::uint64_t end = variable->address + bytes;
        Span* const last = spans.empty() ? nullptr : &spans.back();
        const std::uint64_t lastEnd = last ? std::uint64_t(last->address) + last->range.bytes : 0;
        if (last && variable->address <= lastEnd + GapReadAlong && end - last->address <= longest) {
            last->range.bytes = static_cast<std::uint32_t>(std::max(end, lastEnd) - last->address);
            continue;
        }
        Span span;
        span.address = variable->address;
        span.range = variable->range;
        span.range.bytes = static_cast<std::uint32_t>(std::min(bytes, longest));
        spans.push_back(span);
        if (bytes > longest) {
            addMemorySpans(spans, static_cast<std::uint32_t>(variable->address + longest), bytes - longest, maxBytes);
        }
    }
    return spans;
}

void readSpans(Session& session, std::vector<Span>& spans, const Read_Progress& progress) {
    std::deque<int> tickets;  // of spans[done], spans[done + 1], ...
    std::size_t done = 0, started = 0;
    bool stopped = false;
    while (done < spans.size()) {
        while (!stopped && started < spans.size() && tickets.size() < SpansInFlight) {
            tickets.push_back(start(session, spans[started++]));
        }
        if (tickets.empty()) break;
        Completion& completion = spans[done++].completion;
        completion = session.wait(tickets.front());
        tickets.pop_front();
        stopped = stopped || hopeless(completion) || completion.state == Completion::State::Interrupted;
        if (progress) progress(done, spans.size());
    }
}

std::string completionText(const Completion& completion) {
    switch (completion.state) {
        case Completion::State::Good: return "good";
        case Completion::State::Pending: return "not tried after the one before failed";
        case Completion::State::Lost: return "the driver dropped the request without a word (its queue was full)";
        case Completion::State::Stalled: return "the exchange with the controller stands still";
        case Completion::State::Interrupted: return "interrupted";
        case Completion::State::GaveUp: break;
    }
    std::string text = "the driver gave up: " + statusText(completion.code);
    if (!completion.fault.empty()) text += "; " + completion.fault;
    return text;
}

const Span* firstFailure(const std::vector<Span>& spans) {
    for (const Span& span : spans) {
        if (span.completion.state != Completion::State::Good) return &span;
    }
    return nullptr;
}

}  // namespace vornex
