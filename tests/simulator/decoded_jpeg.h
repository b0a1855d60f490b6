#pragma once

#include <turbojpeg.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "simulator/picture.h"

namespace zel::simulator {

// Nothing for bytes that are not a complete JPEG file.
inline std::optional<Picture> decodeJpeg(std::span<const std::uint8_t> file) {
  const std::unique_ptr<void, decltype(&tjDestroy)> decoder(tjInitDecompress(), tjDestroy);
  int width = 0, height = 0, subsampling = 0, colours = 0;
  if (!decoder || file.empty() ||
      tjDecompressHeader3(decoder.get(), file.data(), file.size(), &width, &height, &subsampling, &colours) != 0)
    return std::nullopt;
  Picture picture = blackPicture(width, height);
  if (tjDecompress2(decoder.get(), file.data(), file.size(), picture.rgb.data(), width, 0, height, TJPF_RGB, 0) != 0)
    return std::nullopt;
  return picture;
}

}  // namespace zel::simulator
