#pragma once

#include <cstdint>
#include <mutex>
#include <vector>

namespace zel::python {

// Tells an event loop which calls have news: a descriptor that can be read as long as there are any.
//
// Thread: any thread, without the interpreter's lock.
class Wakeup {
 public:
  // Errors: isUsable() is false where the system has no descriptor left.
  Wakeup();
  ~Wakeup();
  Wakeup(const Wakeup&) = delete;
  Wakeup& operator=(const Wakeup&) = delete;

  bool isUsable() const { return descriptor_ >= 0; }
  int descriptor() const { return descriptor_; }
  void tell(std::uint64_t call);
  // The calls that were told since the last time.
  std::vector<std::uint64_t> drain();

 private:
  const int descriptor_;
  std::mutex mutex_;
  std::vector<std::uint64_t> calls_;
};

}  // namespace zel::python
