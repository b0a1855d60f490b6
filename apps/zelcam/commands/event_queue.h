#pragma once

#include <ZELTarkaSDK/ZELMessageFields.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>

#include "base/mutex.h"

namespace zel::app {

// Events that wait to be shown. A camera may send them faster than any terminal takes them: what comes when so many
// wait is dropped, and counted.
// Thread: any thread.
class EventQueue {
 public:
  struct Event {
    std::int64_t type = 0;
    std::optional<ZELMessageFields> value;
  };

  static constexpr std::size_t kMost = 1000;
  static constexpr std::size_t kMostBytes = std::size_t{16} << 20;  // of text and bytes in their values

  // Returns false where it was dropped.
  // Errors: none; an event for which there is no memory is dropped.
  bool put(std::int64_t type, const std::optional<ZELMessageFields>& value);

  // The oldest. Nothing when there is none.
  std::optional<Event> take();

  bool empty() const;
  std::uint64_t dropped() const;

 private:
  static std::size_t bytesOf(const std::optional<ZELMessageFields>& value);

  mutable Mutex mutex_;
  std::deque<Event> events_ ZEL_GUARDED_BY(mutex_);
  std::size_t bytes_ ZEL_GUARDED_BY(mutex_) = 0;
  std::uint64_t dropped_ ZEL_GUARDED_BY(mutex_) = 0;
};

}  // namespace zel::app
