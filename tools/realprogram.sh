# Sourced by the real-program tests; $work is their scratch folder.

# start_jack NAME [PERIOD]: a private JACK server on the dummy driver at
# 48 kHz and periods of PERIOD frames (256 unless given), once it answers;
# stopped (and $work removed) when the script ends.
start_jack() {
    export JACK_NO_AUDIO_RESERVATION=1 JACK_DEFAULT_SERVER="$1"
    jackd -n "$1" -d dummy -r 48000 -p "${2:-256}" >"$work/jackd.log" 2>&1 &
    jack=$!
    trap 'kill $jack 2>/dev/null || true; rm -rf "$work"' EXIT
    # Up to ten seconds for the server to answer: a loaded machine can be
    # slow to start it, and a program started before it would find no JACK.
    for i in $(seq 50); do
        jack_lsp >/dev/null 2>&1 && return 0
        sleep 0.2
    done
    echo "the JACK server $1 did not start:"
    cat "$work/jackd.log"
    return 1
}

# program_ports: waits up to ten seconds for the program's output ports,
# then a second more for it to settle, and lists them in $work/ports.
program_ports() {
    for i in $(seq 50); do
        jack_lsp 2>/dev/null | grep -q "^oxbowlantern:" && break
        sleep 0.2
    done
    sleep 1
    jack_lsp 2>/dev/null | grep "^oxbowlantern:" >"$work/ports"
}

# capture SECONDS: records the program's two output ports into
# $work/capture.wav in the background; $rec is the recorder.
capture() {
    jack_rec -f "$work/capture.wav" -d "$1" -b 32 "$(sed -n 1p "$work/ports")" \
        "$(sed -n 2p "$work/ports")" >"$work/rec.log" 2>&1 &
    rec=$!
}

# end_after_takes: runs the caller's take, and once more after a pause when
# it missed (a build running beside the test can delay a tick now and then);
# then ends the program $app and exits with the last take's result.
end_after_takes() {
    take || { sleep 1.5; take; }
    heard=$?
    kill -TERM $app
    wait $app
    exit $heard
}
