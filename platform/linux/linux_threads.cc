#include "platform/linux/linux_threads.h"

#include <pthread.h>

#include <thread>
#include <utility>

namespace zel::platform {
namespace {

constexpr std::size_t kLongestName = 15;  // what the kernel keeps

class LinuxThread final : public Thread {
 public:
  LinuxThread(std::shared_ptr<LinuxRunLoop> loop, std::thread thread)
      : loop_(std::move(loop)), thread_(std::move(thread)) {}

  ~LinuxThread() override {
    loop_->stop();
    if (isCurrent()) {
      thread_.detach();
    } else {
      thread_.join();
    }
  }

  RunLoop& runLoop() override { return *loop_; }
  bool isCurrent() const override { return thread_.get_id() == std::this_thread::get_id(); }

 private:
  std::shared_ptr<LinuxRunLoop> loop_;
  std::thread thread_;
};

void runBody(const std::string& name, const std::shared_ptr<LinuxRunLoop>& loop, ThreadBody body) {
  pthread_setname_np(pthread_self(), name.substr(0, kLongestName).c_str());
  loop->call([&] {
    if (body.begin) body.begin(*loop);
  });
  loop->run();
  loop->call([&] {
    if (body.end) body.end();
  });
}

}  // namespace

void ThreadCount::enter() {
  const std::lock_guard lock(mutex_);
  ++count_;
}

// Told with the lock held: whoever waits may destroy this as soon as it is let go.
void ThreadCount::leave() {
  const std::lock_guard lock(mutex_);
  --count_;
  changed_.notify_all();
}

void ThreadCount::waitForNone() {
  std::unique_lock lock(mutex_);
  while (count_ != 0) changed_.wait(lock);
}

std::unique_ptr<Thread> LinuxThreads::start(std::string name, ThreadBody body) {
  auto loop = std::make_shared<LinuxRunLoop>(LinuxRunLoop::Kind::ofThread);
  count_->enter();
  std::thread thread([name = std::move(name), loop, body = std::move(body), count = count_]() mutable {
    runBody(name, loop, std::move(body));
    loop.reset();
    count->leave();
  });
  return std::make_unique<LinuxThread>(std::move(loop), std::move(thread));
}

RunLoop& LinuxThreads::currentRunLoop() {
  LinuxRunLoop* const own = LinuxRunLoop::current();
  return own != nullptr ? *own : *mainLoop_;
}

}  // namespace zel::platform
