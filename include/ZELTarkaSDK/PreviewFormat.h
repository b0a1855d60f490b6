#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>

namespace zel {

// What a preview resolution code stands for.
// Units: pixels; pictures a second.
struct PreviewFormat {
  std::int32_t width, height, fps;
  bool operator==(const PreviewFormat&) const = default;
};

// The formats of the preview, by their codes: each size with each rate.
inline constexpr std::array<PreviewFormat, 16> kPreviewFormats = [] {
  constexpr std::int32_t kSizes[][2] = {{1440, 720}, {2160, 1080}, {2560, 1280}, {3040, 1520}};
  constexpr std::int32_t kRates[] = {15, 20, 25, 30};
  std::array<PreviewFormat, std::size(kSizes) * std::size(kRates)> formats{};
  std::size_t code = 0;
  for (const auto& size : kSizes) {
    for (const std::int32_t rate : kRates) formats[code++] = {size[0], size[1], rate};
  }
  return formats;
}();

// The format of a code; nothing for a code that is not known here.
constexpr std::optional<PreviewFormat> previewFormat(std::uint64_t code) {
  if (code >= kPreviewFormats.size()) return std::nullopt;
  return kPreviewFormats[static_cast<std::size_t>(code)];
}

// The code of a format, as msgCmdStartVideoWithVideoRes takes it. One that the camera does not have does not compile.
consteval std::uint8_t previewCode(const PreviewFormat& format) {
  std::uint8_t code = 0;
  while (kPreviewFormats.at(code) != format) ++code;
  return code;
}

// The format that asks least of camera and host at the highest rate.
inline constexpr std::uint8_t kSmallestPreview = previewCode({1440, 720, 30});

}  // namespace zel
