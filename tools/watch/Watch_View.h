// What shows or keeps the values of a watch.
#ifndef VORNEX_WATCH_WATCH_VIEW_H
#define VORNEX_WATCH_WATCH_VIEW_H

#include <vector>

#include "host/link/Exchange.h"
#include "watch/Watched.h"

namespace vornex {

// Called on the watch's own thread after each round, and when the link changes. May throw
// Output_Error; the watch then goes on without this view.
class Watch_View {
public:
    virtual ~Watch_View() = default;
    // `round` counts from 1.
    virtual void update(const std::vector<Watched>& all, int round) = 0;
    virtual void link(const Link_Change&) {}
    // Several times a second, whatever happens.
    virtual void tick(const std::vector<Watched>&) {}
    virtual void finish(const std::vector<Watched>&) {}
};

}  // namespace vornex

#endif
