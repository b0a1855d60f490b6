#pragma once

#include <array>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace zel {

// A number in wire form: little-endian, without alignment, the same on any host. Converts implicitly from and to the
// plain number.
template <class T>
requires std::integral<T> || std::floating_point<T>
class Le {
 public:
  constexpr Le() = default;
  constexpr Le(T value) {
    auto bits = std::bit_cast<Bits>(value);
    for (auto& byte : bytes_) {
      byte = static_cast<std::uint8_t>(bits & 0xFF);
      if constexpr (sizeof(T) > 1) bits = static_cast<Bits>(bits >> 8);
    }
  }
  constexpr operator T() const {
    Bits bits = 0;
    for (std::size_t i = sizeof(T); i > 0; --i) {
      if constexpr (sizeof(T) > 1) bits = static_cast<Bits>(bits << 8);
      bits = static_cast<Bits>(bits | bytes_[i - 1]);
    }
    return std::bit_cast<T>(bits);
  }

  // Compares bytes. For floating-point numbers that is stricter than comparing values.
  friend constexpr bool operator==(const Le&, const Le&) = default;
  template <class Number>
  requires std::is_arithmetic_v<Number>
  friend constexpr bool operator==(const Le& one, Number other) { return static_cast<T>(one) == other; }

 private:
  static_assert(std::integral<T> || std::numeric_limits<T>::is_iec559);
  using Bits = std::conditional_t<sizeof(T) == 1, std::uint8_t,
                                  std::conditional_t<sizeof(T) == 2, std::uint16_t,
                                                     std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>>>;

  std::array<std::uint8_t, sizeof(T)> bytes_{};
};

using U8 = Le<std::uint8_t>;
using S8 = Le<std::int8_t>;
using U16 = Le<std::uint16_t>;
using S16 = Le<std::int16_t>;
using U32 = Le<std::uint32_t>;
using S32 = Le<std::int32_t>;
using U64 = Le<std::uint64_t>;
using F32 = Le<float>;
using F64 = Le<double>;

// A fixed layout of such numbers, whose memory is its wire form.
template <class R>
concept WireRecord = std::is_trivially_copyable_v<R> && std::is_standard_layout_v<R> && alignof(R) == 1;

}  // namespace zel
