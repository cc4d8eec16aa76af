// bdSeq: the number of a connection, which ties a node's death to its birth. It is kept on disk, so that a late death
// of a process that is gone is not taken for that of its successor.
#ifndef VORNEX_EDGE_NODE_BIRTH_NUMBER_H
#define VORNEX_EDGE_NODE_BIRTH_NUMBER_H

#include <string>

namespace vornex::edge {

class Birth_Number {
public:
    // A file that is not there, or holds no number, begins with 0; problem() then says the second.
    explicit Birth_Number(std::string file);

    // For the next connection: 0 to 255 and round again. The number is on the disk before it is used; when it cannot be
    // written, it counts on in memory and problem() says why.
    int next();
    // What went wrong since it was asked for last; empty: nothing.
    std::string takeProblem();

private:
    const std::string path;
    int upcoming = 0;
    std::string problem;
};

}  // namespace vornex::edge

#endif
