#pragma once

#include <charconv>
#include <cmath>
#include <concepts>
#include <optional>
#include <string_view>
#include <system_error>

namespace zel::gateway {

// The decimal number of the whole text; nothing if it is no number, not finite or out of T's range.
template <class T>
requires std::integral<T> || std::floating_point<T> std::optional<T> numberIn(std::string_view text) {
  T value{};
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (fault != std::errc() || end != text.data() + text.size()) return std::nullopt;
  if constexpr (std::floating_point<T>) {
    if (!std::isfinite(value)) return std::nullopt;
  }
  return value;
}

}  // namespace zel::gateway
