// A watch as a table that fits into a window.
#ifndef VORNEX_WATCH_TABLE_LINES_H
#define VORNEX_WATCH_TABLE_LINES_H

#include <cstddef>
#include <string>
#include <vector>

#include "watch/Watched.h"

namespace vornex {

struct Table_Content {
    std::string target;
    std::string linkText;  // "connected", or that and since when the connection is lost
    int round = 0;
    const std::vector<Watched>& all;
    std::vector<std::string> messages;  // below the rows, the newest last
    Wall_Time now{};
};

// Lines of at most `columns` display columns, at most `lines` of them: what does not fit is cut, and so many rows are
// left out, which is told. Narrow windows do without address, changes and unit; none wraps. 0: no limit.
std::vector<std::string> tableLines(const Table_Content& content, std::size_t columns, std::size_t lines);

}  // namespace vornex

#endif
