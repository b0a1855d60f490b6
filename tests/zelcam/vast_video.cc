#include "tests/zelcam/vast_video.h"

#include <cstddef>

namespace zel::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t kColumns = 512, kRows = 288;  // macroblocks

class Unit {
 public:
  explicit Unit(std::uint8_t header) { bits(header, 8); }

  Unit& bits(std::uint32_t value, int count) {
    while (count-- > 0) {
      if (free_ == 0) bytes_.push_back(0), free_ = 8;
      bytes_.back() = static_cast<std::uint8_t>(bytes_.back() | (value >> count & 1) << --free_);
    }
    return *this;
  }

  // Exp-Golomb.
  Unit& number(std::uint32_t value) {
    int length = 0;
    while ((value + 1) >> (length + 1) != 0) ++length;
    return bits(0, length).bits(value + 1, length + 1);
  }

  // With its stop bit, its start code, and a byte put in wherever there would be a false one.
  Bytes whole() {
    bits(1, 1);
    Bytes stream{0, 0, 0, 1};
    int zeros = 0;
    for (const std::uint8_t byte : bytes_) {
      if (zeros >= 2 && byte <= 3) {
        stream.push_back(3);
        zeros = 0;
      }
      stream.push_back(byte);
      zeros = byte == 0 ? zeros + 1 : 0;
    }
    return stream;
  }

 private:
  Bytes bytes_;
  int free_ = 0;  // bits of the last byte
};

// What slices have in common behind their type: the PPS, the picture's number, and its place in the order of display.
void beginSlice(Unit& slice, std::uint32_t type, int number) {
  slice.number(0).number(type).number(0).bits(static_cast<std::uint32_t>(number), 8);
}

}  // namespace

Bytes vastParameterSets() {
  Unit sps(0x67), pps(0x68);
  sps.bits(77, 8).bits(0, 8).bits(62, 8).number(0);  // main profile, level 6.2
  sps.number(4).number(0).number(4);                 // 8 bits for a picture's number and place
  sps.number(16).bits(0, 1);                         // references, no gaps
  sps.number(kColumns - 1).number(kRows - 1).bits(1, 1).bits(1, 1).bits(0, 2);
  pps.number(0).number(0).bits(0, 2).number(0).number(0).number(0).bits(0, 3);
  pps.number(0).number(0).number(0).bits(0b100, 3);  // its slices say whether edges are smoothed
  Bytes both = sps.whole();
  const Bytes second = pps.whole();
  both.insert(both.end(), second.begin(), second.end());
  return both;
}

Bytes vastKeyPicture() {
  Unit slice(0x65);
  beginSlice(slice, 7, 0);
  slice.number(0).bits(0, 8).bits(0, 2).number(0).number(1);
  // Each macroblock: all of one grey (type 3), chroma likewise, the same quantiser, no coefficients.
  for (std::uint32_t macroblock = 0; macroblock < kColumns * kRows; ++macroblock)
    slice.number(3).number(0).number(0).bits(1, 1);
  return slice.whole();
}

Bytes vastPicture(int number) {
  Unit slice(0x41);
  beginSlice(slice, 5, number % 256);
  slice.bits(static_cast<std::uint32_t>(2 * number % 256), 8).bits(0, 3).number(0).number(1);
  slice.number(kColumns * kRows);  // macroblocks that are as they were
  return slice.whole();
}

}  // namespace zel::test
