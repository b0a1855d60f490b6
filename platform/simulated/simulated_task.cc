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
}

void SimulatedTask::abandon() {
  if (thread_.joinable()) thread_.detach();
}

void SimulatedTask::run() {
  go_.acquire();
  std::exchange(task_, nullptr)();
  ended_ = true;
  schedulersTurn_.release();
}

void SimulatedTask::waitUntil(std::function<bool()> condition, double deadline) {
  wakesAt_ = deadline;
  condition_ = std::move(condition);
}

}  // namespace zel::platform
