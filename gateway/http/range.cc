#include "gateway/http/range.h"

#include <algorithm>
#include <optional>

#include "gateway/json/number_text.h"

namespace zel::gateway {

std::variant<WholeFile, ByteRange, NoSuchRange> rangeIn(std::string_view header, std::uint64_t size) {
  constexpr std::string_view kUnit = "bytes=";
  if (!header.starts_with(kUnit)) return WholeFile{};
  header.remove_prefix(kUnit.size());
  const std::size_t dash = header.find('-');
  if (dash == std::string_view::npos) return WholeFile{};
  const std::string_view from = header.substr(0, dash), to = header.substr(dash + 1);
  const auto first = numberIn<std::uint64_t>(from), last = numberIn<std::uint64_t>(to);
  if (from.empty()) {  // the last so many
    if (!last) return WholeFile{};
    const std::uint64_t length = std::min(*last, size);
    if (length == 0) return NoSuchRange{};
    return ByteRange{size - length, length};
  }
  if (!first || (!to.empty() && (!last || *last < *first))) return WholeFile{};
  if (*first >= size) return NoSuchRange{};
  const std::uint64_t end = to.empty() ? size - 1 : std::min(*last, size - 1);
  return ByteRange{*first, end - *first + 1};
}

}  // namespace zel::gateway
