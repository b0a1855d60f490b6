#include "gateway/media/worker.h"

#include <utility>

#include "base/has_memory_for.h"

namespace zel::gateway {

Worker::Worker() : thread_([this] { run(); }) {}

Worker::~Worker() { stop(); }

void Worker::stop() {
  std::deque<std::function<void()>> dropped;
  {
    const std::lock_guard lock(mutex_);
    isStopping_ = true;
    dropped.swap(tasks_);
  }
  changed_.notify_one();
  dropped.clear();
  if (thread_.joinable()) thread_.join();
}

bool Worker::post(std::function<void()> task) {
  {
    const std::lock_guard lock(mutex_);
    if (isStopping_ || tasks_.size() >= kMostWaiting) return false;
    tasks_.push_back(std::move(task));
  }
  changed_.notify_one();
  return true;
}

void Worker::run() {
  for (;;) {
    std::function<void()> task;
    {
      std::unique_lock lock(mutex_);
      while (!isStopping_ && tasks_.empty()) changed_.wait(lock);
      if (isStopping_) return;
      task = std::move(tasks_.front());
      tasks_.pop_front();
    }
    // A task that found no memory is dropped with whoever waits for it.
    (void)hasMemoryFor([&task] { task(); });
  }
}

}  // namespace zel::gateway
