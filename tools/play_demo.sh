#!/bin/sh
# Plays the demo as a performer does and checks what is heard: the real
# program under a virtual display with its own JACK server on the dummy
# driver, keys sent with xdotool (Grave highlights the sequencer, Enter starts
# pattern 1), the program's output recorded from its JACK ports by jack_rec,
# then compared frame for frame with the offline render of the same pattern.
# Usage: play_demo.sh PROGRAM COMPARE_TAKES
set -eu
program=$1
compare=$2
cd "$(dirname "$0")/.."
work=$(mktemp -d)
. tools/realprogram.sh
start_jack "oxplay$$"

"$program" --render "$work/render.wav" --seconds 5 resources/demo.nst >/dev/null
xvfb-run -a -s "-screen 0 1280x800x24" sh -c '
    program=$0 compare=$1 work=$2
    . tools/realprogram.sh
    "$program" resources/demo.nst >"$work/program.log" 2>&1 &
    app=$!
    program_ports
    take() {
        capture 7
        sleep 1
        xdotool mousemove 640 400
        xdotool key grave
        sleep 0.3
        xdotool key Return
        wait $rec || true
        xdotool key KP_0
        "$compare" "$work/capture.wav" "$work/render.wav" 3.9
    }
    end_after_takes
' "$program" "$compare" "$work" || {
    echo "the capture does not match the render; program log:"
    cat "$work/program.log"
    exit 1
}
