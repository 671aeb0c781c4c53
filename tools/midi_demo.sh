#!/bin/sh
# Plays the demo by MIDI and checks what is heard: the real program under a
# virtual display with its own JACK server on the dummy driver and a MIDI
# map file (a pad note for Grave, which highlights the sequencer, and one for
# Enter, which starts pattern 1). send_midi sends the two notes to the port
# "midi in", the second on a known frame, and records the program's output
# from that frame on: the pattern must start in the tick of that frame, and
# the capture must be the offline render of the same pattern frame for frame.
# Periods of 1024 frames hold four ticks, so a note taken in the period's
# first tick rather than its own would start the pattern early.
# Usage: midi_demo.sh PROGRAM COMPARE_TAKES SEND_MIDI
set -eu
program=$1
compare=$2
send=$3
cd "$(dirname "$0")/.."
work=$(mktemp -d)
. tools/realprogram.sh
start_jack "oxmidi$$" 1024

"$program" --render "$work/render.wav" --seconds 5 resources/demo.nst >/dev/null
cat >"$work/pads.map" <<'MAP'
# pads of a drum controller on channel 10
note 10 36 = key 41   # Grave: highlight the sequencer
note 10 38 = key 28   # Enter: start its pattern
MAP
xvfb-run -a -s "-screen 0 1280x800x24" sh -c '
    program=$0 compare=$1 send=$2 work=$3
    . tools/realprogram.sh
    "$program" --midi-map "$work/pads.map" resources/demo.nst >"$work/program.log" 2>&1 &
    app=$!
    program_ports
    take() {
        "$send" "$work/capture.wav" 4.5 "$work/render.wav" &&
            "$compare" "$work/capture.wav" "$work/render.wav" 3.9
    }
    end_after_takes
' "$program" "$compare" "$send" "$work" || {
    echo "the capture does not match the render; program log:"
    cat "$work/program.log"
    exit 1
}
