#pragma once

#include <gst/gst.h>

namespace zel::gst {

// The element zelcamsrc: a camera's stream as a live source with sometimes-pads.
//
// Errors: false where it cannot be registered.
bool registerElement(GstPlugin* plugin);

inline constexpr const char* kElement = "zelcamsrc";

}  // namespace zel::gst
