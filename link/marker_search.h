#pragma once

#include <cstddef>
#include <optional>

#include "base/wire.h"

namespace zel {

// Where the synchronisation marker first stands in the bytes, nullopt where it does not.
std::optional<std::size_t> findMarker(ByteView bytes);

}  // namespace zel
