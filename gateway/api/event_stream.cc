#include "gateway/api/event_stream.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "gateway/json/json_line.h"

namespace zel::gateway {

// One that has been read in part stays whole.
void EventStream::put(const Notice& notice) {
  std::string text = fmt::format("event: {}\ndata: {}\n\n", toString(notice.kind), jsonLine(notice.value));
  {
    const std::lock_guard lock(mutex_);
    const std::size_t first = at_ == 0 ? 0 : 1;
    while (waiting_.size() > first && (waiting_.size() >= kMost || bytes_ + text.size() > kMostBytes)) {
      bytes_ -= waiting_[first].size();
      waiting_.erase(waiting_.begin() + static_cast<std::ptrdiff_t>(first));
      ++dropped_;
    }
    bytes_ += text.size();
    waiting_.push_back(std::move(text));
  }
  ready_();
}

std::size_t EventStream::read(std::span<std::uint8_t> to) {
  const std::lock_guard lock(mutex_);
  std::size_t done = 0;
  while (done < to.size() && !waiting_.empty()) {
    const std::string& text = waiting_.front();
    const std::size_t some = std::min(to.size() - done, text.size() - at_);
    std::copy_n(text.begin() + static_cast<std::ptrdiff_t>(at_), some, to.begin() + static_cast<std::ptrdiff_t>(done));
    done += some;
    at_ += some;
    if (at_ < text.size()) break;
    bytes_ -= text.size();
    at_ = 0;
    waiting_.pop_front();
  }
  return done;
}

std::uint64_t EventStream::dropped() const {
  const std::lock_guard lock(mutex_);
  return dropped_;
}

}  // namespace zel::gateway
