#include "gateway/line/host_queue.h"

#include <algorithm>
#include <utility>

namespace zel::gateway {

void HostQueue::push(SharedBytes bytes, bool isMedia) {
  entries_.push_back({std::move(bytes), isMedia});
  sumOf(entries_.back()) += entries_.back().bytes.size() + kPerEntry;
}

void HostQueue::dropMedia() {
  const auto first = entries_.begin() + (begun_ != 0 ? 1 : 0);
  const auto kept = std::remove_if(first, entries_.end(), [](const Entry& entry) { return entry.isMedia; });
  entries_.erase(kept, entries_.end());
  media_ = begun_ != 0 && entries_.front().isMedia ? entries_.front().bytes.size() + kPerEntry : 0;
}

std::size_t HostQueue::front(std::span<ByteView> pieces) const {
  const std::size_t count = std::min(pieces.size(), entries_.size());
  for (std::size_t i = 0; i < count; ++i) pieces[i] = entries_[i].bytes.view();
  if (count != 0) pieces[0] = pieces[0].subspan(begun_);
  return count;
}

void HostQueue::written(std::size_t count) {
  begun_ += count;
  while (!entries_.empty() && begun_ >= entries_.front().bytes.size()) {
    const Entry& entry = entries_.front();
    begun_ -= entry.bytes.size();
    sumOf(entry) -= entry.bytes.size() + kPerEntry;
    entries_.pop_front();
  }
}

}  // namespace zel::gateway
