#pragma once

#include <new>
#include <utility>

#include <ZELTarkaSDK/platform/forwarding.h>
#include <ZELTarkaSDK/platform/queues.h>

namespace zel::test {

// Another platform's queue, which may find no memory for one task.
// Thread: one.
class FullQueue final : public platform::ForwardingQueue {
 public:
  using ForwardingQueue::ForwardingQueue;

  // The task of that number among those posted from now on, counted from 1, finds none.
  void refuse(int number) { left_ = number; }

  // Tasks that were posted to it.
  int posted() const { return posted_; }

  void post(platform::Task task) override {
    ++posted_;
    if (left_ > 0 && --left_ == 0) throw std::bad_alloc();
    ForwardingQueue::post(std::move(task));
  }

 private:
  int left_ = 0, posted_ = 0;
};

class FullQueues final : public platform::Queues {
 public:
  explicit FullQueues(platform::Queues& wrapped) : main(wrapped.mainQueue()), global(wrapped.globalQueue()) {}
  platform::Queue& mainQueue() override { return main; }
  platform::Queue& globalQueue() override { return global; }

  FullQueue main, global;
};

}  // namespace zel::test
