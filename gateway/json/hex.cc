#include "gateway/json/hex.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <charconv>
#include <system_error>

namespace zel::gateway {

std::string hexOf(std::span<const std::uint8_t> bytes) { return fmt::format("{:02x}", fmt::join(bytes, "")); }

std::optional<std::vector<std::uint8_t>> bytesIn(std::string_view hex) {
  if (hex.size() % 2 != 0) return std::nullopt;
  std::vector<std::uint8_t> bytes(hex.size() / 2);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const char* const pair = hex.data() + 2 * i;
    const auto [end, fault] = std::from_chars(pair, pair + 2, bytes[i], 16);
    if (fault != std::errc() || end != pair + 2) return std::nullopt;
  }
  return bytes;
}

}  // namespace zel::gateway
