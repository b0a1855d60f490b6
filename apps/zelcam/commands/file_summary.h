#pragma once

#include <string>
#include <vector>

namespace zel::app {

// One stream of a media file, after decoding all of its frames.
struct StreamSummary {
  std::string codec;  // FFmpeg's name, as "h264"
  int width = 0;      // 0 for sound
  int height = 0;
  int frames = 0;
};

// Decodes every frame of a film or a picture file.
// Errors: nothing if the file cannot be opened, if a frame cannot be decoded, and if it has no frame.
std::vector<StreamSummary> fileSummary(const std::string& path);

// "h264,1920,960,284 aac,453"
std::string textOf(const std::vector<StreamSummary>& streams);

}  // namespace zel::app
