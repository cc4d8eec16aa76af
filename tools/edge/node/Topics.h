// Topics of an edge node: spBv1.0/GROUP/TYPE/NODE[/DEVICE].
#ifndef VORNEX_EDGE_NODE_TOPICS_H
#define VORNEX_EDGE_NODE_TOPICS_H

#include <string>

namespace vornex::edge {

struct Node_Ids {
    std::string group;
    std::string node;
    std::string device;  // the controller
};

// Throws std::invalid_argument for an id that is empty, is no UTF-8 or holds + / # or a control character; `what` names
// it.
void checkId(const std::string& what, const std::string& id);

class Topics {
public:
    // Throws std::invalid_argument as checkId() does. `primaryHost` may be empty: there is none.
    Topics(const Node_Ids& ids, const std::string& primaryHost);

    const std::string nodeBirth, nodeData, nodeDeath, nodeCommand;
    const std::string deviceBirth, deviceData, deviceDeath, deviceCommand;
    const std::string hostState;  // of the primary host; empty: there is none
};

}  // namespace vornex::edge

#endif
