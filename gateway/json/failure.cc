#include "gateway/json/failure.h"

#include <ZELTarkaSDK/WireConstants.h>

#include <fmt/format.h>

namespace zel::gateway {

using Reason = CameraError::Reason;

Failure failureOf(std::string_view what, const CameraError& error, double seconds) {
  if (error.reason == Reason::cancelled) return {Failure::Kind::cancelled, error.message, std::nullopt};
  if (error.reason == Reason::lost) return failureOf(what, zelOSStatusError(kZELErrorNotConnected));
  if (error.reason == Reason::timeLimit) {
    return {Failure::Kind::noAnswer, fmt::format("{}: the camera did not answer within {} s", what, seconds),
            std::nullopt};
  }
  if (!error.domain.empty()) return failureOf(what, {error.domain, static_cast<int>(error.code), std::nullopt});
  const auto kind = error.reason == Reason::invalid ? Failure::Kind::wrong : Failure::Kind::refused;
  return {kind, error.message, std::nullopt};
}

Failure failureOf(std::string_view what, const ZELError& error) {
  if (error.code == kZELErrorNotConnected) {
    return {Failure::Kind::lost, fmt::format("{}: the camera was lost", what), error};
  }
  const std::string_view why =
      error.code == kZELErrorOldFirmware ? "the camera's firmware is too old" : "the camera refused";
  return {Failure::Kind::refused, fmt::format("{}: {} ({} {})", what, why, error.domain, error.code), error};
}

int exitStatusOf(Failure::Kind kind) {
  switch (kind) {
    case Failure::Kind::refused:
      return 1;
    case Failure::Kind::wrong:
      return 2;
    case Failure::Kind::lost:
    case Failure::Kind::noAnswer:
      return 3;
    case Failure::Kind::cancelled:
      return 130;
  }
  return 1;
}

nlohmann::ordered_json failureJson(const Failure& failure) {
  return {{"code", failure.error ? failure.error->code : exitStatusOf(failure.kind)},
          {"domain", failure.error ? failure.error->domain : "zelcam"},
          {"message", failure.message}};
}

}  // namespace zel::gateway
