// "Did you mean ...?": the known word that a mistyped one is most like.
#ifndef VORNEX_TEXT_NEAREST_WORD_H
#define VORNEX_TEXT_NEAREST_WORD_H

#include <string>
#include <vector>

namespace vornex {

// "; did you mean 'WORD'?" with the first of the nearest; empty when all are more than two slips away.
std::string didYouMean(const std::string& mistyped, const std::vector<std::string>& known);

}  // namespace vornex

#endif
