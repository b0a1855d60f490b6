#pragma once

#include <ZELTarkaSDK/PreviewFormat.h>

#include <thread>

#include "apps/zelcam/command_line/command.h"

namespace zel::app {

// How many threads decode a preview of that resolution code: as many as --decoder-threads asks for, else one, which
// shows each picture soonest. From 2560x1280 on, one can take longer for a picture than until the next one comes.
inline int decoderThreads(const Values& values, int resolution) {
  constexpr int kFirstLarge = previewCode({2560, 1280, 15});
  const int usual = resolution >= kFirstLarge && std::thread::hardware_concurrency() > 1 ? 2 : 1;
  return static_cast<int>(values.integer("--decoder-threads").value_or(usual));
}

}  // namespace zel::app
