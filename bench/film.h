#pragma once

#include <cstdint>
#include <vector>

namespace zel::bench {

// What the simulated camera shows at 3040 x 1520, 30 pictures and 29.4 Mbit a second, with the grain of a sensor.
struct Film {
  using Bytes = std::vector<std::uint8_t>;

  std::vector<Bytes> pictures;  // with start codes and parameter sets
  Bytes sps, pps;               // without start code
  std::vector<Bytes> slices;    // each behind its length of 4 bytes, one a picture
};

inline constexpr int kFilmResolution = 15;       // its code
inline constexpr int kFilmBitrate = 29'400'000;  // what a camera sends

Film makeFilm(int pictures);

}  // namespace zel::bench
