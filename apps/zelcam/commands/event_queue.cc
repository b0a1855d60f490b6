#include "apps/zelcam/commands/event_queue.h"

#include <new>
#include <string>
#include <utility>

namespace zel::app {

bool EventQueue::put(std::int64_t type, const std::optional<ZELMessageFields>& value) {
  const std::size_t bytes = bytesOf(value);
  const MutexLock lock(mutex_);
  if (events_.size() < kMost && bytes <= kMostBytes - bytes_) {
    try {
      events_.push_back({type, value});
      bytes_ += bytes;
      return true;
    } catch (const std::bad_alloc&) {
      // It is dropped, as one too many.
    }
  }
  ++dropped_;
  return false;
}

std::optional<EventQueue::Event> EventQueue::take() {
  const MutexLock lock(mutex_);
  if (events_.empty()) return std::nullopt;
  std::optional<Event> oldest(std::move(events_.front()));
  events_.pop_front();
  bytes_ -= bytesOf(oldest->value);
  return oldest;
}

bool EventQueue::empty() const {
  const MutexLock lock(mutex_);
  return events_.empty();
}

std::uint64_t EventQueue::dropped() const {
  const MutexLock lock(mutex_);
  return dropped_;
}

std::size_t EventQueue::bytesOf(const std::optional<ZELMessageFields>& value) {
  std::size_t bytes = 0;
  if (!value) return bytes;
  for (const auto& [key, field] : value->all()) {
    if (const auto* text = std::get_if<std::string>(&field)) bytes += text->size();
    if (const auto* data = std::get_if<ZELData>(&field)) bytes += data->size();
  }
  return bytes;
}

}  // namespace zel::app
