#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>

#include "platform/linux/linux_run_loop.h"
#include "platform/run_loop.h"

namespace zel::platform {

// Counts threads that have not ended, so that a platform can wait for those whose handle has gone.
class ThreadCount {
 public:
  void enter();
  void leave();
  void waitForNone();

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int count_ = 0;
};

class LinuxThreads final : public Threads {
 public:
  explicit LinuxThreads(std::shared_ptr<LinuxRunLoop> mainLoop) : mainLoop_(std::move(mainLoop)) {}
  // Waits for every thread that it started.
  ~LinuxThreads() override { count_->waitForNone(); }

  std::unique_ptr<Thread> start(std::string name, ThreadBody body) override;
  RunLoop& currentRunLoop() override;

 private:
  std::shared_ptr<LinuxRunLoop> mainLoop_;
  std::shared_ptr<ThreadCount> count_ = std::make_shared<ThreadCount>();
};

}  // namespace zel::platform
