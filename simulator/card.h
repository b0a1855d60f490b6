#pragma once

#include <cstdint>
#include <optional>

namespace zel::simulator {

inline constexpr std::uint8_t kCardReady = 0, kCardFull = 2;  // every other state: unusable

// The memory card: its state and free space.
// Units:  bytes.
class Card {
 public:
  explicit Card(std::uint64_t size) : total_(size), free_(size) {}

  std::uint64_t total() const { return total_; }
  std::uint64_t free() const { return free_; }

  // The state; full if that many more bytes do not fit.
  std::uint8_t state(std::uint64_t picture) const {
    if (trouble_) return *trouble_;
    return picture <= free_ ? kCardReady : kCardFull;
  }

  bool takes(std::uint64_t size) const { return !trouble_ && size <= free_; }
  void take(std::uint64_t size) { free_ -= size < free_ ? size : free_; }
  void give(std::uint64_t size) { free_ += size < total_ - free_ ? size : total_ - free_; }

  // Sets the state from outside. Ready after an unusable or full state means a new, empty card.
  void setState(std::uint8_t state) {
    const bool another = trouble_ || free_ == 0;
    trouble_.reset();
    if (state == kCardFull) {
      free_ = 0;
    } else if (state != kCardReady) {
      trouble_ = state;
    } else if (another) {
      free_ = total_;
    }
  }

 private:
  std::uint64_t total_, free_;
  std::optional<std::uint8_t> trouble_;  // a state that is neither ready nor full
};

}  // namespace zel::simulator
