#pragma once

#include <gst/gst.h>

namespace zel::gst {

// The provider of devices: the cameras on the accessory bus, as gst-device-monitor lists them.
//
// Errors: false where it cannot be registered.
bool registerDevices(GstPlugin* plugin);

}  // namespace zel::gst
