#include "apps/zelcam/link/lens_offset.h"

#include <ZELTarkaSDK/ZELCameraManager.h>

#include <fmt/format.h>

#include <memory>
#include <optional>
#include <tuple>

#include "apps/zelcam/link/answer.h"

namespace zel::app {

int askLensOffset(CameraLink& link, std::string_view what, std::uint8_t typeInfo, std::string& offset) {
  const auto answer = std::make_shared<Answer<std::optional<std::string>>>();
  link.stack().manager().getCameraMediaOffset(typeInfo, keepIn(answer, link.platform()));
  const int status = link.waitForAnswer(fmt::format("{}: the lens offset", what), *answer);
  offset = std::get<0>(answer->values).value_or("");
  return status;
}

}  // namespace zel::app
