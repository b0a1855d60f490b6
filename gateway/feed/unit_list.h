#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace zel::gateway {

// The NAL units of a picture with start codes, of four bytes or of three. Cameras put three-byte codes between the
// slices of one picture; a container that states lengths needs each unit by itself. The zeros that may follow a unit
// are left out, and so are empty units.
//
// Owner: the views are into `picture`.
std::vector<std::span<const std::uint8_t>> unitsOf(std::span<const std::uint8_t> picture);

}  // namespace zel::gateway
