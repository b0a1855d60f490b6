#pragma once

#include <cstdint>
#include <optional>

#include "simulator/camera_state.h"
#include "simulator/storage.h"

namespace zel::simulator {

// The body of the reply to a request that is answered at once from the camera's state. Refuses unknown requests and
// bodies of the wrong length. Nothing for sensor updates, which have no reply.
std::optional<Bytes> answerAtOnce(CameraState& state, const Storage& storage, std::uint16_t code, const Bytes& body);

// The body of a reply that is only a flag.
inline Bytes flag(bool done) { return {static_cast<std::uint8_t>(done)}; }

// Whether the reply to a request begins with a flag.
bool hasFlag(std::uint16_t code);

// The body of a refusal: flag 0, or an empty body if the reply has no flag.
Bytes refusal(std::uint16_t code);

}  // namespace zel::simulator
