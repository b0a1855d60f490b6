#include "outputs/h264_colour.h"

#include <ZELTarkaSDK/platform/picture_colour.h>

#include "platform/h264/h264_headers.h"

namespace zel {

VideoColour colourOfPictures(std::span<const std::uint8_t> sps) {
  const auto sequence = platform::parseH264Sequence(sps);
  if (!sequence) return {};
  const platform::H264Colour& told = sequence->colour;
  const auto colour = platform::completed({platform::colourMatrixOf(told.matrix), told.primaries, told.transfer});
  const auto matrix = static_cast<std::uint8_t>(colour.matrix);
  return {told.fullRange, colour.primaries, colour.transfer, platform::isTold(told.matrix) ? told.matrix : matrix};
}

}  // namespace zel
