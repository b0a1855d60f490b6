#include "gateway/feed/unit_list.h"

#include <cstddef>
#include <cstring>

namespace zel::gateway {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kCode = 3;  // 00 00 01; the zero before it belongs to no unit

// The position of the next start code at or after `from`, or the size. Looks for the 1, which is far rarer in coded
// pictures than zeros are in their padding.
std::size_t nextCode(Bytes bytes, std::size_t from) {
  for (std::size_t at = from + kCode - 1; at < bytes.size(); ++at) {
    const void* const found = std::memchr(bytes.data() + at, 1, bytes.size() - at);
    if (found == nullptr) break;
    at = static_cast<std::size_t>(static_cast<const std::uint8_t*>(found) - bytes.data());
    if (bytes[at - 1] == 0 && bytes[at - 2] == 0) return at - 2;
  }
  return bytes.size();
}

Bytes withoutTrailingZeros(Bytes unit) {
  while (!unit.empty() && unit.back() == 0) unit = unit.first(unit.size() - 1);
  return unit;
}

}  // namespace

std::vector<Bytes> unitsOf(Bytes picture) {
  std::vector<Bytes> units;
  for (std::size_t code = nextCode(picture, 0); code < picture.size();) {
    const std::size_t begin = code + kCode;
    code = nextCode(picture, begin);
    const Bytes unit = withoutTrailingZeros(picture.subspan(begin, code - begin));
    if (!unit.empty()) units.push_back(unit);
  }
  return units;
}

}  // namespace zel::gateway
