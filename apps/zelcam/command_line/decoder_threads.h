#pragma once

#include <ZELTarkaSDK/PreviewFormat.h>

#include <thread>

#include "apps/zelcam/command_line/command.h"

namespace zel::app {

// The number of decoder threads for a preview of that resolution code: that of --decoder-threads, else one, which has
// the shortest delay. From 2560x1280 on, one thread can be too slow, so the default is two.
inline int decoderThreads(const Values& values, int resolution) {
  constexpr int kFirstLarge = previewCode({2560, 1280, 15});
  const int usual = resolution >= kFirstLarge && std::thread::hardware_concurrency() > 1 ? 2 : 1;
  return static_cast<int>(values.integer("--decoder-threads").value_or(usual));
}

}  // namespace zel::app
