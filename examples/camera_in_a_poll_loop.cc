// A host with a poll() loop of its own, in which the camera's callbacks run. Asks three times for the battery.

#include <ZELTarkaSDK/Camera.h>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <functional>
#include <mutex>
#include <utility>

// Functions that wait for the loop, and a descriptor that is readable meanwhile.
class Calls {
 public:
  int descriptor() const { return event_; }
  void post(std::function<void()> call) {
    const std::lock_guard lock(mutex_);
    calls_.push_back(std::move(call));
    eventfd_write(event_, 1);
  }
  void run() {
    eventfd_t count = 0;
    eventfd_read(event_, &count);
    for (const auto& call : taken()) call();
  }

 private:
  std::deque<std::function<void()>> taken() {
    const std::lock_guard lock(mutex_);
    return std::exchange(calls_, {});
  }
  const int event_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  std::mutex mutex_;
  std::deque<std::function<void()>> calls_;
};

int main() {
  Calls calls;  // outlives the camera
  auto camera = zel::Camera::open({.executor = [&](auto call) { calls.post(std::move(call)); }}).get();
  if (!camera) return std::fprintf(stderr, "%s\n", camera.error().message.c_str()), 3;
  int asked = 0, answered = 0;
  auto next = std::chrono::steady_clock::now();
  while (answered < 3) {
    pollfd wait{calls.descriptor(), POLLIN, 0};
    if (poll(&wait, 1, 50) > 0) calls.run();
    if (asked >= 3 || std::chrono::steady_clock::now() < next) continue;
    ++asked;
    next += std::chrono::seconds(1);
    camera->battery().then([&](const zel::Result<zel::Battery>& battery) {
      ++answered;
      battery ? std::printf("battery: %d %%\n", battery->level) : std::printf("%s\n", battery.error().message.c_str());
    });
  }
}
