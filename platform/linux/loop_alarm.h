#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

#include "platform/linux/asio.h"

namespace zel::platform {

// Wakes a run loop from other threads, without holding a lock: a loop that wakes at once on the same processor would
// only sleep again on that lock. Once made it takes no memory: a loop that is deaf could not even be ended.
class LoopAlarm {
 public:
  // `call` runs on the thread that runs the context, after one or more calls of ring().
  LoopAlarm(asio::io_context& context, std::function<void()> call);
  LoopAlarm(const LoopAlarm&) = delete;
  LoopAlarm& operator=(const LoopAlarm&) = delete;

  // Thread: any thread.
  void ring();

 private:
  // The memory of the operation that is under way. There is one at a time: Asio gives it back before it calls.
  class Memory {
   public:
    void* take(std::size_t size);
    void giveBack(void* block);

   private:
    static constexpr std::size_t kBytes = 512;  // more than Asio takes for a read
    alignas(std::max_align_t) std::byte bytes_[kBytes];
    bool taken_ = false;
  };

  template <class Any>
  struct Allocator {
    using value_type = Any;
    explicit Allocator(Memory& from) : memory(&from) {}
    template <class Other>
    Allocator(const Allocator<Other>& other) : memory(other.memory) {}
    Any* allocate(std::size_t count) { return static_cast<Any*>(memory->take(count * sizeof(Any))); }
    void deallocate(Any* block, std::size_t) { memory->giveBack(block); }
    bool operator==(const Allocator&) const = default;
    Memory* memory;
  };

  // What Asio calls when the event was read.
  struct Rung {
    using allocator_type = Allocator<std::byte>;
    allocator_type get_allocator() const { return allocator_type(alarm->memory_); }
    void operator()(const std::error_code& error, std::size_t) const { alarm->rung(error); }
    LoopAlarm* alarm;
  };

  void wait();
  void rung(const std::error_code& error);

  Memory memory_;  // before the descriptor, which gives it back
  asio::posix::stream_descriptor event_;
  std::uint64_t rings_ = 0;  // buffer for the kernel's count; never used
  const std::function<void()> call_;
};

}  // namespace zel::platform
