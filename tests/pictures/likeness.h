#pragma once

#include <cmath>
#include <cstddef>

#include "simulator/picture.h"

namespace zel::test {

// How much an equirectangular picture is like another one of its size, as a peak signal to noise ratio; each row counts
// by its area on the sphere. Rows from `first` to before `end`; those of all rows by default.
// Units:  decibels. -1 for pictures of two sizes.
inline double likeness(const simulator::Picture& a, const simulator::Picture& b, int first = 0, int end = -1) {
  if (a.width != b.width || a.height != b.height) return -1;
  if (end < 0) end = a.height;
  double sum = 0, weights = 0;
  for (int y = first; y < end; ++y) {
    const double weight = std::sin((y + 0.5) / a.height * 3.14159265358979);
    for (std::size_t i = 0; i < 3 * static_cast<std::size_t>(a.width); ++i) {
      const std::size_t at = simulator::indexOf(a, 0, y) + i;
      const double difference = a.rgb[at] - b.rgb[at];
      sum += weight * difference * difference;
    }
    weights += weight * 3 * a.width;
  }
  return 10 * std::log10(255 * 255 * weights / sum);
}

}  // namespace zel::test
