#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace zel {

struct PreviewFormat {
  std::int32_t width, height, fps;
  bool operator==(const PreviewFormat&) const = default;
};

// The format of a preview resolution code: the size by code / 4, the rate by code % 4.
// Codes from 16 on are unknown: nullopt.
constexpr std::optional<PreviewFormat> previewFormat(std::uint64_t code) {
  constexpr std::int32_t kSizes[][2] = {{1440, 720}, {2160, 1080}, {2560, 1280}, {3040, 1520}};
  constexpr std::int32_t kRates[] = {15, 20, 25, 30};
  if (code >= 16) return std::nullopt;
  const auto& size = kSizes[code / 4];
  return PreviewFormat{size[0], size[1], kRates[code % 4]};
}

}  // namespace zel
