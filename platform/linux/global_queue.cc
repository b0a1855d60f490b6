#include "platform/linux/global_queue.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace zel::platform {
namespace {

constexpr std::chrono::seconds kIdle{5};  // an idle thread retires after that long

}  // namespace

struct GlobalQueue::State {
  std::mutex mutex;
  std::condition_variable ready;
  std::deque<Task> tasks;
  std::size_t idle = 0;
  bool closed = false;
};

GlobalQueue::GlobalQueue() : state_(std::make_shared<State>()) {}

GlobalQueue::~GlobalQueue() {
  const std::lock_guard lock(state_->mutex);
  state_->closed = true;
  state_->ready.notify_all();
}

void GlobalQueue::post(Task task) {
  const std::lock_guard lock(state_->mutex);
  state_->tasks.push_back(std::move(task));
  if (state_->tasks.size() <= state_->idle) {
    state_->ready.notify_one();
  } else {
    std::thread([state = state_] { work(state); }).detach();
  }
}

void GlobalQueue::work(const std::shared_ptr<State>& state) {
  std::unique_lock lock(state->mutex);
  for (;;) {
    if (!state->tasks.empty()) {
      Task task = std::move(state->tasks.front());
      state->tasks.pop_front();
      lock.unlock();
      task();
      task = nullptr;
      lock.lock();
      continue;
    }
    if (state->closed) return;
    ++state->idle;
    const auto woken = state->ready.wait_for(lock, kIdle);
    --state->idle;
    if (woken == std::cv_status::timeout && state->tasks.empty()) return;
  }
}

}  // namespace zel::platform
