#include "platform/simulated/simulated_platform.h"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

namespace zel::platform {
namespace {

constexpr double kStart = 700'000'000.0;

class SimulatedClock final : public Clock {
 public:
  explicit SimulatedClock(SimulatedScheduler& scheduler) : scheduler_(scheduler) {}
  double absoluteTime() const override { return scheduler_.now(); }
  void sleepFor(double seconds) override { scheduler_.sleepFor(seconds); }
  void acquire(std::binary_semaphore& semaphore) override {
    scheduler_.waitUntil([&semaphore] { return semaphore.try_acquire(); });
  }
  bool acquireFor(std::binary_semaphore& semaphore, double seconds) override {
    return scheduler_.waitUntil([&semaphore] { return semaphore.try_acquire(); }, scheduler_.now() + seconds);
  }

 private:
  SimulatedScheduler& scheduler_;
};

// A thread is a run loop whose begin and end are separate steps.
class SimulatedThread final : public Thread {
 public:
  SimulatedThread(SimulatedScheduler& scheduler, const std::shared_ptr<int>& live, ThreadBody body)
      : scheduler_(scheduler), loop_(std::make_shared<SimulatedRunLoop>(scheduler)) {
    loop_->beginWith(std::move(body.begin));
    // The loop lives until its end step has run, even if the handle is destroyed on the thread itself.
    ++*live;
    loop_->whenStopped([live, kept = loop_, end = std::move(body.end)] {
      if (end) end();
      --*live;
    });
  }
  ~SimulatedThread() override { loop_->finish(); }

  RunLoop& runLoop() override { return *loop_; }
  bool isCurrent() const override { return scheduler_.current() == loop_.get(); }

 private:
  SimulatedScheduler& scheduler_;
  std::shared_ptr<SimulatedRunLoop> loop_;
};

class SimulatedThreads final : public Threads {
 public:
  SimulatedThreads(SimulatedScheduler& scheduler, SimulatedRunLoop& main) : scheduler_(scheduler), main_(main) {}

  std::unique_ptr<Thread> start(std::string name, ThreadBody body) override {
    return std::make_unique<SimulatedThread>(scheduler_, counter(name), std::move(body));
  }
  // The threads behind the global queue have no run loop of their own.
  RunLoop& currentRunLoop() override {
    SimulatedRunLoop* const current = scheduler_.current();
    return current != nullptr ? *current : main_;
  }

  std::shared_ptr<int> counter(const std::string& name) {
    auto& live = live_[name];
    if (!live) live = std::make_shared<int>(0);
    return live;
  }

 private:
  SimulatedScheduler& scheduler_;
  SimulatedRunLoop& main_;
  std::map<std::string, std::shared_ptr<int>> live_;
};

class SimulatedQueues final : public Queues {
 public:
  SimulatedQueues(SimulatedScheduler& global, SimulatedRunLoop& main) : main_(main), global_(global) {}
  Queue& mainQueue() override { return main_; }
  Queue& globalQueue() override { return global_; }

 private:
  SimulatedRunLoop& main_;
  SimulatedScheduler& global_;
};

class SimulatedAccessoryManager final : public AccessoryManager {
 public:
  SimulatedAccessoryManager(Queue& mainQueue, NotificationCenter& notifications)
      : mainQueue_(mainQueue), notifications_(notifications) {}

  std::vector<std::shared_ptr<Accessory>> connectedAccessories() override {
    return {attached_.begin(), attached_.end()};
  }
  void registerForLocalNotifications() override { ++registrations_; }
  void unregisterForLocalNotifications() override { registrations_ = std::max(0, registrations_ - 1); }

  std::unique_ptr<AccessorySession> openSession(const std::shared_ptr<Accessory>& accessory,
                                                std::string_view protocol) override {
    const auto scripted = std::dynamic_pointer_cast<ScriptedAccessory>(accessory);
    if (!scripted) return nullptr;
    const auto& offered = scripted->description().protocolStrings;
    return std::ranges::find(offered, protocol) != offered.end() ? scripted->openSession() : nullptr;
  }

  void plug(const std::shared_ptr<ScriptedAccessory>& accessory) {
    attached_.push_back(accessory);
    std::ranges::stable_sort(attached_, {}, [](const auto& known) { return known->description().connectionID; });
    announce(kAccessoryDidConnectNotification, accessory);
  }

  void unplug(const std::shared_ptr<ScriptedAccessory>& accessory) {
    if (std::erase(attached_, accessory) == 0) return;
    accessory->detach();
    announce(kAccessoryDidDisconnectNotification, accessory);
  }

 private:
  void announce(std::string_view name, const std::shared_ptr<Accessory>& accessory) {
    if (registrations_ == 0) return;
    mainQueue_.post([this, notification = Notification{std::string(name), {{std::string(kAccessoryKey), accessory}}}] {
      if (registrations_ != 0) notifications_.post(notification);
    });
  }

  Queue& mainQueue_;
  NotificationCenter& notifications_;
  std::vector<std::shared_ptr<ScriptedAccessory>> attached_;
  int registrations_ = 0;
};

}  // namespace

struct SimulatedPlatform::State {
  explicit State(std::uint64_t seed) : scheduler(seed) { scheduler.setNow(kStart); }

  SimulatedScheduler scheduler;
  SimulatedRunLoop main{scheduler};
  SimulatedClock clock{scheduler};
  SimulatedThreads threads{scheduler, main};
  SimulatedQueues queues{scheduler, main};
  InProcessNotificationCenter notifications;
  SimulatedAccessoryManager accessories{main, notifications};
  Ports ports{clock, threads, queues, accessories, notifications};
};

SimulatedPlatform::SimulatedPlatform(std::uint64_t seed) : state_(std::make_unique<State>(seed)) {}
SimulatedPlatform::~SimulatedPlatform() {
  state_->scheduler.endStoppedThreads();
  state_->scheduler.abandonTasks();
}

const Ports& SimulatedPlatform::ports() { return state_->ports; }
void SimulatedPlatform::runUntilIdle() { state_->scheduler.runUntilIdle(); }
void SimulatedPlatform::advance(double seconds) { state_->scheduler.advance(seconds); }
double SimulatedPlatform::now() const { return state_->scheduler.now(); }
void SimulatedPlatform::setNow(double seconds) { state_->scheduler.setNow(seconds); }

std::shared_ptr<ScriptedAccessory> SimulatedPlatform::plug(AccessoryDescription description) {
  auto accessory = std::make_shared<ScriptedAccessory>(std::move(description));
  state_->accessories.plug(accessory);
  return accessory;
}

void SimulatedPlatform::unplug(const std::shared_ptr<ScriptedAccessory>& accessory) {
  state_->accessories.unplug(accessory);
}

int SimulatedPlatform::liveThreads(const std::string& name) const { return *state_->threads.counter(name); }

std::size_t SimulatedPlatform::liveTasks() const { return state_->scheduler.taskCount(); }

}  // namespace zel::platform
