#!/bin/sh
# include_floors.sh ROOT: includes run one way, from higher floors to lower ones and inside a folder.
# Floors: base 0; driver state 1; label, protocol 2; lists 3; data and driver entry points 4.
cd "$1" || exit 2
bad=$(grep -rnE '^#include "[a-z]+/' src | awk -F: '
    function floor(path) {
        if (path ~ /^base\//) return 0
        if (path ~ /^driver\/(Mutex|Once_Read_Index|Communication_Protocol)\./) return 1
        if (path ~ /^(label|protocol)\//) return 2
        if (path ~ /^lists\//) return 3
        return 4
    }
    function room(path) { sub(/\/.*/, "", path); return path }
    {
        from = $1; sub(/^src\//, "", from)
        to = $3; sub(/^#include "/, "", to); sub(/".*/, "", to)
        lists = room(from) == "lists" && room(to) == "protocol"  # the queues know labels, not frames
        if (room(from) != room(to) && (floor(to) >= floor(from) || lists)) print
        else if (room(from) == room(to) && floor(to) > floor(from)) print
    }' | grep -v '"vornex_label_tcp/')
outside=$(grep -rnE '#include [<"].*(src/|driver/|protocol/|label/Label_|lists/|base/)' tools --include=*.h --include=*.cpp)
simulator=$(grep -rnE '#include [<"](Qt|vornex_label_tcp)' tools/sim --include=*.h --include=*.cpp)
[ -z "$bad$outside$simulator" ] && exit 0
echo "These includes run against the floors:"
printf '%s\n' "$bad" "$outside" "$simulator" | sed '/^$/d'
exit 1
