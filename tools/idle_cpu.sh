#!/bin/sh
# Measures what the program costs at rest: the real program with the demo
# instrument loaded, under a virtual display with its own JACK server on the
# dummy driver at 256-frame periods, left alone; then prints the share of one
# core that each of its threads and the whole process took over SECONDS
# (default 20): from the utime and stime of /proc (in clock ticks), and
# beside it from the run time that /proc/PID/task/TID/schedstat counts in
# nanoseconds. With "play" the demo is started by keys first (Grave
# highlights the sequencer, Enter starts it), so that the figure is the cost
# of playing. Last comes the same figure for jack_simple_client on the same
# server: what any client's process thread costs per period on this machine.
# Usage: idle_cpu.sh PROGRAM [idle|play] [SECONDS]
set -eu
program=$(realpath "$1")
mode=${2:-idle}
seconds=${3:-20}
cd "$(dirname "$0")/.."
work=$(mktemp -d)
. tools/realprogram.sh
start_jack "oxidle$$"

xvfb-run -a -s "-screen 0 1280x800x24" sh -c '
    program=$0 work=$1 mode=$2 seconds=$3
    . tools/realprogram.sh
    "$program" resources/demo.nst >"$work/program.log" 2>&1 &
    app=$!
    program_ports
    sleep 1
    if [ "$mode" = play ]; then
        xdotool mousemove 640 400
        xdotool key grave
        sleep 0.3
        xdotool key Return
        sleep 1
    fi
    measure() {
        pid=$1
        # Per thread: id, name, utime + stime in clock ticks, run time in ns.
        snapshot() {
            total=0
            for t in /proc/$pid/task/*; do
                [ -r "$t/stat" ] || continue
                ns=$(cut -d" " -f1 "$t/schedstat")
                total=$((total + ns))
                printf "%s %s " "${t##*/}" "$(tr " " _ <"$t/comm")"
                sed "s/.*) //" "$t/stat" | awk -v ns="$ns" "{ print \$12 + \$13, ns }"
            done
            printf "process whole "
            sed "s/.*) //" /proc/$pid/stat | awk -v ns="$total" "{ print \$12 + \$13, ns }"
        }
        snapshot >"$work/before"
        sleep "$seconds"
        snapshot >"$work/after"
        awk -v hz="$(getconf CLK_TCK)" -v s="$seconds" "
            NR == FNR { ticks[\$1] = \$3; ns[\$1] = \$4; next }
            { printf \"%-9s %-16s %6.2f %% (stat) %6.2f %% (schedstat)\\n\", \$1, \$2,
                     100 * (\$3 - ticks[\$1]) / hz / s, (\$4 - ns[\$1]) / 1e7 / s }
        " "$work/before" "$work/after"
    }
    measure $app
    kill -TERM $app
    wait $app || true
    if command -v jack_simple_client >/dev/null; then
        echo "for comparison, jack_simple_client:"
        jack_simple_client >/dev/null 2>&1 &
        bare=$!
        sleep 2
        measure $bare | tail -n 1
        kill $bare
    fi
' "$program" "$work" "$mode" "$seconds"
