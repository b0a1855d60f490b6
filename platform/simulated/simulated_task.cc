#include "platform/simulated/simulated_task.h"

#include <utility>

namespace zel::platform {

bool SimulatedTask::isReady(double now) {
  if (condition_ && condition_()) {
    condition_ = nullptr;
    wakesAt_ = now;
  }
  return wakesAt_ <= now;
}

void SimulatedTask::resume() {
  if (!thread_.joinable()) thread_ = std::thread([self = shared_from_this()] { self->run(); });
  go_.release();
  stopped_.acquire();
  if (ended_) thread_.join();
}

void SimulatedTask::abandon() {
  if (thread_.joinable()) thread_.detach();
}

void SimulatedTask::run() {
  go_.acquire();
  std::exchange(task_, nullptr)();
  ended_ = true;
  stopped_.release();
}

void SimulatedTask::sleepUntil(double time) {
  wakesAt_ = time;
  yield();
}

void SimulatedTask::waitUntil(std::function<bool()> condition, double deadline) {
  wakesAt_ = deadline;
  condition_ = std::move(condition);
  yield();
  condition_ = nullptr;
}

void SimulatedTask::yield() {
  stopped_.release();
  go_.acquire();
}

}  // namespace zel::platform
