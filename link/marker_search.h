#pragma once

#include <cstddef>
#include <optional>

#include "base/wire.h"

namespace zel {

// The position of the first synchronisation marker; nullopt without one.
std::optional<std::size_t> findMarker(ByteView bytes);

}  // namespace zel
