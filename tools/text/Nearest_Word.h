// "Did you mean ...?": the known word that a mistyped one is most like.
#ifndef VORNEX_TEXT_NEAREST_WORD_H
#define VORNEX_TEXT_NEAREST_WORD_H

#include <string>
#include <utility>

namespace vornex {

class Nearest_Word {
public:
    explicit Nearest_Word(std::string mistyped) : wanted(std::move(mistyped)) {}
    void offer(const std::string& known);
    // "; did you mean 'found'?", or nothing.
    std::string question() const { return found.empty() ? "" : "; did you mean '" + found + "'?"; }

    std::string found;  // the first of the nearest; empty when all are more than two slips away

private:
    const std::string wanted;
    std::size_t best = 3;
};

}  // namespace vornex

#endif
