#pragma once

namespace zel::simulator {

// The format of a preview resolution code, and its quality.
// Units:  pixels, pictures a second.
struct PreviewFormat {
  int width = 0, height = 0, rate = 0;
  int bitrate = 0;  // bits a second, with sensor noise; 0: without noise, in as many as it takes
  int slices = 1;   // of each picture

  bool operator==(const PreviewFormat&) const = default;
};

// code: 0 to 15; code / 4 is the size, code % 4 the rate.
constexpr PreviewFormat previewFormat(int code, int bitrate = 0, int slices = 1) {
  constexpr int kWidths[] = {1440, 2160, 2560, 3040};
  constexpr int kRates[] = {15, 20, 25, 30};
  return {kWidths[code / 4 % 4], kWidths[code / 4 % 4] / 2, kRates[code % 4], bitrate, slices};
}

}  // namespace zel::simulator
