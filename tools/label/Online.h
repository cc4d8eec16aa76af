// What every verb that talks to the controller has around its session: traces and statistics.
#ifndef VORNEX_LABEL_ONLINE_H
#define VORNEX_LABEL_ONLINE_H

#include <memory>
#include <vector>

#include "host/Session.h"
#include "host/Span_Read.h"
#include "host/Statistics.h"
#include "label/Signal_Watch.h"
#include "label/Tool.h"
#include "trace/Trace.h"

namespace vornex {

// Tells on a terminal how far a read of several spans is.
Read_Progress readProgress(Output& out);
// Ends the verb for a span that was not read: GaveUp, or Interrupted.
[[noreturn]] void throwFailed(const Span& failed, const std::string& words);

// Who tells that the connection was lost.
enum class Loss_Told { Here, ByVerb };

// Tells what the connection does that the verb's result does not show: bytes that nobody asked for are warned of, the
// rest is for -v.
class Online : private Exchange_Observer {
public:
    // Throws Host_Error like its parts.
    explicit Online(Tool& tool, Loss_Told lossTold = Loss_Told::Here);
    ~Online() override;

    // Throws Host_Error as Session::connect() does.
    void connect(First_Connection first = First_Connection::Needed);

    Statistics statistics;
    Session session;

private:
    void linkChanged(const Link_Change& change) override;

    Tool& tool;
    const Loss_Told told;
    Signal_Watch signals;
    std::vector<std::unique_ptr<Trace>> traces;
};

}  // namespace vornex

#endif
