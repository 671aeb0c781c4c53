#!/bin/sh
# Starts the real program under a virtual display with its own JACK server
# on the dummy driver, takes a screenshot, then ends the program with
# SIGTERM and checks that it closed cleanly with exit code 0.
# Usage: smoke.sh PROGRAM SCREENSHOT.png
set -eu
program=$1
shot=$2
server="oxsmoke$$"
export JACK_NO_AUDIO_RESERVATION=1 JACK_DEFAULT_SERVER="$server"

jackd -n "$server" -d dummy -r 48000 -p 256 >/dev/null 2>&1 &
jack=$!
trap 'kill $jack 2>/dev/null || true' EXIT
sleep 1

xvfb-run -a -s "-screen 0 1280x800x24" sh -c '
    "$0" > /tmp/oxsmoke.out 2>&1 &
    app=$!
    sleep 3
    import -window root "$1"
    jack_lsp > /tmp/oxsmoke.ports 2>&1 || true
    kill -TERM $app
    wait $app
' "$program" "$shot"
grep -q "oxbowlantern" /tmp/oxsmoke.ports
test -s "$shot"
