#pragma once

#include <memory>

#include "platform/queues.h"

namespace zel::platform {

// A concurrent queue whose tasks may block for good: a task never waits behind another, because a thread is added where
// none is idle. Its threads are nobody's to join, so a process ends although one of them is blocked.
class GlobalQueue final : public Queue {
 public:
  GlobalQueue();
  ~GlobalQueue() override;
  void post(Task task) override;

 private:
  struct State;
  static void work(const std::shared_ptr<State>& state);
  std::shared_ptr<State> state_;
};

}  // namespace zel::platform
