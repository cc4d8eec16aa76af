#include "edge/node/Topics.h"

#include <algorithm>
#include <stdexcept>

#include "text/Text.h"

namespace vornex::edge {

namespace {

const char Namespace[] = "spBv1.0/";

std::string ofNode(const Node_Ids& ids, const char* type) {
    return Namespace + ids.group + "/" + type + "/" + ids.node;
}
std::string ofDevice(const Node_Ids& ids, const char* type) { return ofNode(ids, type) + "/" + ids.device; }

const Node_Ids& checked(const Node_Ids& ids, const std::string& primaryHost) {
    checkId("group", ids.group);
    checkId("node", ids.node);
    checkId("device", ids.device);
    if (!primaryHost.empty()) checkId("primary host", primaryHost);
    return ids;
}

}  // namespace

void checkId(const std::string& what, const std::string& id) {
    const auto isBad = [](unsigned char letter) {
        return letter == '+' || letter == '/' || letter == '#' || letter < 0x20 || letter == 0x7F;
    };
    if (id.empty()) throw std::invalid_argument(what + " has no name");
    if (!isUtf8(id) || std::any_of(id.begin(), id.end(), isBad))
        throw std::invalid_argument(what + " '" + id + "' holds +, /, # or a letter that no topic has");
}

Topics::Topics(const Node_Ids& ids, const std::string& primaryHost)
    : nodeBirth(ofNode(checked(ids, primaryHost), "NBIRTH")),
      nodeData(ofNode(ids, "NDATA")),
      nodeDeath(ofNode(ids, "NDEATH")),
      nodeCommand(ofNode(ids, "NCMD")),
      deviceBirth(ofDevice(ids, "DBIRTH")),
      deviceData(ofDevice(ids, "DDATA")),
      deviceDeath(ofDevice(ids, "DDEATH")),
      deviceCommand(ofDevice(ids, "DCMD")),
      hostState(primaryHost.empty() ? "" : std::string(Namespace) + "STATE/" + primaryHost) {}

}  // namespace vornex::edge
