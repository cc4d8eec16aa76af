#include "text/Nearest_Word.h"

#include <algorithm>
#include <cctype>

namespace vornex {

namespace {

// Edit distance, given up above `limit`; upper and lower case are the same here.
std::size_t distance(const std::string& a, const std::string& b, std::size_t limit) {
    if (a.size() > b.size() + limit || b.size() > a.size() + limit) return limit + 1;
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const bool same =
                std::tolower(static_cast<unsigned char>(a[i])) == std::tolower(static_cast<unsigned char>(b[j]));
            const std::size_t next = std::min({row[j] + 1, row[j + 1] + 1, diagonal + (same ? 0 : 1)});
            diagonal = row[j + 1];
            row[j + 1] = next;
        }
    }
    return row[b.size()];
}

}  // namespace

std::string didYouMean(const std::string& mistyped, const std::vector<std::string>& known) {
    const std::string* found = nullptr;
    std::size_t best = 3;
    for (const std::string& word : known) {
        const std::size_t slips = distance(word, mistyped, best);
        if (slips >= best || slips >= word.size()) continue;
        best = slips;
        found = &word;
    }
    return found ? "; did you mean '" + *found + "'?" : "";
}

}  // namespace vornex
