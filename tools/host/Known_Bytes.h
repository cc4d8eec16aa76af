// Which bytes of the controller a reply has filled, and whether that was on the present connection.
//
// The driver's image answers 0 for bytes that it has never seen; this is how the tool tells 0 from not known.
#ifndef VORNEX_HOST_KNOWN_BYTES_H
#define VORNEX_HOST_KNOWN_BYTES_H

#include <cstdint>
#include <map>
#include <mutex>

namespace vornex {

enum class Freshness {
    Unknown,  // at least one byte never came
    Stale,    // came, but before the connection was lost
    Fresh,
};

// Any thread.
class Known_Bytes {
public:
    void fill(std::uint32_t address, std::uint32_t length);
    // The connection is lost: what came up to now is stale until it comes again.
    void age();
    void forget();
    Freshness of(std::uint32_t address, std::uint32_t length) const;

private:
    struct Run {
        std::uint64_t end = 0;
        int generation = 0;
    };
    using Runs = std::map<std::uint64_t, Run>;

    void splitAt(std::uint64_t address);

    mutable std::mutex mutex;
    Runs runs;  // by first address, without overlap
    int generation = 0;
};

}  // namespace vornex

#endif
