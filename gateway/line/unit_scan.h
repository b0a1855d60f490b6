#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "base/wire.h"
#include "media/nal_unit.h"
#include "media/start_code.h"

namespace zel::gateway {

// Finds where NAL units begin in a stream that comes in pieces, cut anywhere.
//
//   00 00 00 01 | header | first byte of the payload
//
// A unit is told of once these six bytes are there.
class UnitScan {
 public:
  struct Unit {
    std::ptrdiff_t at = 0;  // of its start code in the piece; below 0 where it began in the pieces before
    NalType type = NalType::slice;
    bool beginsPicture = false;  // a slice, and the first of its picture
  };

  // Calls found(unit) for each unit, in order.
  template <class Found>
  void scan(ByteView piece, Found found) {
    scanSeam(piece, found);
    if (piece.size() >= kTold) {
      const std::uint8_t* const end = piece.data() + piece.size() - kTold + 1;
      for (const std::uint8_t* at = findStartCode(piece.data(), end); at != end;
           at = findStartCode(at + kStartCodeSize, end)) {
        found(unitAt(at, at - piece.data()));
        if (at + kStartCodeSize >= end) break;
      }
    }
    keepTail(piece);
  }

  // The last bytes of the pieces so far: `count` of them, at most five.
  ByteView last(std::size_t count) const { return ByteView(tail_).subspan(size_ - count, count); }

  void clear() { size_ = 0; }

  // Whether the bytes begin with a sequence parameter set.
  static bool beginsWithSet(ByteView bytes) {
    return bytes.size() > kNalHeaderAt && isStartCode(bytes.data()) && nalType(bytes[kNalHeaderAt]) == NalType::sps;
  }

 private:
  static constexpr std::size_t kTold = kStartCodeSize + 2, kTail = kTold - 1;

  static Unit unitAt(const std::uint8_t* code, std::ptrdiff_t at) {
    const NalType type = nalType(code[kNalHeaderAt]);
    const bool isSlice = type == NalType::slice || type == NalType::idrSlice;
    // first_mb_in_slice is 0 where its first bit is 1.
    return {at, type, isSlice && (code[kNalHeaderAt + 1] & 0x80) != 0};
  }

  // Units that begin in the tail of the pieces before.
  template <class Found>
  void scanSeam(ByteView piece, Found found) {
    std::array<std::uint8_t, 2 * kTail> seam{};
    std::ranges::copy(ByteView(tail_).first(size_), seam.begin());
    const ByteView more = piece.first(std::min(piece.size(), kTail));
    std::ranges::copy(more, seam.begin() + static_cast<std::ptrdiff_t>(size_));
    for (std::size_t at = 0; at < size_ && at + kTold <= size_ + more.size(); ++at) {
      if (isStartCode(seam.data() + at)) {
        found(unitAt(seam.data() + at, static_cast<std::ptrdiff_t>(at) - static_cast<std::ptrdiff_t>(size_)));
      }
    }
  }

  void keepTail(ByteView piece) {
    std::array<std::uint8_t, 2 * kTail> seam{};
    std::ranges::copy(ByteView(tail_).first(size_), seam.begin());
    const ByteView more = piece.last(std::min(piece.size(), kTail));
    std::ranges::copy(more, seam.begin() + static_cast<std::ptrdiff_t>(size_));
    const std::size_t all = size_ + more.size(), kept = std::min(all, kTail);
    std::copy_n(seam.begin() + static_cast<std::ptrdiff_t>(all - kept), kept, tail_.begin());
    size_ = kept;
  }

  std::array<std::uint8_t, kTail> tail_{};
  std::size_t size_ = 0;
};

}  // namespace zel::gateway
