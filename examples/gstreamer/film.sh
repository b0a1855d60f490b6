#!/bin/sh
# The camera's own pictures to a file, as they come: nothing is encoded again. Ctrl-C ends the file.
exec gst-launch-1.0 -e zelcamsrc ! h264parse ! matroskamux ! filesink location=film.mkv
