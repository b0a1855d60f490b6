#include "platform/linux/linux_threads.h"

#include <pthread.h>

#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

#include "platform/linux/signal_mask.h"

namespace zel::platform {
namespace {

constexpr std::size_t kLongestName = 15;  // what the kernel keeps of a thread's name

void runThread(const std::string& name, LinuxRunLoop& loop, const ThreadBody& body) {
  pthread_setname_np(pthread_self(), name.substr(0, kLongestName).c_str());
  const LinuxRunLoop::Scope scope(loop);
  if (body.begin) body.begin(loop);
  loop.run();
  if (body.end) body.end();
}

}  // namespace

// Threads that have not ended, whether or not somebody still holds them.
class LiveThreads {
 public:
  void enter() {
    const std::lock_guard lock(mutex_);
    ++count_;
  }

  // Told with the lock held: whoever waits may go on as soon as it is let go.
  void leave() {
    const std::lock_guard lock(mutex_);
    --count_;
    changed_.notify_all();
  }

  void waitForNone() {
    std::unique_lock lock(mutex_);
    while (count_ != 0) changed_.wait(lock);
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int count_ = 0;
};

namespace {

class LinuxThread final : public Thread {
 public:
  LinuxThread(const std::shared_ptr<LiveThreads>& live, const std::string& name, ThreadBody body) {
    const SignalMask noSignals;
    live->enter();
    // The thread touches nothing of the handle, which may be gone before it.
    thread_ = std::thread([name, loop = loop_, live, kept = std::move(body)]() mutable {
      runThread(name, *loop, kept);
      kept = {};
      loop = nullptr;
      live->leave();
    });
  }

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
  const std::shared_ptr<LinuxRunLoop> loop_ = LinuxRunLoop::create();
  std::thread thread_;
};

}  // namespace

LinuxThreads::LinuxThreads(std::shared_ptr<LinuxRunLoop> mainRunLoop)
    : mainRunLoop_(std::move(mainRunLoop)), live_(std::make_shared<LiveThreads>()) {}

LinuxThreads::~LinuxThreads() { waitForEnds(); }

void LinuxThreads::waitForEnds() { live_->waitForNone(); }

std::unique_ptr<Thread> LinuxThreads::start(std::string name, ThreadBody body) {
  return std::make_unique<LinuxThread>(live_, name, std::move(body));
}

RunLoop& LinuxThreads::currentRunLoop() {
  LinuxRunLoop* const own = LinuxRunLoop::ofThisThread();
  return own != nullptr ? *own : *mainRunLoop_;
}

}  // namespace zel::platform
