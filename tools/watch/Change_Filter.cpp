#include "watch/Change_Filter.h"

#include <cmath>

#include "values/Comparison.h"

namespace vornex {

bool Change_Filter::differs(const Last& last, const Watched& now) const {
    if (!last.any || last.freshness != now.freshness) return true;
    if (now.freshness != Freshness::Fresh || last.value == now.value) return false;
    const std::optional<double> before = numberOf(last.value), after = numberOf(now.value);
    // a double does not tell the largest whole numbers apart
    return deadband == 0 || !before || !after || !(std::fabs(*after - *before) <= deadband);
}

bool Change_Filter::isNews(std::size_t place, const Watched& now) {
    if (place >= lasts.size()) lasts.resize(place + 1);
    if (!differs(lasts[place], now)) return false;
    lasts[place] = {true, now.value, now.freshness};
    return true;
}

}  // namespace vornex
