#!/bin/sh
# Runs every command of the ```sh blocks in docs/tools.md in this one shell, in order, as somebody who pastes one block
# after the other, in a folder that holds what the recipes name. A command ends with 0, or with the N of its trailing
# "# exit N", and a block leaves no program behind. A port that is free here stands for 2000.
# Below an emulator a tool cannot start itself once more: the commands for several controllers are then left out.
#   recipes_test.sh REPOSITORY LABEL_TOOL SIMULATOR WORK_DIR native|emulated
set -u
repository=$1 work=$4 platform=$5 PATH=$(dirname "$2"):$(dirname "$3"):$PATH
rm -rf "$work" && mkdir -p "$work/share" && cd "$work" || exit 1
cp -r "$repository/examples" . && cp -r "$repository/share/wireshark" share/ || exit 1
export WIRESHARK_CONFIG_DIR="$work" LC_ALL=C.UTF-8
runs=0 blocks=0
trap 'kill $! 2>/dev/null' EXIT

vornex-sim -l examples/plant.json -p 0 -q >sim.out &
until grep -q '^listening ' sim.out; do
    kill -0 $! || exit 1
    sleep 0.05
done
port=$(sed -n 's/^listening .*://p' sim.out)
kill $! && wait $! || exit 1
sed -i "s/127.0.0.1:2000/127.0.0.1:$port/" examples/plant.json
sed -n '/^```sh/,/^```$/{/^```sh/d;p}' "$repository/docs/tools.md" | sed "s/-p 2000 /-p $port /" >commands

while IFS= read -r line <&3; do
    if [ "$line" = '```' ]; then
        blocks=$((blocks + 1))
        if kill -0 $! 2>/dev/null; then
            echo "block $blocks leaves its simulator behind"
            exit 1
        fi
        continue
    fi
    expected=$(printf %s "$line" | sed -n 's/.*  # exit \([0-9]*\)$/\1/p')
    case $platform:$line in
    emulated:vornex-label*' -t '*,*)
        echo "left out below the emulator: $line"
        continue
        ;;
    esac
    runs=$((runs + 1))
    eval "$line" >"$work/out.$runs" 2>&1 </dev/null
    status=$?
    case $line in
    *'&' | kill* | cd* | *'>'* | *' -q'*) ;;
    *) [ -s "$work/out.$runs" ] || status="$status without output" ;;
    esac
    [ "$status" = "${expected:-0}" ] && continue
    echo "exit $status, not ${expected:-0}: $line"
    cat "$work/out.$runs"
    exit 1
done 3<commands
echo "$runs commands in $blocks blocks ran as written"
[ "$runs" -ge 45 ] && [ "$blocks" -ge 12 ]
