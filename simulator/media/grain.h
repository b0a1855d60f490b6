#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace zel::simulator {

// Sensor noise, different in every picture, and the same in each film.
class Grain {
 public:
  Grain();

  // Adds noise to one row of samples. picture, row: determine the noise.
  void add(std::uint64_t picture, std::uint64_t row, std::span<std::uint8_t> samples) const;

 private:
  std::vector<std::int8_t> noise_;
};

}  // namespace zel::simulator
