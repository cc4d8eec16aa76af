// The values of every round in a CSV file.
#ifndef VORNEX_WATCH_CSV_LOG_H
#define VORNEX_WATCH_CSV_LOG_H

#include <string>
#include <vector>

#include "text/Output_File.h"
#include "watch/Watched.h"

namespace vornex {

// One line a round, one column a variable; cells without a fresh value are empty.
class Csv_Log : public Watch_Output {
public:
    // Throws Output_Error when the file cannot be used, also when it is to be continued and has other columns.
    Csv_Log(const std::string& path, const Output_Policy& policy, const std::vector<Watched>& all);
    void update(const std::vector<Watched>& all, int round) override;
    void finish(const std::vector<Watched>& all) override;

private:
    Output_File file;
    std::string heading;  // still to be written
};

}  // namespace vornex

#endif
