#!/bin/sh
# Follows a MIDI clock: the real program under a virtual display with its own
# JACK server on the dummy driver, following MIDI clock and leading the JACK
# transport for the run. clock_source sends Start and a clock at 97.3 BPM to
# its port "midi in": the demo must start, and the tempo that the program
# publishes must read 97.3 within two beats and its beats go on at it.
# Usage: follow_clock.sh PROGRAM CLOCK_SOURCE
set -eu
program=$1
source=$2
cd "$(dirname "$0")/.."
work=$(mktemp -d)
. tools/realprogram.sh
start_jack "oxfollow$$"

xvfb-run -a -s "-screen 0 1280x800x24" sh -c '
    program=$0 source=$1 work=$2
    . tools/realprogram.sh
    "$program" --follow-midi-clock --jack-transport resources/demo.nst \
        >"$work/program.log" 2>&1 &
    app=$!
    program_ports
    take() { "$source" 97.3; }
    end_after_takes
' "$program" "$source" "$work" || {
    echo "the program did not follow the clock; program log:"
    cat "$work/program.log"
    exit 1
}
