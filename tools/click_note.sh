#!/bin/sh
# Composes on a line while the music plays, in the real program: under a
# virtual display with its own JACK server on the dummy driver, the demo's
# first pattern is started by keys (Grave, Enter), and one click on the
# cowbell line, which is silent in that pattern, drops a note at the time
# under the pointer after that time has passed in the first pass. Around the
# note's place the JACK capture must then be the render of the pattern
# without the note in the first pass and the render with it in the second,
# frame for frame.
# Usage: click_note.sh PROGRAM CLICK_NOTE
set -eu
program=$1
helper=$2
cd "$(dirname "$0")/.."
work=$(mktemp -d)
. tools/realprogram.sh
line=7      # the cowbell, the demo's last line
time=96     # a step and a half into the pattern, 0.75 s at 120 BPM
shown=512   # zoom 1 shows the pattern's two measures
pass=4      # seconds of a two-measure pass at 120 BPM
at=0.75     # seconds of the note's time into the pass

start_jack "oxclick$$"

xvfb-run -a -s "-screen 0 1280x800x24" sh -c '
    program=$0 helper=$1 work=$2 time=$3 shown=$4
    . tools/realprogram.sh
    "$program" resources/demo.nst >"$work/program.log" 2>&1 &
    app=$!
    program_ports
    import -window root -depth 8 "ppm:$work/shot.ppm"
    where=$("$helper" where "$work/shot.ppm" "$time" "$shown")
    capture 12
    sleep 1
    xdotool mousemove 640 60
    xdotool key grave
    sleep 0.3
    xdotool key Return
    sleep 2
    xdotool mousemove $where click 1
    wait $rec || true
    kill -TERM $app
    wait $app
' "$program" "$helper" "$work" "$time" "$shown"

"$helper" add resources/demo.nst "$work/with-note.nst" "$line" "$time"
"$program" --render "$work/before.wav" --seconds 9 resources/demo.nst >/dev/null
"$program" --render "$work/after.wav" --seconds 9 "$work/with-note.nst" >/dev/null
if ! "$helper" check "$work/capture.wav" "$work/before.wav" "$work/after.wav" "$pass" "$at"; then
    echo "the capture does not hold the clicked note where it belongs; program log:"
    cat "$work/program.log"
    exit 1
fi
