#!/usr/bin/env bash
# show.sh PROGRAMS MEDIA: a simulated camera in a browser. PROGRAMS is the folder of zelcam and zelcam-sim, MEDIA that of
# its photos. Ctrl-C ends both programs.
set -euo pipefail

bus=$(mktemp -d)
"$1/zelcam-sim" --accessories "$bus/accessories" </dev/null &
camera=$!
trap 'kill "$camera" 2>/dev/null || true; wait "$camera" || true; rm -rf "$bus"' EXIT
trap : INT TERM

"$1/zelcam" --accessories "$bus/accessories" serve --media "$2" &
gateway=$!
trap 'kill "$gateway" 2>/dev/null || true' INT TERM
wait "$gateway" || wait "$gateway"
