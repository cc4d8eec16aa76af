#!/bin/sh
# table_terminal_test.sh TOOL SIM PLANT: the live table in a real terminal, from 40 to 250 columns and while its size
# changes: no line wraps, nothing old is left, and after the controller is gone nothing says that it is connected.
set -eu
tool=$1 sim=$2 plant=$3
work=$(mktemp -d)
export TMUX_TMPDIR="$work"
simulator=
finish() {
  status=$?
  tmux kill-server 2>/dev/null || true
  [ -z "$simulator" ] || kill "$simulator" 2>/dev/null || true
  rm -rf "$work"
  exit "$status"
}
trap finish EXIT
fail() {
  echo "$1; the screen:"
  tmux capture-pane -p
  exit 1
}
# waits TEXT: until a line of the screen has it
waits() {
  tries=0
  until tmux capture-pane -p | grep -qF -- "$1"; do
    tries=$((tries + 1))
    [ $tries -lt 200 ] || fail "'$1' did not come"
    sleep 0.05
  done
}

# round: the number that the status line shows
round() {
  number=
  until number=$(tmux capture-pane -p | sed -n '1s/.*round \([0-9][0-9]*\).*/\1/p') && [ -n "$number" ]; do sleep 0.05; done
  echo "$number"
}

"$sim" -l "$plant" -p 0 -q >"$work/sim.out" 2>&1 &
simulator=$!
until target=$(sed -n 's/^listening //p' "$work/sim.out") && [ -n "$target" ]; do
  kill -0 "$simulator" || { cat "$work/sim.out"; exit 1; }
  sleep 0.05
done
tmux new-session -d -x 80 -y 24 "$tool -l $plant -t $target watch 'Motors*' Pressure --table -i 50 2>&1; sleep 600"
waits 'connected  round'

# Every line begins at the left edge as one of the table's: a wrapped one would begin with the rest of another.
for size in 80x24 40x12 250x50 41x30 120x10 60x24; do
  tmux resize-window -x "${size%x*}" -y "${size#*x}"
  before=$(round)
  until [ "$(round)" -gt $((before + 3)) ]; do sleep 0.05; done
  wrong=$(tmux capture-pane -p | grep -v '^$' | grep -vE '^(127\.|LABEL|Motors\[[0-9]\]\.|Pressure|\.\.\. and )' || true)
  [ -z "$wrong" ] || fail "at $size this is no line of the table: $wrong"
  [ "$(tmux capture-pane -p | grep -c '^LABEL')" = 1 ] || fail "at $size the heading stands more than once"
done

kill "$simulator"
simulator=
waits 'CONNECTION LOST'
waits 'stale'
screen=$(tmux capture-pane -p)
echo "$screen" | grep -q 'connected' && fail 'connected, over values of a lost connection'
echo "$screen" | grep -q 'fresh$' && fail 'a fresh value without a connection'
tmux send-keys C-c
waits 'rounds, '
echo "the table kept its lines in six sizes"
