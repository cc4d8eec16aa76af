// Values over time out of the replies of a record, without a controller and without the driver.
#ifndef VORNEX_PANEL_RECORD_SAMPLE_READER_H
#define VORNEX_PANEL_RECORD_SAMPLE_READER_H

#include <string>
#include <vector>

#include "host/link/Exchange.h"
#include "wire/Frame.h"

namespace vornex::panel {

// The bytes of a variable from this time on; none: not known, since the connection is lost.
struct Recorded_Sample {
    Wall_Time at;
    std::string bytes;
};
using Recorded_Samples = std::vector<Recorded_Sample>;

// Hears a record and keeps what it tells of these places. One thread.
class Sample_Reader : public Exchange_Observer {
public:
    explicit Sample_Reader(const std::vector<Memory_Range>& places);

    // In the order of the places: a sample for each reply that brought all or the rest of the bytes, and one without
    // bytes where the connection was lost.
    const Recorded_Samples& samples(std::size_t place) const { return followed[place].samples; }

    void exchangeDone(const Exchange& exchange) override;
    void linkChanged(const Link_Change& change) override;

private:
    struct Followed {
        Memory_Range place;
        std::string bytes;
        std::vector<bool> known;
        Recorded_Samples samples;
        bool touched = false;
    };
    void fill(std::uint32_t address, const std::string& data);

    std::vector<Followed> followed;
    std::vector<std::size_t> byAddress;  // into `followed`
    std::uint32_t longest = 0;           // bytes of a place
};

// The last sample that is not later; null: none, or not known then.
const Recorded_Sample* sampleAt(const Recorded_Samples& samples, Wall_Time time);

}  // namespace vornex::panel

#endif
