#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

namespace zel::test {

using Bytes = std::vector<std::uint8_t>;

// Bytes as a test writes them: numbers from 0 to 255.
inline Bytes bytes(std::initializer_list<int> values) {
  Bytes result;
  for (const int value : values) result.push_back(static_cast<std::uint8_t>(value));
  return result;
}

inline Bytes text(std::string_view characters) { return Bytes(characters.begin(), characters.end()); }

inline Bytes repeated(std::size_t count, int value) { return Bytes(count, static_cast<std::uint8_t>(value)); }

template <class... More>
Bytes join(Bytes first, const More&... more) {
  (first.insert(first.end(), more.begin(), more.end()), ...);
  return first;
}

inline const Bytes kMarker = bytes({0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA});

}  // namespace zel::test
