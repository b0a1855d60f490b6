#include "link/write_queue.h"

namespace zel {
namespace {

constexpr std::size_t kKeptBytes = 1024 * 1024;  // larger memory, after an upload, is freed

}  // namespace

void WriteQueue::removeFirst(std::size_t count) {
  taken_ += count;
  if (taken_ == bytes_.size()) {
    taken_ = 0;
    bytes_.clear();
    if (bytes_.capacity() > kKeptBytes) bytes_ = Bytes();
  } else if (taken_ > bytes_.size() / 2) {
    bytes_.erase(bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(taken_));
    taken_ = 0;
  }
}

}  // namespace zel
