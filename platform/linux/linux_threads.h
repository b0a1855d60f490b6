#pragma once

#include <memory>
#include <string>

#include "platform/linux/linux_run_loop.h"
#include "platform/run_loop.h"

namespace zel::platform {

class OrphanThreads;

// Starts threads, and keeps those whose handle was destroyed on themselves until they have ended.
class LinuxThreads final : public Threads {
 public:
  explicit LinuxThreads(std::shared_ptr<LinuxRunLoop> mainRunLoop);
  ~LinuxThreads() override;

  // Waits for the threads that lost their handle.
  void waitForOrphans();

  std::unique_ptr<Thread> start(std::string name, ThreadBody body) override;
  RunLoop& currentRunLoop() override;

 private:
  const std::shared_ptr<LinuxRunLoop> mainRunLoop_;
  const std::shared_ptr<OrphanThreads> orphans_;
};

}  // namespace zel::platform
