#!/bin/sh
# Stitched panoramas, encoded here, with the camera's sound.
exec gst-launch-1.0 -e zelcamsrc name=camera output=stitched width=1920 height=960 camera.video ! queue ! x264enc tune=zerolatency bitrate=8000 key-int-max=30 ! h264parse ! matroskamux name=film ! filesink location=panorama.mkv camera.audio ! queue ! aacparse ! film.
