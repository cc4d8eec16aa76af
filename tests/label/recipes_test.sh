#!/bin/sh
# Runs every command of the ```sh blocks in docs/tools.md as it stands there, in order, in an empty folder that holds
# what the recipes name. A command ends with 0, or with the N of its trailing "# exit N". Simulators that a recipe starts
# on port 2000 get a free port, and their target is handed to the commands that follow.
#   recipes_test.sh REPOSITORY LABEL_TOOL SIMULATOR WORK_DIR
set -eu
repository=$1 work=$4
PATH=$(dirname "$2"):$(dirname "$3"):$PATH
rm -rf "$work" && mkdir -p "$work" && cd "$work"
cp -r "$repository/examples" .
mkdir share && cp -r "$repository/share/wireshark" share/
export WIRESHARK_CONFIG_DIR="$work" LC_ALL=C.UTF-8
sim= runs=0

stop() {
    [ -z "$sim" ] || { kill "$sim" 2>/dev/null; wait "$sim" || { echo "the simulator ended with $?"; return 1; }; }
    sim=
}
trap '[ -z "$sim" ] || kill "$sim"' EXIT

start() {
    stop
    rm -f sim.out
    eval "exec_sim() { exec $(printf %s "$1" | sed 's/-p 2000/-p 0/; s/&$//'); }"
    exec_sim >sim.out 2>sim.log &
    sim=$!
    until grep -q '^listening ' sim.out; do
        kill -0 "$sim" || { cat sim.log; exit 1; }
        sleep 0.05
    done
    port=$(sed -n 's/^listening .*://p' sim.out)
    sed "s/127.0.0.1:2000/127.0.0.1:$port/" "$repository/examples/plant.json" >examples/plant.json
}

sed -n '/^```sh/,/^```$/{/^```/d;p}' "$repository/docs/tools.md" >commands
while IFS= read -r line <&3; do
    case $line in
    '' | '#'*) continue ;;
    *'-p 2000'*'&') start "$line"; continue ;;
    esac
    expected=$(printf %s "$line" | sed -n 's/.*  # exit \([0-9]*\)$/\1/p')
    status=0
    ( eval "$line" ) >out 2>&1 </dev/null || status=$?
    runs=$((runs + 1))
    [ "$status" -eq "${expected:-0}" ] && [ -s out -o "$line" != "${line#*>}" -o "$line" != "${line#* -q}" ] && continue
    echo "exit $status, not ${expected:-0}, or no output: $line"
    cat out
    exit 1
done 3<commands
stop
echo "$runs commands ran as written"
[ "$runs" -ge 30 ]
