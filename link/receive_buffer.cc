#include "link/receive_buffer.h"

#include <algorithm>
#include <cstring>

#include "base/has_memory_for.h"

namespace zel {
namespace {

constexpr std::size_t kSmallest = 64 * 1024;            // fits most frames and the reads of most bursts
constexpr std::size_t kKeptCapacity = 4 * 1024 * 1024;  // never freed: two full reads
constexpr std::size_t kShortRest = 1024;                // cheaper to move to the front at once than to keep in place

}  // namespace

void ReceiveBuffer::consume(std::size_t count, std::size_t awaited) {
  begin_ += count;
  awaited_ = awaited;
  if (capacity_ > std::max(kKeptCapacity, 2 * std::max(awaited, size()))) {
    shrink();
  } else if (begin_ != 0 && size() <= kShortRest) {
    moveToFront();
  }
}

// Giving memory back takes some first; where there is none, the larger block serves as well.
void ReceiveBuffer::shrink() {
  if (!hasMemoryFor([this] { reallocate(std::max(kSmallest, size())); })) moveToFront();
}

void ReceiveBuffer::clear() {
  begin_ = end_;
  consume(0, 0);
}

void ReceiveBuffer::makeRoom(std::size_t count) {
  const std::size_t needed = size() + count;
  // At most one move for each consumed frame: after that the bytes are at the front, and the buffer must grow.
  if (needed <= capacity_) return moveToFront();
  reallocate(std::max({kSmallest, needed, std::min(2 * needed, awaited_)}));
}

void ReceiveBuffer::reallocate(std::size_t capacity) {
  auto larger = std::make_unique_for_overwrite<std::uint8_t[]>(capacity);
  const std::size_t held = size();
  if (held != 0) std::memcpy(larger.get(), view().data(), held);
  storage_ = std::move(larger);
  capacity_ = capacity;
  begin_ = 0;
  end_ = held;
}

void ReceiveBuffer::moveToFront() {
  const std::size_t held = size();
  if (held != 0) std::memmove(storage_.get(), storage_.get() + begin_, held);
  begin_ = 0;
  end_ = held;
}

}  // namespace zel
