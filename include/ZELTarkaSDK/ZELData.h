#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include <ZELTarkaSDK/platform/export.h>

// Immutable bytes, shared: copying the object copies no bytes.
// Thread: any thread.
class ZEL_EXPORT ZELData {
 public:
  // No bytes.
  ZELData() = default;

  // Takes the bytes over.
  explicit ZELData(std::vector<std::uint8_t> bytes)
      : bytes_(std::make_shared<const std::vector<std::uint8_t>>(std::move(bytes))) {}

  // Copies the bytes.
  explicit ZELData(std::span<const std::uint8_t> bytes)
      : ZELData(std::vector<std::uint8_t>(bytes.begin(), bytes.end())) {}

  // The bytes; the view is valid as long as this object or a copy of it lives.
  std::span<const std::uint8_t> bytes() const {
    return bytes_ ? std::span<const std::uint8_t>(*bytes_) : std::span<const std::uint8_t>();
  }
  std::size_t size() const { return bytes_ ? bytes_->size() : 0; }
  bool empty() const { return size() == 0; }

  friend bool operator==(const ZELData& a, const ZELData& b) {
    return a.bytes_ == b.bytes_ || std::ranges::equal(a.bytes(), b.bytes());
  }

 private:
  std::shared_ptr<const std::vector<std::uint8_t>> bytes_;
};
