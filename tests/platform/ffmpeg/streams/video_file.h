#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zel::test {

// The H.264 of a file of the folder of real media, as it is, with start codes and parameter sets. Empty where there is
// none.
std::vector<std::uint8_t> realVideo(const std::string& name);

struct RealSound {
  struct Frame {
    std::vector<std::uint8_t> bytes;
    std::int64_t time = 0;  // milliseconds
  };
  std::vector<std::uint8_t> configuration;  // its AudioSpecificConfig
  std::vector<Frame> frames;
};

// The AAC of a file of that folder, as the container holds it. Without frames where there is none.
RealSound realSound(const std::string& name);

}  // namespace zel::test
