#pragma once

#include <chrono>
#include <memory>

#include <ZELTarkaSDK/platform/queues.h>

namespace zel::platform {

// The global queue. A task never waits for another one: a thread is added when none is idle, and an idle thread ends
// after a while. The threads are never joined, so a task may block forever and the process still exits.
// Owner:  destroying the pool ends its idle threads; running tasks continue.
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
