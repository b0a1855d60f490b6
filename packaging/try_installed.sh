#!/usr/bin/env bash
# Uses each installed package as its user would: builds the project of packaging/consumer in build/consumer with nothing
# else of this one, and asks the programs, the GStreamer plugin and the module for Python.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

rm -rf build/consumer
cp -r packaging/consumer build/consumer
make -s -C build/consumer
(cd build/consumer && ./consumer "$PWD/bus")
zelcam --version
zelcam-sim --version
man -w zelcam >/dev/null
gst-inspect-1.0 zelcamsrc >/dev/null

bus=$PWD/build/consumer/python
zelcam-sim --accessories "$bus" </dev/null >/dev/null &
simulator=$!
trap 'kill "$simulator"; wait "$simulator" || true' EXIT
cd /
/usr/bin/python3 - "$bus" <<'PYTHON'
import sys, zeltarkasdk
with zeltarkasdk.Camera.open(accessories=sys.argv[1], time_limit=60) as camera:
    print(f"zeltarkasdk {zeltarkasdk.__version__} in {zeltarkasdk.__file__}: battery {camera.battery().level} %")
PYTHON
