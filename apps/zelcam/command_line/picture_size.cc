#include "apps/zelcam/command_line/picture_size.h"

#include "gateway/json/number_text.h"

namespace zel::app {

using gateway::numberIn;

std::optional<PictureSize> pictureSizeIn(std::string_view text) {
  const std::size_t cross = text.find('x');
  if (cross == std::string_view::npos) return std::nullopt;
  const auto width = numberIn<std::int32_t>(text.substr(0, cross));
  const auto height = numberIn<std::int32_t>(text.substr(cross + 1));
  const auto fits = [](const auto& side) {
    return side && *side >= 2 && *side <= kLargestPictureSide && *side % 2 == 0;
  };
  if (!fits(width) || !fits(height)) return std::nullopt;
  return PictureSize{*width, *height};
}

}  // namespace zel::app
