#!/bin/sh
# Tests the dissector with tshark on captures made from checked-in traces.
#   dissector_test.sh golden|fields|other-port|corrupt SCRIPT WORK_DIR
set -eu
case=$1 script=$2 work=$3
here=$(CDPATH= cd -- "$(dirname -- "$0")" && pwd)
rm -rf "$work" && mkdir -p "$work"
export WIRESHARK_CONFIG_DIR="$work" HOME="$work" LC_ALL=C.UTF-8

# capture TRACE PORT CLIENT_PORT OUT: text2pcap takes the first of two addresses as the receiver's of ">".
capture() {
    text2pcap -q -F pcap -r '^(?<dir>[<>]) (?<time>\d+:\d\d:\d\d\.\d+) (?<data>[0-9a-f]+)$' -t '%H:%M:%S.%f' \
        -4 10.0.0.2,10.0.0.1 -T "$2,$3" "$1" "$4" 2>"$work/text2pcap.log" || { cat "$work/text2pcap.log"; exit 1; }
}

both() {
    capture "$here/link.trace" "$1" 40000 "$work/link.pcap"
    capture "$here/reconnect.trace" "$1" 40001 "$work/reconnect.pcap"
    mergecap -F pcap -w "$work/both.pcap" "$work/link.pcap" "$work/reconnect.pcap"
}

dissect() {
    tshark -X "lua_script:$script" -o "vornex.names:$here/plant.names" "$@" 2>"$work/errors"
    if grep -i 'lua\|error' "$work/errors"; then echo "tshark complains" >&2; exit 1; fi
}

# What is ours of -V: no line that depends on the capture tools.
tree() {
    dissect -2 -r "$1" -O vornex -V | sed -n 's/^\(Frame [0-9]*\):.*/\1/; /^Ethernet\|^Internet\|^Transmission/d; p'
}

fields() {
    dissect -2 -r "$1" -Y vornex -T fields -E separator='|' -E occurrence=a -E aggregator=' ' -e frame.number \
        -e vornex.command -e vornex.item.address -e vornex.item.length -e vornex.label -e vornex.check.status \
        -e vornex.request_in -e vornex.response_in -e vornex.time -e vornex.attempt -e vornex.resend_of \
        -e vornex.unknown -e _ws.expert.message
}

# The trace 25 times over, 1,000 frames, with errors sown behind the addresses by a seeded tool.
corrupt() {
    for _ in $(seq 25); do cat "$here/link.trace"; done >"$work/long.trace"
    capture "$work/long.trace" 2000 40000 "$work/long.pcap"
    for seed in 1 2 3 4 5 6; do
        editcap --seed "$seed" -E 0.0"$seed" -o 54 "$work/long.pcap" "$work/bad.pcap"
        dissect -2 -r "$work/bad.pcap" -V >"$work/bad.txt"
        if grep -i 'lua error\|dissector bug' "$work/bad.txt"; then echo "seed $seed" >&2; exit 1; fi
        frames=$(grep -c '^Frame ' "$work/bad.txt")
        ours=$(grep -c '^Vornex' "$work/bad.txt")
        wrong=$(grep -c 'Error/Checksum\|Error/Malformed' "$work/bad.txt")
        echo "seed $seed: $frames frames, $ours pieces, $wrong found wrong"
        [ "$frames" -eq 1000 ] && [ "$ours" -gt 900 ] && [ "$wrong" -gt 100 ]
    done
}

case $case in
golden) both 2000 && tree "$work/both.pcap" >"$work/out" && diff -u "$here/link.tree" "$work/out" ;;
fields) both 2000 && fields "$work/both.pcap" >"$work/out" && diff -u "$here/link.fields" "$work/out" ;;
other-port) both 5020 && fields "$work/both.pcap" >"$work/out" && diff -u "$here/link.fields" "$work/out" ;;
corrupt) corrupt ;;
*) echo "no such case: $case" >&2; exit 2 ;;
esac
