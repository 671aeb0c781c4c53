#!/bin/sh
# The program with no sound device anywhere: no JACK server, no PulseAudio,
# and an ALSA configuration without a default device. It must say so in one
# line on standard error, with the reasons, and end with exit code 255.
# Usage: nodevice.sh PROGRAM
set -u
program=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
: >"$work/asound.conf"
JACK_DEFAULT_SERVER="oxnone$$" JACK_NO_START_SERVER=1 PULSE_SERVER="unix:$work/none" \
    ALSA_CONFIG_PATH="$work/asound.conf" \
    xvfb-run -a -s "-screen 0 800x600x24" "$program" >"$work/out" 2>"$work/err"
code=$?
if [ "$code" -ne 255 ] || ! grep -q "^oxbowlantern: no usable sound device" "$work/err"; then
    echo "exit code $code; standard error:"
    cat "$work/err"
    exit 1
fi
grep "^oxbowlantern:" "$work/err"
