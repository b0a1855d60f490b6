#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zel {

using ByteView = std::span<const std::uint8_t>;
using Bytes = std::vector<std::uint8_t>;

// The little-endian number at the start of `bytes`, which must be long enough. Works on any host's byte order.
template <std::unsigned_integral T>
constexpr T loadLittleEndian(const std::uint8_t* bytes) {
  T value = 0;
  for (std::size_t i = 0; i < sizeof(T); ++i) value = static_cast<T>(value | (T{bytes[i]} << (8 * i)));
  return value;
}

// Appends the number, lowest byte first.
template <std::unsigned_integral T>
constexpr void appendLittleEndian(Bytes& bytes, T value) {
  for (std::size_t i = 0; i < sizeof(T); ++i) bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

}  // namespace zel
