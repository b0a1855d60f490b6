#include "simulator/card.h"

namespace zel::simulator {

std::uint8_t Card::state(std::uint64_t picture) const {
  if (trouble_) return *trouble_;
  return picture <= free_ ? kCardReady : kCardFull;
}

void Card::setState(std::uint8_t state) {
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

}  // namespace zel::simulator
