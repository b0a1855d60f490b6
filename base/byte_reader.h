#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

#include <ZELTarkaSDK/WireNumber.h>

#include "base/wire.h"

namespace zel {

// Reads records in sequence and never past the end: missing bytes read as 0, and ok() is then false.
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

  // The unread bytes.
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
