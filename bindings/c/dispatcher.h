#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

namespace zel::c {

// Callbacks that wait until a program's own loop runs them, and a descriptor that can be read as long as there are any.
//
// Thread: any thread.
class Dispatcher {
 public:
  // Errors: ZEL_PLATFORM where the system has no descriptor left.
  Dispatcher();
  ~Dispatcher();
  Dispatcher(const Dispatcher&) = delete;
  Dispatcher& operator=(const Dispatcher&) = delete;

  int descriptor() const { return descriptor_; }
  void post(std::function<void()> call);
  // Runs those that wait now.
  void run();
  // Runs all that come until isDone, which notify() has looked at again, or until the end. False at the end.
  bool runUntil(const std::function<bool()>& isDone);
  void notify();
  // Drops those that wait, and all that come.
  void close();

 private:
  bool runOne(std::unique_lock<std::mutex>& lock);
  void markEmpty();

  const int descriptor_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> calls_;
  bool isClosed_ = false;
};

}  // namespace zel::c
