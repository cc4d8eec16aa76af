// Which values of a watch are news.
#ifndef VORNEX_WATCH_CHANGE_FILTER_H
#define VORNEX_WATCH_CHANGE_FILTER_H

#include <vector>

#include "watch/Watched.h"

namespace vornex {

class Change_Filter {
public:
    // Numbers are news when they have moved by more than the deadband since they were.
    explicit Change_Filter(double deadbandWidth) : deadband(deadbandWidth) {}
    // A value that differs from the one that was news last, or is fresh again, or is so no more. It is news then.
    bool isNews(std::size_t place, const Watched& now);

private:
    struct Last {
        bool any = false;
        Value value;
        Freshness freshness = Freshness::Unknown;
    };
    bool differs(const Last& last, const Watched& now) const;

    const double deadband;
    std::vector<Last> lasts;
};

}  // namespace vornex

#endif
