#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include <ZELTarkaSDK/WireNumber.h>

#include "base/wire.h"

namespace zel {

// Reads records one after another and never beyond the end: what is missing reads as 0, and ok() tells of it.
class ByteReader {
 public:
  explicit ByteReader(ByteView bytes) : rest_(bytes) {}

  template <WireRecord R>
  R read() {
    std::array<std::uint8_t, sizeof(R)> bytes{};
    if (rest_.size() < bytes.size()) {
      ok_ = false;
      rest_ = {};
    } else {
      std::copy_n(rest_.begin(), bytes.size(), bytes.begin());
      rest_ = rest_.subspan(bytes.size());
    }
    return std::bit_cast<R>(bytes);
  }

  // What has not been read yet.
  ByteView rest() const { return rest_; }
  bool ok() const { return ok_; }

 private:
  ByteView rest_;
  bool ok_ = true;
};

// Appends a record's wire form.
template <WireRecord R>
void appendRecord(Bytes& bytes, const R& record) {
  const auto wire = std::bit_cast<std::array<std::uint8_t, sizeof(R)>>(record);
  bytes.insert(bytes.end(), wire.begin(), wire.end());
}

}  // namespace zel
