#pragma once

#include <memory>

#include "platform/accessory.h"

namespace zel::platform {

// A session over one open descriptor: a stream socket, or a character device. The descriptor is taken over and made
// non-blocking. Input and output watch it separately, through a duplicate.
// Errors: null when the descriptor cannot be duplicated; it is closed then.
std::unique_ptr<AccessorySession> makeDescriptorSession(int descriptor);

}  // namespace zel::platform
