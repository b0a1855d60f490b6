#!/bin/sh
# Pictures and sound to a file.
exec gst-launch-1.0 -e zelcamsrc name=camera camera.video ! queue ! h264parse ! matroskamux name=film ! filesink location=film.mkv camera.audio ! queue ! aacparse ! film.
