#include "gateway/api/call_problem.h"

#include <fmt/format.h>

#include <string>

#include "gateway/json/failure.h"
#include "gateway/json/printable.h"

namespace zel::gateway {
namespace {

using Reason = CameraError::Reason;

int statusOf(Failure::Kind kind) {
  switch (kind) {
    case Failure::Kind::refused:
      return 502;
    case Failure::Kind::wrong:
      return 422;
    case Failure::Kind::lost:
    case Failure::Kind::cancelled:
      return 503;
    case Failure::Kind::noAnswer:
      return 504;
  }
  return 500;
}

Response problemOf(const Failure& failure) {
  const int status = statusOf(failure.kind);
  if (!failure.error) return problem(status, failure.message);
  return problem(status, failure.message, {{"domain", failure.error->domain}, {"code", failure.error->code}});
}

}  // namespace

Response cameraProblem(std::string_view what, const CameraError& error, double seconds) {
  switch (error.reason) {
    case Reason::noCamera:
    case Reason::inUse:
    case Reason::silent:
    case Reason::closed:
      return problem(503, error.message);
    case Reason::platform:
      return problem(500, error.message);
    default:
      return problemOf(failureOf(what, error, seconds));
  }
}

Response cameraProblem(std::string_view what, const ZELError& error) { return problemOf(failureOf(what, error)); }

std::variant<std::shared_ptr<HeldCamera>, Response> known(const Cameras& cameras, std::string_view serialNumber) {
  if (auto camera = cameras.find(serialNumber)) return camera;
  return problem(404, fmt::format("there is no camera {}", printable(serialNumber)));
}

std::variant<std::shared_ptr<HeldCamera>, Response> reachable(const Cameras& cameras, std::string_view serialNumber) {
  auto found = known(cameras, serialNumber);
  const auto* const camera = std::get_if<std::shared_ptr<HeldCamera>>(&found);
  if (camera == nullptr) return found;
  const CameraSummary summary = (*camera)->summary();
  if (summary.status == CameraStatus::streaming) return found;
  if (summary.user) return problem(503, *summary.user);
  return problem(503, fmt::format("the camera {} is {}", printable(serialNumber), toString(summary.status)));
}

}  // namespace zel::gateway
