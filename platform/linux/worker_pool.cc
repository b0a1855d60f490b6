#include "platform/linux/worker_pool.h"

#include <pthread.h>

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <new>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include "base/mutex.h"
#include "platform/linux/signal_mask.h"

namespace zel::platform {

// Shared by the pool and its threads, which may outlive it.
struct WorkerPool::State {
  explicit State(std::chrono::milliseconds time) : idleTime(time) {}

  // Returns whether a thread must be added for the task; that thread counts as idle from now on.
  bool push(Task task) ZEL_EXCLUDES(mutex) {
    const MutexLock lock(mutex);
    tasks.push_back(std::move(task));
    wake.notify_one();
    if (idle >= tasks.size()) return false;
    ++idle;
    return true;
  }

  // Waits for a task, on a thread that counts as idle. Empty when the thread is to end.
  std::optional<Task> next() ZEL_EXCLUDES(mutex) {
    const auto retirement = std::chrono::steady_clock::now() + idleTime;
    const MutexLock lock(mutex);
    while (tasks.empty() && !closed) {
      if (wake.wait_until(mutex, retirement) == std::cv_status::timeout) break;
    }
    --idle;
    if (tasks.empty() || closed) return std::nullopt;
    return firstTask();
  }

  std::optional<Task> takeTask() ZEL_EXCLUDES(mutex) {
    const MutexLock lock(mutex);
    if (tasks.empty()) return std::nullopt;
    return firstTask();
  }

  Task firstTask() ZEL_REQUIRES(mutex) {
    Task task = std::move(tasks.front());
    tasks.pop_front();
    return task;
  }

  void changeIdle(std::ptrdiff_t change) ZEL_EXCLUDES(mutex) {
    const MutexLock lock(mutex);
    idle += static_cast<std::size_t>(change);
  }

  const std::chrono::milliseconds idleTime;
  std::condition_variable_any wake;
  Mutex mutex;
  std::deque<Task> tasks ZEL_GUARDED_BY(mutex);
  std::size_t idle ZEL_GUARDED_BY(mutex) = 0;
  bool closed ZEL_GUARDED_BY(mutex) = false;
};

WorkerPool::WorkerPool(std::chrono::milliseconds idleTime) : state_(std::make_shared<State>(idleTime)) {}

WorkerPool::~WorkerPool() {
  {
    const MutexLock lock(state_->mutex);
    state_->closed = true;
    state_->wake.notify_all();
  }
  while (state_->takeTask()) continue;  // each destroyed without the lock
}

void WorkerPool::post(Task task) {
  if (!state_->push(std::move(task))) return;
  try {
    const SignalMask noSignals;
    std::thread([state = state_] { work(*state); }).detach();
  } catch (const std::system_error&) {
    // No thread can be started: the task waits for the next free one.
    state_->changeIdle(-1);
  } catch (const std::bad_alloc&) {
    // Nor memory for one.
    state_->changeIdle(-1);
  }
}

void WorkerPool::work(State& state) {
  pthread_setname_np(pthread_self(), "zel global");
  while (auto task = state.next()) {
    (*task)();
    task.reset();  // its captures are destroyed before the thread counts as idle again
    state.changeIdle(+1);
  }
}

}  // namespace zel::platform
