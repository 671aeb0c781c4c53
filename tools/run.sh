#!/bin/sh
# Sets up, builds and starts the program. With no arguments it opens the
# demo instrument, so that there is something to play at once.
set -eu
cd "$(dirname "$0")/.."
sh tools/build.sh
[ "$#" -eq 0 ] && set -- resources/demo.nst
exec build/oxbowlantern "$@"
