#pragma once

#include <cstdint>
#include <optional>

#include "simulator/camera_state.h"
#include "simulator/storage.h"

namespace zel::simulator {

// The reply's body to a request that the camera answers at once out of what it knows. Bodies of a wrong length and
// requests that it does not know are refused. Nothing for the sensor updates, which have no reply.
std::optional<Bytes> answerAtOnce(CameraState& state, const Storage& storage, std::uint16_t code, const Bytes& body);

// Whether the reply to a request begins with a flag.
bool hasFlag(std::uint16_t code);

// The body by which a request is refused: a flag of 0. Replies without a flag are refused by an empty body.
Bytes refusal(std::uint16_t code);

}  // namespace zel::simulator
