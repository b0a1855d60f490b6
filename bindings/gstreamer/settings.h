#pragma once

#include <ZELTarkaSDK/PreviewFormat.h>

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
  bool direct = false;
  Output output = Output::camera;
  std::uint8_t resolution = kSmallestPreview;
  int width = 1920, height = 960;
  bool removePurple = false;
  unsigned decoderThreads = 1;
  unsigned openTimeout = 10'000, startTimeout = 10'000;
  OnLoss onLoss = OnLoss::wait;
  unsigned lossTimeout = 30'000;  // 0: none
  int numBuffers = -1;            // pictures; below 0: all
};

}  // namespace zel::gst
