#pragma once

#include <chrono>
#include <memory>
#include <string>

#include <ZELTarkaSDK/platform/run_loop.h>

#include "platform/linux/linux_run_loop.h"

namespace zel::platform {

class LiveThreads;

// Starts threads, and tracks which have not ended: a thread that destroys its own handle is not joined otherwise.
class LinuxThreads final : public Threads {
 public:
  explicit LinuxThreads(std::shared_ptr<LinuxRunLoop> mainRunLoop);
  ~LinuxThreads() override;

  // Waits for every thread that it started, but at most that long for a thread that was not told to end.
  // Errors: the name of one that still runs; empty when all have ended.
  std::string waitForEnds(std::chrono::milliseconds limit);

  std::unique_ptr<Thread> start(std::string name, ThreadBody body) override;
  RunLoop& currentRunLoop() override;

 private:
  const std::shared_ptr<LinuxRunLoop> mainRunLoop_;
  const std::shared_ptr<LiveThreads> live_;
};

}  // namespace zel::platform
