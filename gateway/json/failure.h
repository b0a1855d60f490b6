#pragma once

#include <ZELTarkaSDK/Result.h>
#include <ZELTarkaSDK/ZELError.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace zel::gateway {

// How a call on a camera failed, for programs and people.
struct Failure {
  enum class Kind {
    refused,    // the camera refused, or something failed; its firmware may be too old
    wrong,      // the call itself was wrong
    lost,       // there is no link, or it went down
    noAnswer,   // none within the time limit
    cancelled,  // by who asked
  };

  Kind kind = Kind::refused;
  std::string message;            // a sentence
  std::optional<ZELError> error;  // the interface's own, where there is one
};

// what: the name of what failed. seconds: the time limit.
Failure failureOf(std::string_view what, const CameraError& error, double seconds);
Failure failureOf(std::string_view what, const ZELError& error);

// The exit status of a command that fails so.
int exitStatusOf(Failure::Kind kind);

// A failure as an object: the code and domain of the camera's error if any, else the exit status and "zelcam".
nlohmann::ordered_json failureJson(const Failure& failure);

}  // namespace zel::gateway
