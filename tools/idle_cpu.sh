#!/bin/sh
# Measures what the program costs at rest: the real program with the demo
# instrument loaded, under a virtual display with its own JACK server on the
# dummy driver at 256-frame periods, left alone; then prints the share of one
# core that each of its threads and the whole process took over SECONDS
# (default 20), from the utime and stime of /proc. With "play" the demo is
# started by keys first (Grave highlights the sequencer, Enter starts it), so
# that the figure is the cost of playing.
# Usage: idle_cpu.sh PROGRAM [idle|play] [SECONDS]
set -eu
program=$(realpath "$1")
mode=${2:-idle}
seconds=${3:-20}
cd "$(dirname "$0")/.."
work=$(mktemp -d)
server="oxidle$$"
export JACK_NO_AUDIO_RESERVATION=1 JACK_DEFAULT_SERVER="$server"

jackd -n "$server" -d dummy -r 48000 -p 256 >"$work/jackd.log" 2>&1 &
jack=$!
trap 'kill $jack 2>/dev/null || true; rm -rf "$work"' EXIT
sleep 1

xvfb-run -a -s "-screen 0 1280x800x24" sh -c '
    program=$0 work=$1 mode=$2 seconds=$3
    "$program" resources/demo.nst >"$work/program.log" 2>&1 &
    app=$!
    for i in $(seq 50); do
        jack_lsp 2>/dev/null | grep -q "^oxbowlantern:" && break
        sleep 0.2
    done
    sleep 2
    if [ "$mode" = play ]; then
        xdotool mousemove 640 400
        xdotool key grave
        sleep 0.3
        xdotool key Return
        sleep 1
    fi
    # Per thread: id, name, utime + stime in clock ticks.
    snapshot() {
        for t in /proc/$app/task/*; do
            [ -r "$t/stat" ] || continue
            printf "%s %s " "${t##*/}" "$(tr " " _ <"$t/comm")"
            sed "s/.*) //" "$t/stat" | awk "{ print \$12 + \$13 }"
        done
        printf "process process "
        sed "s/.*) //" /proc/$app/stat | awk "{ print \$12 + \$13 }"
    }
    snapshot >"$work/before"
    sleep "$seconds"
    snapshot >"$work/after"
    kill -TERM $app
    wait $app || true
    awk -v hz="$(getconf CLK_TCK)" -v s="$seconds" "
        NR == FNR { start[\$1] = \$3; next }
        { used = \$3 - start[\$1]
          printf \"%-9s %-16s %6.2f %%\\n\", \$1, \$2, 100 * used / hz / s }
    " "$work/before" "$work/after"
' "$program" "$work" "$mode" "$seconds"
