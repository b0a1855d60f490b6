#pragma once

#include <ZELTarkaSDK/Result.h>
#include <ZELTarkaSDK/ZELError.h>

#include <memory>
#include <string_view>
#include <variant>

#include "gateway/cameras/cameras.h"
#include "gateway/http/response.h"

namespace zel::gateway {

// How a call on a camera failed, as an answer: 502 where the camera refused, 503 where it cannot be reached or was
// lost, 504 without an answer in time, 422 for a call that is wrong; with the camera's own domain and code where it
// gave some.
Response cameraProblem(std::string_view what, const CameraError& error, double seconds);
Response cameraProblem(std::string_view what, const ZELError& error);

// The camera of that serial number, ready to be asked; or 404, or 503 with its status.
std::variant<std::shared_ptr<HeldCamera>, Response> reachable(const Cameras& cameras, std::string_view serialNumber);
// The same, whether or not it can be asked: or 404.
std::variant<std::shared_ptr<HeldCamera>, Response> known(const Cameras& cameras, std::string_view serialNumber);

}  // namespace zel::gateway
