#pragma once

#include <ZELTarkaSDK/PreviewFormat.h>
#include <gst/gst.h>

#include <cstdint>
#include <string>

namespace zel::gst {

enum class Output { camera, raw, stitched };
enum class OnLoss { wait, error, eos };

// The element's properties, as they are when it opens its camera.
//
// Units: pixels; milliseconds.
struct Settings {
  std::string serialNumber, folder;
  Output output = Output::camera;
  std::uint8_t resolution = kSmallestPreview;
  gint width = 1920, height = 960;
  gboolean removePurple = FALSE;
  guint decoderThreads = 1;
  guint openTimeout = 10'000, startTimeout = 10'000;
  OnLoss onLoss = OnLoss::wait;
  guint lossTimeout = 30'000;  // 0: none
  gint numBuffers = -1;        // pictures; below 0: all
};

}  // namespace zel::gst
