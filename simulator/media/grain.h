#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zel::simulator {

// The noise of a sensor, different in every picture, and the same for each film.
class Grain {
 public:
  Grain();

  // Adds it to one row of samples. picture, row: which one, as both decide what is added.
  void add(std::uint64_t picture, std::uint64_t row, std::span<std::uint8_t> samples) const;

 private:
  std::vector<std::int8_t> noise_;
};

}  // namespace zel::simulator
