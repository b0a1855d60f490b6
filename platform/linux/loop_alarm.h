#pragma once

#include <array>
#include <cstdint>
#include <functional>

#include "platform/linux/asio.h"

namespace zel::platform {

// Wakes a run loop from other threads, without holding a lock: a loop that wakes at once on the same processor would
// only sleep again on that lock.
class LoopAlarm {
 public:
  // `call` runs on the thread that runs the context, after one or more calls of ring().
  LoopAlarm(asio::io_context& context, std::function<void()> call);
  LoopAlarm(const LoopAlarm&) = delete;
  LoopAlarm& operator=(const LoopAlarm&) = delete;

  // Thread: any thread.
  void ring();

 private:
  void wait();

  asio::posix::stream_descriptor event_;
  std::uint64_t rings_ = 0;  // buffer for the kernel's count; never used
  const std::function<void()> call_;
};

}  // namespace zel::platform
