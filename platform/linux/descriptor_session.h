#pragma once

#include <memory>

#include "platform/accessory.h"

namespace zel::platform {

// A session over one descriptor: a stream socket or a character device. Each direction has its own duplicate, so that
// either can be closed, and scheduled on a run loop, without the other.
// Owner:  takes the descriptor, and makes it non-blocking, also for those that share its description.
// Errors: null when the host has no descriptor left; the descriptor is closed then.
std::unique_ptr<AccessorySession> makeDescriptorSession(int descriptor);

}  // namespace zel::platform
