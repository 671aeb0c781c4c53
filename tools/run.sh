#!/bin/sh
# Sets up, builds and starts the program.
set -eu
cd "$(dirname "$0")/.."
sh tools/build.sh
exec build/oxbowlantern "$@"
