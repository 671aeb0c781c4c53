#!/bin/bash
# Runs the real program under a virtual display on JACK servers of its own
# (the dummy driver) and takes the server away under it. First: the server
# stops and another starts at a new rate; the program's output ports must
# come back, connected to the playback ports. Then it goes again, and on the
# server after it the demo started by keys must be heard, frame for frame as
# the offline render plays it. Then RUNS times: the server
# stops, and SIGTERM after a delay that varies from run to run must end the
# program with exit code 0 in under a second.
# Usage: reconnect.sh PROGRAM COMPARE_TAKES [RUNS]
set -eu
program=$1
compare=$2
runs=${3:-10}
cd "$(dirname "$0")/.."
work=$(mktemp -d)
"$program" --render "$work/render.wav" --seconds 5 resources/demo.nst >/dev/null
export JACK_NO_AUDIO_RESERVATION=1 JACK_DEFAULT_SERVER="oxreconnect$$"
trap 'rm -rf "$work"' EXIT

xvfb-run -a -s "-screen 0 1280x800x24" bash -c '
set -u
program=$0 work=$1 runs=$2 compare=$3
now() { date +%s%N; }
fail() { echo "FAIL: $*"; cat "$work"/*.log; exit 1; }
jack="" app=""
trap '"'"'kill $jack $app 2>/dev/null'"'"' EXIT

start_server() { # rate period
    jackd -n "$JACK_DEFAULT_SERVER" -d dummy -r "$1" -p "$2" >"$work/jackd.log" 2>&1 &
    jack=$!
    for i in $(seq 100); do jack_lsp >/dev/null 2>&1 && return 0; sleep 0.05; done
    fail "jackd did not come up"
}
stop_server() {
    kill -TERM $jack
    wait $jack 2>/dev/null || true
}
# Waits up to five seconds for the program'"'"'s left port, connected to
# system:playback_1.
wait_ports() {
    for i in $(seq 100); do
        jack_lsp -c 2>/dev/null | grep -A1 "^oxbowlantern:outport 0" |
            grep -q "system:playback_1" && return 0
        sleep 0.05
    done
    return 1
}
# SIGTERM, then up to a second for the program to end; sets code to its
# exit code ("hung" when it had to be killed) and ms to the time taken.
terminate() {
    local t0 state
    t0=$(now)
    kill -TERM $app
    while :; do
        state=$(cut -d" " -f3 /proc/$app/stat 2>/dev/null || echo gone)
        [ "$state" = Z ] || [ "$state" = gone ] && break
        if [ $(( ($(now) - t0) / 1000000 )) -ge 1000 ]; then
            kill -KILL $app; wait $app 2>/dev/null
            code=hung ms=$(( ($(now) - t0) / 1000000 ))
            return
        fi
        sleep 0.01
    done
    wait $app && code=0 || code=$?
    ms=$(( ($(now) - t0) / 1000000 ))
}

start_server 48000 256
"$program" resources/demo.nst >"$work/program.log" 2>&1 &
app=$!
wait_ports || fail "the output ports did not show"
stop_server
sleep 1.5
start_server 44100 512
wait_ports || fail "the output ports did not come back on the new server"
echo "ports came back on the new server"
stop_server
sleep 1.5
start_server 48000 256
wait_ports || fail "the output ports did not come back on the third server"
# The demo from its start, captured; a second take only when the first
# missed a frame, since a build beside the test can delay a tick now and then.
take() {
    jack_rec -f "$work/capture.wav" -d 6 -b 32 "oxbowlantern:outport 0" \
        "oxbowlantern:outport 1" >"$work/rec.log" 2>&1 &
    rec=$!
    sleep 0.5
    xdotool key grave
    sleep 0.3
    xdotool key Return
    wait $rec || true
    xdotool key KP_0
    "$compare" "$work/capture.wav" "$work/render.wav" 3.9
}
take || { sleep 1.5; take; } || fail "the demo was not heard as rendered"
echo "the demo started by keys is heard on the third server"
terminate
[ "$code" = 0 ] || fail "exit after the new server: $code after $ms ms"
stop_server

delays=(0 0.05 0.2 0.5 1.2)
for run in $(seq "$runs"); do
    start_server 48000 256
    "$program" >"$work/program.log" 2>&1 &
    app=$!
    wait_ports || fail "run $run: the output ports did not show"
    stop_server
    sleep ${delays[$(( run % ${#delays[@]} ))]}
    terminate
    echo "run $run: SIGTERM ${delays[$(( run % ${#delays[@]} ))]} s after the server went: exit $code in $ms ms"
    [ "$code" = 0 ] || fail "run $run: the program did not end in a second"
done
' "$program" "$work" "$runs" "$compare"
