#pragma once

#include <cstdint>
#include <random>

#include "simulator/faults.h"
#include "simulator/wire.h"

namespace zel::simulator {

// The body of a reply after the faults that change it. code: the request's.
Bytes replyAfterFaults(const Faults& faults, std::uint16_t code, Bytes body, std::mt19937_64& random);

}  // namespace zel::simulator
