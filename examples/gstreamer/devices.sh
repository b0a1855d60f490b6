#!/bin/sh
# Lists the cameras, and tells which come and go.
exec gst-device-monitor-1.0 --follow Video/Source
