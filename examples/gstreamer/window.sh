#!/bin/sh
# Stitched panoramas in a window.
exec gst-launch-1.0 -e zelcamsrc output=stitched width=1280 height=640 ! queue ! videoconvert ! autovideosink
