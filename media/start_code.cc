#include "media/start_code.h"

#include <algorithm>
#include <cstring>

namespace zel {
namespace {

constexpr std::size_t kAlignment = 64;  // a cache line, so that no load straddles two
constexpr std::ptrdiff_t kBlock = 256;

// Written so that compilers make vector code of it: a load, a compare and an or for each vector.
bool hasZeroWord(const std::uint8_t* block) {
  std::uint16_t zeros = 0;
  for (std::ptrdiff_t at = 0; at < kBlock; at += 2) {
    std::uint16_t word = 0;
    std::memcpy(&word, block + at, sizeof(word));
    zeros = static_cast<std::uint16_t>(zeros | (word == 0 ? 0xFFFF : 0));
  }
  return zeros != 0;
}

const std::uint8_t* findByByte(const std::uint8_t* at, const std::uint8_t* end) {
  while (at < end && !isStartCode(at)) ++at;
  return at;
}

const std::uint8_t* aligned(const std::uint8_t* at, const std::uint8_t* end) {
  const std::size_t past = reinterpret_cast<std::uintptr_t>(at) % kAlignment;
  const std::size_t missing = past == 0 ? 0 : kAlignment - past;
  return at + std::min(static_cast<std::ptrdiff_t>(missing), end - at);
}

}  // namespace

// Three zeros in a row always hold a zero word of 16 bits at an even distance from any place. So a block without such a
// word holds no start code but one that begins at its last byte, whose word belongs to the next block.
const std::uint8_t* findStartCode(const std::uint8_t* first, const std::uint8_t* end) {
  if (first >= end) return end;
  const std::uint8_t* block = aligned(first, end);
  if (const std::uint8_t* found = findByByte(first, block); found < block) return found;
  for (; end - block >= kBlock; block += kBlock) {
    if (!hasZeroWord(block)) continue;
    const std::uint8_t* const from = block > first ? block - 1 : block;
    const std::uint8_t* const found = findByByte(from, block + kBlock);
    if (found < block + kBlock) return found;
  }
  return findByByte(block > first ? block - 1 : block, end);
}

}  // namespace zel
