#pragma once

#include <cstdint>

#include "simulator/card.h"
#include "simulator/storage.h"

namespace zel::simulator {

inline constexpr std::uint16_t kCreateTextFile = 0x402D;

// The result of creating a text file, as sent to the host.
enum class TextFileResult : std::uint8_t { done = 0, malformed = 1, badName = 2, cardFull = 3, notWritten = 4 };

// Executes the request and returns the reply's body: a flag and the result.
//
// | 0  | u8 x 32 | file name              |
// | 32 | u16     | size of what follows   |
// | 34 | bytes   | the text               |
Bytes createTextFile(Card& card, const Storage& storage, const Bytes& request);

}  // namespace zel::simulator
