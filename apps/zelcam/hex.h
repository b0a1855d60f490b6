#pragma once

#include <ZELTarkaSDK/ZELData.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zel::app {

// Bytes as lower-case hexadecimal digits, two each.
std::string hexOf(std::span<const std::uint8_t> bytes);

// The bytes that such digits, of either case, stand for; nothing where the text is anything else.
std::optional<std::vector<std::uint8_t>> bytesIn(std::string_view hex);

}  // namespace zel::app
