#include "Common_Options.h"

namespace vornex {

std::vector<Option> commonOptions(Common_Options& values) {
    return {
        Option("-t,--target", "HOST:PORT", "The controller; without it the label file's \"target\".", &values.target),
        Option("-l,--labels", "FILE", "The label file.", &values.labelFile),
        Option("--library", "FILE", "The driver library; without it the one beside the tool.", &values.library),
        Option("-T,--timeout", "MS", "How long a reply or a connection may take (1000).", &values.timeoutMs)
            .between(1, 600000),
        Option("-R,--retries", "N", "Failed replies that the driver bears before it gives up (2).", &values.retries)
            .between(0, 1000),
        Option("-m,--max-bytes", "N", "Bytes of one read request at most (240).", &values.maxBytes)
            .between(1, LongestRequest),
        Option("--trace", "FILE",
               "Record every frame and reply: .txt to be read, .jsonl for replay, .hex for text2pcap, - for stderr.",
               &values.traces),
        Option("-o,--output", "FORMAT", "text, json (one object a line) or csv.", &values.format)
            .oneOf({"text", "json", "csv"}),
        Option("-q,--quiet", "", "Errors only.", &values.quiet),
        Option("-v,--verbose", "", "Tell more about what is done.", &values.verbose),
    };
}

}  // namespace vornex
