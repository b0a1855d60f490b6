#include "media/start_code.h"

#include <algorithm>
#include <cstring>

namespace zel {
namespace {

constexpr std::size_t kAlignment = 64;  // a cache line, so that no load straddles two
constexpr std::ptrdiff_t kLook = 256;   // bytes looked at one by one where a zero word was seen

using Skip = const std::uint8_t* (*)(const std::uint8_t* block, const std::uint8_t* end);

// The first of the blocks that holds a zero word of 16 bits, or the place where less than a block is left. Written so
// that compilers make vector code of it: a load, a compare and an or for each vector.
template <std::ptrdiff_t kBlock>
[[gnu::always_inline]] inline const std::uint8_t* skipBlocks(const std::uint8_t* block, const std::uint8_t* end) {
  for (; end - block >= kBlock; block += kBlock) {
    std::uint16_t zeros = 0;
    for (std::ptrdiff_t at = 0; at < kBlock; at += 2) {
      std::uint16_t word = 0;
      std::memcpy(&word, block + at, sizeof(word));
      zeros = static_cast<std::uint16_t>(zeros | (word == 0 ? 0xFFFF : 0));
    }
    if (zeros != 0) break;
  }
  return block;
}

const std::uint8_t* skipNarrow(const std::uint8_t* block, const std::uint8_t* end) {
  return skipBlocks<256>(block, end);
}

#if defined(__x86_64__)
[[gnu::target("avx2")]] const std::uint8_t* skipWide(const std::uint8_t* block, const std::uint8_t* end) {
  return skipBlocks<512>(block, end);
}

Skip widestSkip() { return __builtin_cpu_supports("avx2") ? skipWide : skipNarrow; }
#else
Skip widestSkip() { return skipNarrow; }
#endif

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
  static const Skip skip = widestSkip();
  if (first >= end) return end;
  const std::uint8_t* block = aligned(first, end);
  if (const std::uint8_t* found = findByByte(first, block); found < block) return found;
  while (block < end) {
    block = skip(block, end);
    const std::uint8_t* const stop = block + std::min(kLook, end - block);
    const std::uint8_t* const found = findByByte(block > first ? block - 1 : block, stop);
    if (found < stop) return found;
    block = stop;
  }
  return end;
}

}  // namespace zel
