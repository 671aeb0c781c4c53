#!/bin/sh
# A start by Enter while a Link peer plays waits for the session's next bar:
# the real program under a virtual display with its own JACK server on the
# dummy driver, on Link for the run (--link), beside a peer of the test's own
# at 130 BPM (link_peer), which also records the program's left port. The
# demo is started by keys at a moment of no account; the first sound heard
# must reach the speakers within a millisecond of one of the session's bars.
# Usage: link_start.sh PROGRAM LINK_PEER
set -eu
program=$1
peer=$2
cd "$(dirname "$0")/.."
work=$(mktemp -d)
. tools/realprogram.sh
start_jack "oxlink$$"

xvfb-run -a -s "-screen 0 1280x800x24" sh -c '
    program=$0 peer=$1 work=$2
    . tools/realprogram.sh
    "$program" --link resources/demo.nst >"$work/program.log" 2>&1 &
    app=$!
    program_ports
    "$peer" 130 6 "oxbowlantern:outport 0" first >"$work/peer.log" 2>&1 &
    judge=$!
    sleep 2.3
    xdotool mousemove 640 400
    xdotool key grave
    sleep 0.3
    xdotool key Return
    heard=0
    wait $judge || heard=1
    kill -TERM $app
    wait $app
    exit $heard
' "$program" "$peer" "$work" || {
    echo "the first sound is not on a bar of the session; peer and program logs:"
    cat "$work/peer.log" "$work/program.log"
    exit 1
}
cat "$work/peer.log"
