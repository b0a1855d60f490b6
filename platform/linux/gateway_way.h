#pragma once

#include <chrono>
#include <string>

#include "platform/linux/unique_descriptor.h"

namespace zel::platform {

// The way to a camera through a gateway.
struct GatewayWay {
  enum class Answer {
    none,     // no gateway answers that may be trusted, or it does not know the camera
    absent,   // a gateway has the camera, and cannot reach it now
    granted,  // the connection carries the camera's bytes
  };
  Answer answer = Answer::none;
  UniqueDescriptor connection;  // set exactly where it is granted
};

// Asks the gateways of the bus for the camera's byte stream, and waits at most `limit` for the answers. A socket of
// another user is not trusted, unless that is root.
// camera: its name on the bus.
// Thread: any thread.
GatewayWay askGateways(const std::string& busFolder, const std::string& camera, std::chrono::milliseconds limit);

}  // namespace zel::platform
