#!/bin/sh
# Starts the real program under a virtual display with its own JACK server
# on the dummy driver, takes a screenshot, then ends the program with
# SIGTERM and checks that it showed its output ports and closed with exit
# code 0. Usage: smoke.sh PROGRAM SCREENSHOT.png
set -eu
program=$1
shot=$2
work=$(mktemp -d)
server="oxsmoke$$"
export JACK_NO_AUDIO_RESERVATION=1 JACK_DEFAULT_SERVER="$server"

jackd -n "$server" -d dummy -r 48000 -p 256 >"$work/jackd.log" 2>&1 &
jack=$!
trap 'kill $jack 2>/dev/null || true; rm -rf "$work"' EXIT
sleep 1

xvfb-run -a -s "-screen 0 1280x800x24" sh -c '
    "$0" >"$2/program.log" 2>&1 &
    app=$!
    sleep 3
    import -window root "$1"
    jack_lsp >"$2/ports" 2>&1 || true
    kill -TERM $app
    wait $app
' "$program" "$shot" "$work"
if ! grep -q "^oxbowlantern:" "$work/ports"; then
    echo "the program's output ports did not show:"
    cat "$work/ports" "$work/program.log"
    exit 1
fi
test -s "$shot"
