#pragma once

#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace zel::test {

inline constexpr std::chrono::seconds kLimit{90};  // generous: only a test that fails waits that long

// A list that threads add to and a test waits on.
template <class Value>
class Recorded {
 public:
  void add(Value value) {
    const std::lock_guard lock(mutex_);
    values_.push_back(std::move(value));
    changed_.notify_all();
  }

  // All values, as soon as there are `count`.
  std::vector<Value> wait(std::size_t count) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, kLimit, [&] { return values_.size() >= count; });
    return values_;
  }

  std::vector<Value> now() {
    const std::lock_guard lock(mutex_);
    return values_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<Value> values_;
};

// Something that happens once.
class Event {
 public:
  void set() { happened_.add(true); }
  bool wait() { return !happened_.wait(1).empty(); }
  bool happened() { return !happened_.now().empty(); }

 private:
  Recorded<bool> happened_;
};

// For what only the kernel tells, such as a thread that is about to be gone: looks until it is so.
inline bool eventually(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + kLimit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::yield();
  }
  return true;
}

// What the process has open, and its threads.
inline std::size_t entriesOf(const char* folder) {
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) count += entry.path().empty() ? 0U : 1U;
  return count;
}
inline std::size_t descriptorCount() { return entriesOf("/proc/self/fd"); }
inline std::size_t threadCount() {
  std::thread([] {}).join();  // with the first thread, a sanitizer may start one of its own
  return entriesOf("/proc/self/task");
}
// Units:  KiB in memory.
inline std::size_t residentKilobytes() {
  std::size_t pages = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) / 1024;
}

}  // namespace zel::test
