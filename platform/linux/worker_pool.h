#pragma once

#include <chrono>
#include <memory>

#include <ZELTarkaSDK/platform/queues.h>

namespace zel::platform {

// The global queue. A task never waits behind another: a thread is added when none is idle, and one that has been idle
// for a while retires. Nobody ever waits for these threads, so a task may block for good and the process still exits.
// Owner:  destroying the pool lets its idle threads go; tasks that have begun are left to themselves.
class WorkerPool final : public Queue {
 public:
  explicit WorkerPool(std::chrono::milliseconds idleTime = std::chrono::seconds(5));
  ~WorkerPool() override;
  void post(Task task) override;

 private:
  struct State;
  static void work(State& state);

  const std::shared_ptr<State> state_;
};

}  // namespace zel::platform
