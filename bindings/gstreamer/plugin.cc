// What GStreamer finds in libgstzelcam.so.

#include <gst/gst.h>

#include "bindings/gstreamer/devices.h"
#include "bindings/gstreamer/zelcamsrc.h"

#define PACKAGE "ZELTarkaSDK"  // which the macro reads

namespace {

gboolean initPlugin(GstPlugin* plugin) {
  return zel::gst::registerElement(plugin) && zel::gst::registerDevices(plugin);
}

}  // namespace

GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, zelcam, "360-degree cameras", initPlugin, ZEL_VERSION,
                  "Apache 2.0", "ZELTarkaSDK", "https://zeltarkasdk.invalid")
