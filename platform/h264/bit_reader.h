#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace zel::platform {

// Reads the bits of a NAL unit after its header byte; emulation prevention bytes are skipped.
// Errors: sticky. After a read past the end, ok() is false and every number is 0.
class BitReader {
 public:
  explicit BitReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  bool ok() const { return ok_; }

  std::uint32_t bit() {
    if (left_ == 0 && !nextByte()) return 0;
    return (byte_ >> --left_) & 1;
  }

  // Up to 32 bits, most significant first.
  std::uint32_t bits(int count) {
    std::uint32_t value = 0;
    while (count-- > 0) value = value << 1 | bit();
    return ok_ ? value : 0;
  }

  void skip(int count) {
    while (count-- > 0) bit();
  }

  // An unsigned Exp-Golomb number, ue(v).
  std::uint32_t number() {
    int zeros = 0;
    while (ok_ && bit() == 0) ++zeros;
    if (zeros > 31) ok_ = false;
    return ok_ ? (1u << zeros) - 1 + bits(zeros) : 0;
  }

  // A signed Exp-Golomb number, se(v): 1, -1, 2, -2, ...
  std::int32_t signedNumber() {
    const std::uint32_t code = number();
    const auto half = static_cast<std::int32_t>(code / 2);
    return code % 2 == 0 ? -half : half + 1;
  }

 private:
  bool nextByte() {
    if (zeros_ >= 2 && at_ < bytes_.size() && bytes_[at_] == 3) {
      ++at_;
      zeros_ = 0;
    }
    if (at_ >= bytes_.size()) return ok_ = false;
    byte_ = bytes_[at_++];
    zeros_ = byte_ == 0 ? zeros_ + 1 : 0;
    left_ = 8;
    return true;
  }

  std::span<const std::uint8_t> bytes_;
  std::size_t at_ = 0;
  std::uint32_t byte_ = 0;
  int left_ = 0;   // unread bits of byte_
  int zeros_ = 0;  // zero bytes before at_
  bool ok_ = true;
};

}  // namespace zel::platform
