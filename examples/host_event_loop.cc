// Runs the main queue inside the host's own poll() loop. Each line of standard input requests the battery level.

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <mutex>
#include <utility>
#include <vector>

#include "connect.h"

// Tasks for the host's loop, and a file descriptor that is readable while there are any.
class HostQueue {
 public:
  void post(std::function<void()> task) {  // any thread
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
    eventfd_write(descriptor, 1);
  }
  void run() {
    std::unique_lock lock(mutex_);
    eventfd_t count = 0;
    eventfd_read(descriptor, &count);
    const auto due = std::exchange(tasks_, {});
    lock.unlock();
    for (const auto& task : due) task();
  }
  const int descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);

 private:
  std::mutex mutex_;
  std::vector<std::function<void()>> tasks_;
};

int main() {
  HostQueue queue;  // outlives the platform, whose threads post
  const auto platform = makePlatform();
  if (!platform) return 1;
  platform->setMainQueueExecutor([&](auto task) { queue.post(std::move(task)); });
  zel::CameraStack stack(platform->ports());
  const auto watch = stack.accessory().observeStatus(
      [](std::uint64_t status) { std::cout << "status " + std::to_string(status) << std::endl; });
  if (!stack.accessory().openCamera()) return std::cerr << "no camera is attached\n", 1;
  const auto tell = [](const auto& error, std::uint8_t, std::uint8_t level) {
    std::cout << (error ? "no answer" : "battery " + std::to_string(level) + " %") << std::endl;
  };
  pollfd sources[] = {{STDIN_FILENO, POLLIN, 0}, {queue.descriptor, POLLIN, 0}};
  while (poll(sources, 2, -1) > 0) {
    if (sources[1].revents != 0) queue.run();
    if (sources[0].revents == 0) continue;
    char typed = 0;
    if (read(STDIN_FILENO, &typed, 1) != 1) return 0;
    if (typed == '\n') stack.ucd().msgReqBatteryWithRebackBlock(tell);
  }
}
