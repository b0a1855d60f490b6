#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "outputs/mp4_boxes.h"

namespace zel::gateway {

// Writes MP4 boxes: big-endian numbers, and the length of each box once its content is there.
class BoxWriter {
 public:
  void u8(std::uint64_t value) { number(value, 1); }
  void u16(std::uint64_t value) { number(value, 2); }
  void u32(std::uint64_t value) { number(value, 4); }
  void u64(std::uint64_t value) { number(value, 8); }
  void zeros(std::size_t count) { bytes_.resize(bytes_.size() + count); }
  void text(std::string_view letters) { bytes_.insert(bytes_.end(), letters.begin(), letters.end()); }
  void bytes(std::span<const std::uint8_t> content) { bytes_.insert(bytes_.end(), content.begin(), content.end()); }

  // A box whose content the call writes.
  template <class Content>
  void box(std::string_view type, const Content& content) {
    const std::size_t begin = bytes_.size();
    u32(0);
    u32(boxType(type));
    content();
    std::uint64_t size = bytes_.size() - begin;
    for (std::size_t at = begin + 4; at-- > begin; size >>= 8) bytes_[at] = static_cast<std::uint8_t>(size & 0xFF);
  }

  // The same with version and flags before its content.
  template <class Content>
  void fullBox(std::string_view type, int version, std::uint32_t flags, const Content& content) {
    box(type, [&] {
      u32(static_cast<std::uint32_t>(version) << 24 | flags);
      content();
    });
  }

  std::size_t size() const { return bytes_.size(); }
  void reserve(std::size_t size) { bytes_.reserve(size); }
  std::vector<std::uint8_t> take() { return std::move(bytes_); }

 private:
  void number(std::uint64_t value, int size) {
    for (int byte = size; byte-- > 0;) bytes_.push_back(static_cast<std::uint8_t>(value >> (8 * byte) & 0xFF));
  }

  std::vector<std::uint8_t> bytes_;
};

}  // namespace zel::gateway
