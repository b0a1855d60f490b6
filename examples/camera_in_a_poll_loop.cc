// A host with a loop of its own around poll(): the camera's callbacks run in it, beside everything else that it waits
// for. Ends when the battery has been asked for three times, a second apart.

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
#include <optional>
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
    while (auto call = next()) (*call)();
  }

 private:
  std::optional<std::function<void()>> next() {
    const std::lock_guard lock(mutex_);
    if (calls_.empty()) return std::nullopt;
    auto first = std::move(calls_.front());
    calls_.pop_front();
    return first;
  }
  const int event_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  std::mutex mutex_;
  std::deque<std::function<void()>> calls_;
};

int main() {
  Calls calls;
  auto camera = zel::Camera::open({.executor = [&](auto call) { calls.post(std::move(call)); }}).get();
  if (!camera) return std::fprintf(stderr, "%s\n", camera.error().message.c_str()), 3;

  int asked = 0, answered = 0;
  auto next = std::chrono::steady_clock::now();
  while (answered < 3) {
    pollfd waits[] = {{calls.descriptor(), POLLIN, 0}};
    poll(waits, 1, 50);
    if (waits[0].revents != 0) calls.run();
    if (asked >= 3 || std::chrono::steady_clock::now() < next) continue;
    ++asked;
    next += std::chrono::seconds(1);
    camera->battery().then([&](const zel::Result<zel::Battery>& battery) {
      ++answered;
      battery ? std::printf("battery: %d %%\n", battery->level) : std::printf("%s\n", battery.error().message.c_str());
    });
  }
}
