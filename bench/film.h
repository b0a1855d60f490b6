#pragma once

#include <cstdint>
#include <vector>

namespace zel::bench {

// What the simulated camera shows at 3040 x 1520, 30 pictures a second.
struct Film {
  using Bytes = std::vector<std::uint8_t>;

  std::vector<Bytes> pictures;  // with start codes and parameter sets
  Bytes sps, pps;               // without start code
  std::vector<Bytes> slices;    // each behind its length of 4 bytes, one a picture
};

inline constexpr int kFilmResolution = 15;  // its code

Film makeFilm(int pictures);

}  // namespace zel::bench
