#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

namespace zel::platform {

// Calls take(unit) with each unit of a stream, from its header byte to before the next start code of three or four
// bytes. Bytes before the first start code and empty units are skipped.
template <class Take>
void forEachUnit(std::span<std::uint8_t> stream, const Take& take) {
  constexpr std::array<std::uint8_t, 3> kCode{0, 0, 1};
  auto at = std::search(stream.begin(), stream.end(), kCode.begin(), kCode.end());
  while (at != stream.end()) {
    const auto begin = at + static_cast<std::ptrdiff_t>(kCode.size());
    at = std::search(begin, stream.end(), kCode.begin(), kCode.end());
    auto end = at;
    while (end != begin && *(end - 1) == 0) --end;  // a unit never ends with a zero
    if (end != begin)
      take(stream.subspan(static_cast<std::size_t>(begin - stream.begin()), static_cast<std::size_t>(end - begin)));
  }
}

}  // namespace zel::platform
