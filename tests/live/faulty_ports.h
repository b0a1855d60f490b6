#pragma once

#include <functional>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <ZELTarkaSDK/platform/forwarding.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "tests/allocation_fault.h"

namespace zel::test {

// Ports around those of another platform between which and the core runs the border of what is counted: allocations of
// the core count, those of the platform do not, but for one a call, so that every call into it may fail too. What the
// core lets out of a call that the platform makes of it is counted as escaped.
// Thread: one at a time.
class FaultyPorts {
 public:
  explicit FaultyPorts(const platform::Ports& wrapped);

  platform::Ports ports() {
    return {clock_, threads_, queues_, accessories_, notifications_, nullptr, nullptr, nullptr, nullptr};
  }

  // std::bad_alloc that came out of the core.
  int escaped() const { return *escaped_; }

 private:
  using Escapes = std::shared_ptr<int>;
  friend class FaultyStreams;

  // What a platform takes for the call itself.
  static void takeMemory() { ::operator delete(::operator new(1)); }

  // A call of the core into the platform.
  template <class Call>
  static auto outside(Call call) {
    const FaultyCode platform(false);
    return call();
  }

  // A call of the platform into the core.
  template <class Call>
  static void inside(const Escapes& escapes, Call call) {
    const FaultyCode core;
    try {
      call();
    } catch (const std::bad_alloc&) {
      ++*escapes;
    }
  }

  static platform::Task counted(const Escapes& escapes, platform::Task task) {
    takeMemory();
    const FaultyCode platform(false);
    return [escapes, task = std::move(task)] { inside(escapes, task); };
  }

  struct FaultyClock final : platform::ForwardingClock {
    using ForwardingClock::ForwardingClock;
    void acquire(std::binary_semaphore& semaphore) override {
      outside([&] { ForwardingClock::acquire(semaphore); });
    }
    // Looks once, when the time is over: a look at every step of the others would take most of a test's time.
    bool acquireFor(std::binary_semaphore& semaphore, double seconds) override {
      return outside([&] {
        ForwardingClock::sleepFor(seconds);
        return semaphore.try_acquire();
      });
    }
  };

  struct FaultyQueue final : platform::ForwardingQueue {
    FaultyQueue(platform::Queue& wrapped, Escapes kept) : ForwardingQueue(wrapped), escapes(std::move(kept)) {}
    void post(platform::Task task) override {
      platform::Task wrappedTask = counted(escapes, std::move(task));
      outside([&] { ForwardingQueue::post(std::move(wrappedTask)); });
    }
    Escapes escapes;
  };

  struct FaultyQueues final : platform::Queues {
    FaultyQueues(platform::Queues& wrapped, const Escapes& escapes)
        : main(wrapped.mainQueue(), escapes), global(wrapped.globalQueue(), escapes) {}
    platform::Queue& mainQueue() override { return main; }
    platform::Queue& globalQueue() override { return global; }
    FaultyQueue main, global;
  };

  struct FaultyLoop final : platform::ForwardingRunLoop {
    FaultyLoop(platform::RunLoop& loop, Escapes kept)
        : ForwardingRunLoop(loop), wrapped(loop), escapes(std::move(kept)) {}
    void perform(platform::Task task) override {
      platform::Task wrappedTask = counted(escapes, std::move(task));
      outside([&] { ForwardingRunLoop::perform(std::move(wrappedTask)); });
    }
    std::unique_ptr<platform::Timer> scheduleRepeating(double seconds, platform::Task task) override {
      platform::Task wrappedTask = counted(escapes, std::move(task));
      return outside([&] { return ForwardingRunLoop::scheduleRepeating(seconds, std::move(wrappedTask)); });
    }
    std::unique_ptr<platform::RunLoopSource> addSource(platform::Task task) override {
      platform::Task wrappedTask = counted(escapes, std::move(task));
      return outside([&] { return ForwardingRunLoop::addSource(std::move(wrappedTask)); });
    }
    void stop() override {
      outside([&] { ForwardingRunLoop::stop(); });
    }
    platform::RunLoop& wrapped;
    Escapes escapes;
  };

  struct FaultyThread final : platform::Thread {
    FaultyThread(std::unique_ptr<platform::Thread> thread, std::shared_ptr<FaultyLoop> itsLoop)
        : wrapped(std::move(thread)), loop(std::move(itsLoop)) {}
    ~FaultyThread() override {
      outside([&] { wrapped.reset(); });
    }
    platform::RunLoop& runLoop() override { return *loop; }
    bool isCurrent() const override { return wrapped->isCurrent(); }
    std::unique_ptr<platform::Thread> wrapped;
    std::shared_ptr<FaultyLoop> loop;
  };

  struct FaultyThreads final : platform::Threads {
    FaultyThreads(platform::Threads& threads, Escapes kept) : wrapped(threads), escapes(std::move(kept)) {}
    std::unique_ptr<platform::Thread> start(std::string name, platform::ThreadBody body) override;
    platform::RunLoop& currentRunLoop() override { return loopOf(wrapped.currentRunLoop()); }

    FaultyLoop& loopOf(platform::RunLoop& loop) {
      const FaultyCode platform(false);
      auto& known = loops[&loop];
      if (!known) known = std::make_shared<FaultyLoop>(loop, escapes);
      return *known;
    }

    platform::Threads& wrapped;
    Escapes escapes;
    std::map<platform::RunLoop*, std::shared_ptr<FaultyLoop>> loops;
  };

  struct FaultyAccessories final : platform::ForwardingAccessoryManager {
    FaultyAccessories(platform::AccessoryManager& wrapped, Escapes kept)
        : ForwardingAccessoryManager(wrapped), escapes(std::move(kept)) {}
    std::vector<std::shared_ptr<platform::Accessory>> connectedAccessories() override {
      takeMemory();
      return outside([&] { return ForwardingAccessoryManager::connectedAccessories(); });
    }
    std::unique_ptr<platform::AccessorySession> openSession(const std::shared_ptr<platform::Accessory>& accessory,
                                                            std::string_view protocol) override;
    Escapes escapes;
  };

  struct FaultyNotifications final : platform::ForwardingNotificationCenter {
    FaultyNotifications(platform::NotificationCenter& wrapped, Escapes kept)
        : ForwardingNotificationCenter(wrapped), escapes(std::move(kept)) {}
    std::unique_ptr<platform::NotificationObservation> observe(std::string_view name, Observer observer) override {
      takeMemory();
      const FaultyCode platform(false);
      return ForwardingNotificationCenter::observe(
          name, [kept = escapes, observer = std::move(observer)](const platform::Notification& notification) {
            inside(kept, [&] { observer(notification); });
          });
    }
    void post(const platform::Notification& notification) override {
      outside([&] { ForwardingNotificationCenter::post(notification); });
    }
    Escapes escapes;
  };

  const Escapes escaped_ = std::make_shared<int>(0);
  FaultyClock clock_;
  FaultyThreads threads_;
  FaultyQueues queues_;
  FaultyAccessories accessories_;
  FaultyNotifications notifications_;
};

}  // namespace zel::test
