#pragma once

#include <gst/gst.h>

#include "bindings/gstreamer/settings.h"

namespace zel::gst {

// Adds the properties to the element's class. statistics: its number, which the element answers itself.
inline constexpr guint kStatistics = 100;
void installProperties(GObjectClass& type);

// One property by its number. False for a number that is none.
bool setProperty(Settings& settings, guint number, const GValue& value);
bool getProperty(const Settings& settings, guint number, GValue& value);

}  // namespace zel::gst
