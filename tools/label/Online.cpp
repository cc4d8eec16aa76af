#include "Online.h"

namespace vornex {

Online::Online(Tool& tool) : session(tool) {
    session.addObserver(statistics);
    for (const std::string& file : tool.options.traces) {
        traces.push_back(openTrace(file, tool));
        session.addObserver(*traces.back());
        session.addCallObserver(*traces.back());
    }
}

// The traces must be whole before they are closed.
Online::~Online() { session.stop(); }

}  // namespace vornex
