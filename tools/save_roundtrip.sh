#!/bin/sh
# The save command through the real program: the demo instrument is loaded
# from the command line and saved by Save As into a temporary folder (the
# program's OX_SAVE_AS hook stands in for the file dialog); later runs load
# the saved file and save it again. A load lists notes of equal time in the
# reverse of their stored order, as inserting them one by one does, so the
# file of the second run holds the same bytes in another order, and the file
# of the third run must equal the first byte for byte. Each run has a virtual
# display and the one JACK server on the dummy driver, and is ended with
# SIGTERM. Usage: save_roundtrip.sh PROGRAM
set -eu
program=$1
demo=$(dirname "$0")/../resources/demo.nst
work=$(mktemp -d)
echo "work folder: $work"
server="oxsave$$"
export JACK_NO_AUDIO_RESERVATION=1 JACK_DEFAULT_SERVER="$server"

jackd -n "$server" -d dummy -r 48000 -p 256 >"$work/jackd.log" 2>&1 &
jack=$!
trap 'kill $jack 2>/dev/null || true; [ -n "${OX_KEEP:-}" ] || rm -rf "$work"' EXIT
sleep 1

# The bytes of a file, one a line, sorted.
sort_bytes() {
    od -An -v -tx1 -w1 "$1" | sort | md5sum
}

# run INPUT OUTPUT: the program until OUTPUT stands on the disk, at most 20 s.
run() {
    OX_SAVE_AS="$2" xvfb-run -a -s "-screen 0 1280x800x24" sh -c '
        "$0" "$1" >"$3.log" 2>&1 &
        app=$!
        for i in $(seq 200); do
            [ -s "$2" ] && break
            sleep 0.1
        done
        kill -TERM $app
        wait $app
    ' "$program" "$1" "$2" "$2"
    if [ ! -s "$2" ]; then
        echo "the program did not save $2:"
        cat "$2.log"
        exit 1
    fi
}

run "$demo" "$work/first.nst"
run "$work/first.nst" "$work/second.nst"
run "$work/second.nst" "$work/third.nst"
if [ "$(sort_bytes "$work/first.nst")" != "$(sort_bytes "$work/second.nst")" ]; then
    echo "the second save does not hold the bytes of the first"
    exit 1
fi
if ! cmp "$work/first.nst" "$work/third.nst"; then
    echo "the file saved after two loads differs from the first one saved"
    exit 1
fi
echo "saved three times; the first and the third file are equal, $(wc -c <"$work/first.nst") bytes"
