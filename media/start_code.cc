#include "media/start_code.h"

#include <algorithm>
#include <cstring>

namespace zel {
namespace {

constexpr std::size_t kAlignment = 64;   // a cache line, so that no load straddles two
constexpr std::ptrdiff_t kLook = 256;    // bytes looked at one by one where a zero word was seen
constexpr std::ptrdiff_t kCopied = 256;  // bytes of a block that is copied too

// The first block that contains a 16-bit zero word, or the position where less than a block is left.
using Skip = const std::uint8_t* (*)(const std::uint8_t* block, const std::uint8_t* end);
// The same; the blocks up to and including that one are copied.
using Copy = const std::uint8_t* (*)(const std::uint8_t* block, const std::uint8_t* end, std::uint8_t* to);

// Written so that compilers vectorise it: a load and a minimum for each vector, and a store when it copies. Not
// std::memcpy(): with _FORTIFY_SOURCE GCC sees a call in its place until it is too late for vectors.
template <std::ptrdiff_t kBlock, bool kCopies>
[[gnu::always_inline]] inline const std::uint8_t* passBlocks(const std::uint8_t* __restrict block,
                                                             const std::uint8_t* end, std::uint8_t* __restrict to) {
  for (; end - block >= kBlock; block += kBlock) {
    std::uint16_t least = 0xFFFF;
    for (std::ptrdiff_t at = 0; at < kBlock; at += 2) {
      std::uint16_t word = 0;
      __builtin_memcpy(&word, block + at, sizeof(word));
      if constexpr (kCopies) __builtin_memcpy(to + at, &word, sizeof(word));
      least = std::min(least, word);
    }
    if (least == 0) break;
    if constexpr (kCopies) to += kBlock;
  }
  return block;
}

const std::uint8_t* skipNarrow(const std::uint8_t* block, const std::uint8_t* end) {
  return passBlocks<256, false>(block, end, nullptr);
}
const std::uint8_t* copyNarrow(const std::uint8_t* block, const std::uint8_t* end, std::uint8_t* to) {
  return passBlocks<kCopied, true>(block, end, to);
}

#if defined(__x86_64__)
[[gnu::target("avx2")]] const std::uint8_t* skipWide(const std::uint8_t* block, const std::uint8_t* end) {
  return passBlocks<512, false>(block, end, nullptr);
}
[[gnu::target("avx2")]] const std::uint8_t* copyWide(const std::uint8_t* block, const std::uint8_t* end,
                                                     std::uint8_t* to) {
  return passBlocks<kCopied, true>(block, end, to);
}

bool isWide() { return __builtin_cpu_supports("avx2"); }
Skip widestSkip() { return isWide() ? skipWide : skipNarrow; }
Copy widestCopy() { return isWide() ? copyWide : copyNarrow; }
#else
Skip widestSkip() { return skipNarrow; }
Copy widestCopy() { return copyNarrow; }
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

// Three zero bytes in a row always contain a 16-bit zero word at an even offset. So a block without such a word
// contains no start code, except one that begins at its last byte, whose zero word is in the next block.
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

const std::uint8_t* copyToStartCode(const std::uint8_t* first, const std::uint8_t* end, std::uint8_t* to) {
  static const Copy copy = widestCopy();
  const std::uint8_t* block = first;
  while (block < end) {
    block = copy(block, end, to + (block - first));
    const std::uint8_t* const stop = block + std::min(kCopied, end - block);
    if (stop - block < kCopied) std::memcpy(to + (block - first), block, static_cast<std::size_t>(stop - block));
    const std::uint8_t* const found = findByByte(block > first ? block - 1 : block, stop);
    if (found < stop) return found;
    block = stop;
  }
  return end;
}

}  // namespace zel
