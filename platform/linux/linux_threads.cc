#include "platform/linux/linux_threads.h"

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <utility>
#include <vector>

#include "platform/linux/signal_mask.h"
#include "platform/mutex.h"

namespace zel::platform {
namespace {

constexpr std::size_t kLongestName = 15;  // what the kernel keeps of a thread's name

using Ended = std::shared_ptr<std::atomic<bool>>;

void runThread(const std::string& name, LinuxRunLoop& loop, const ThreadBody& body) {
  pthread_setname_np(pthread_self(), name.substr(0, kLongestName).c_str());
  const LinuxRunLoop::Scope scope(loop);
  if (body.begin) body.begin(loop);
  loop.run();
  if (body.end) body.end();
}

}  // namespace

// Threads that nobody holds any more.
class OrphanThreads {
 public:
  void adopt(std::thread thread, Ended ended) {
    const MutexLock lock(mutex_);
    orphans_.push_back({std::move(thread), std::move(ended)});
  }

  // Frees what the kernel keeps of those that have ended.
  void reap() {
    waitFor(take([](const Orphan& orphan) { return orphan.ended->load(); }));
  }

  void waitForAll() {
    // One that ends may leave another behind.
    for (auto orphans = take(any); !orphans.empty(); orphans = take(any)) waitFor(std::move(orphans));
  }

 private:
  struct Orphan {
    std::thread thread;
    Ended ended;
  };

  static bool any(const Orphan&) { return true; }

  template <class Condition>
  std::vector<Orphan> take(Condition condition) {
    const MutexLock lock(mutex_);
    const auto taken = std::stable_partition(orphans_.begin(), orphans_.end(),
                                             [&](const Orphan& orphan) { return !condition(orphan); });
    std::vector<Orphan> result(std::make_move_iterator(taken), std::make_move_iterator(orphans_.end()));
    orphans_.erase(taken, orphans_.end());
    return result;
  }

  static void waitFor(std::vector<Orphan> orphans) {
    for (Orphan& orphan : orphans) {
      if (orphan.thread.get_id() == std::this_thread::get_id()) {
        orphan.thread.detach();
      } else {
        orphan.thread.join();
      }
    }
  }

  Mutex mutex_;
  std::vector<Orphan> orphans_ ZEL_GUARDED_BY(mutex_);
};

namespace {

class LinuxThread final : public Thread {
 public:
  LinuxThread(std::shared_ptr<OrphanThreads> orphans, const std::string& name, ThreadBody body)
      : orphans_(std::move(orphans)) {
    const SignalMask noSignals;
    // The thread touches nothing of the handle, which may be gone before it.
    thread_ = std::thread([name, loop = loop_, ended = ended_, kept = std::move(body)]() mutable {
      runThread(name, *loop, kept);
      kept = {};
      loop = nullptr;
      ended->store(true);
    });
  }

  ~LinuxThread() override {
    loop_->stop();
    if (isCurrent()) {
      orphans_->adopt(std::move(thread_), ended_);
    } else {
      thread_.join();
    }
  }

  RunLoop& runLoop() override { return *loop_; }
  bool isCurrent() const override { return thread_.get_id() == std::this_thread::get_id(); }

 private:
  const std::shared_ptr<OrphanThreads> orphans_;
  const std::shared_ptr<LinuxRunLoop> loop_ = LinuxRunLoop::create();
  const Ended ended_ = std::make_shared<std::atomic<bool>>(false);
  std::thread thread_;
};

}  // namespace

LinuxThreads::LinuxThreads(std::shared_ptr<LinuxRunLoop> mainRunLoop)
    : mainRunLoop_(std::move(mainRunLoop)), orphans_(std::make_shared<OrphanThreads>()) {}

LinuxThreads::~LinuxThreads() { waitForOrphans(); }

void LinuxThreads::waitForOrphans() { orphans_->waitForAll(); }

std::unique_ptr<Thread> LinuxThreads::start(std::string name, ThreadBody body) {
  orphans_->reap();
  return std::make_unique<LinuxThread>(orphans_, name, std::move(body));
}

RunLoop& LinuxThreads::currentRunLoop() {
  LinuxRunLoop* const own = LinuxRunLoop::ofThisThread();
  return own != nullptr ? *own : *mainRunLoop_;
}

}  // namespace zel::platform
