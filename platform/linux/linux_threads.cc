#include "platform/linux/linux_threads.h"

#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "base/has_memory_for.h"
#include "platform/linux/signal_mask.h"

namespace zel::platform {
namespace {

constexpr std::size_t kLongestName = 15;  // the kernel's limit for a thread's name

void runThread(const std::string& name, LinuxRunLoop& loop, const ThreadBody& body) {
  pthread_setname_np(pthread_self(), name.substr(0, kLongestName).c_str());
  const LinuxRunLoop::Scope scope(loop);
  if (body.begin) body.begin(loop);
  while (!hasMemoryFor([&] { loop.run(); })) continue;  // what the event was for has failed; the thread goes on
  if (body.end) body.end();
}

}  // namespace

// Threads that have not ended, with or without a handle.
class LiveThreads {
 public:
  // Returns the thread's number.
  std::uint64_t enter(const std::string& name, const std::shared_ptr<LinuxRunLoop>& loop) {
    const std::lock_guard lock(mutex_);
    threads_.push_back({++entered_, name, loop});
    return entered_;
  }

  // Notifies with the lock held, because the waiting thread may destroy this object as soon as the lock is released.
  void leave(std::uint64_t number) {
    const std::lock_guard lock(mutex_);
    std::erase_if(threads_, [number](const One& one) { return one.number == number; });
    changed_.notify_all();
  }

  // A thread whose loop has been stopped ends by itself, however long its last call takes.
  std::string waitForNone(std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    std::unique_lock lock(mutex_);
    while (!threads_.empty()) {
      const bool late = std::chrono::steady_clock::now() >= deadline;
      const auto running = std::ranges::find_if(threads_, &One::isRunning);
      if (late && running != threads_.end()) return running->name;
      changed_.wait_for(lock, late ? limit : deadline - std::chrono::steady_clock::now());
    }
    return {};
  }

 private:
  struct One {
    std::uint64_t number = 0;
    std::string name;
    std::weak_ptr<LinuxRunLoop> loop;

    bool isRunning() const {
      const auto held = loop.lock();
      return held && !held->isStopped();
    }
  };

  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<One> threads_;
  std::uint64_t entered_ = 0;
};

namespace {

class LinuxThread final : public Thread {
 public:
  LinuxThread(const std::shared_ptr<LiveThreads>& live, const std::string& name, ThreadBody body) {
    const SignalMask noSignals;
    const std::uint64_t number = live->enter(name, loop_);
    try {
      // The thread does not use the handle, which may be destroyed before it.
      thread_ = std::thread([name, number, loop = loop_, live, kept = std::move(body)]() mutable {
        runThread(name, *loop, kept);
        kept = {};
        loop = nullptr;
        live->leave(number);
      });
    } catch (...) {
      live->leave(number);
      throw;
    }
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

LinuxThreads::~LinuxThreads() {
  while (!waitForEnds(std::chrono::hours(1)).empty()) continue;
}

std::string LinuxThreads::waitForEnds(std::chrono::milliseconds limit) { return live_->waitForNone(limit); }

// A loop needs file descriptors; a thread needs memory and is limited by the system. A shortage throws.
std::unique_ptr<Thread> LinuxThreads::start(std::string name, ThreadBody body) {
  try {
    return std::make_unique<LinuxThread>(live_, name, std::move(body));
  } catch (const std::exception&) {
    return nullptr;
  }
}

RunLoop& LinuxThreads::currentRunLoop() {
  LinuxRunLoop* const own = LinuxRunLoop::ofThisThread();
  return own != nullptr ? *own : *mainRunLoop_;
}

}  // namespace zel::platform
