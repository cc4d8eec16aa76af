// The command line and vornex.toml of vornex-edge.
#ifndef VORNEX_EDGE_EDGE_OPTIONS_H
#define VORNEX_EDGE_EDGE_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

#include "edge/node/Topics.h"
#include "host/Host_Settings.h"

namespace vornex::edge {

struct Edge_Options {
    Host_Settings host;
    std::string labelFile;
    bool isStrict = false;
    std::string library;
    std::string broker = "127.0.0.1:1883";
    std::string user, passwordFile;
    std::string caFile, certificate, key;
    bool isUnverified = false;
    Node_Ids ids;
    std::string primaryHost;
    std::string poll;      // groups, as parsePollGroups() takes them
    std::string writable;  // patterns between semicolons
    std::string stateFolder;
    int storeMiB = 64;
    bool usesAliases = false;
    bool checksOnly = false;
    bool quiet = false;
};

// Nothing: go on with the options. Else the exit code, and everything has been told. Throws std::invalid_argument.
std::optional<int> readOptions(int argc, char** argv, Edge_Options& options);

}  // namespace vornex::edge

#endif
