#pragma once

#include <array>
#include <cstdint>
#include <functional>

#include "platform/linux/asio.h"

namespace zel::platform {

// Wakes a run loop from other threads. It holds no lock while it does so: a loop that wakes at once, on the same
// processor, would only fall asleep again on that lock.
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
  std::uint64_t rings_ = 0;  // since it was read last; the kernel's, never looked at
  const std::function<void()> call_;
};

}  // namespace zel::platform
