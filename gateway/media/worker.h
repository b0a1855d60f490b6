#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace zel::gateway {

// A thread for what takes long: pictures, and files that are synchronised with the disk. One task at a time, in order.
//
// Thread: any thread.
class Worker {
 public:
  static constexpr std::size_t kMostWaiting = 64;

  Worker();
  // Stops.
  ~Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  // Waits for the task that runs; those that wait are dropped, and none is taken any more.
  void stop();

  // False where too many wait already, and once it is stopped.
  bool post(std::function<void()> task);

 private:
  void run();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> tasks_;
  bool isStopping_ = false;
  std::thread thread_;
};

}  // namespace zel::gateway
