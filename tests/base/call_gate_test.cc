#include <ZELTarkaSDK/platform/call_gate.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "base/observer_list.h"

namespace zel::test {
namespace {

using testing::ElementsAre;

// A thread that is inside a call of a gate until it is let go.
class Busy {
 public:
  explicit Busy(CallGate& gate) {
    std::promise<void> inside;
    thread_ = std::thread([&gate, &inside, this] {
      gate.enter([&] {
        inside.set_value();
        release_.get_future().wait();
        ended.store(true);
      });
    });
    inside.get_future().wait();
  }
  ~Busy() { letGo(); }

  void letGo() {
    if (!thread_.joinable()) return;
    release_.set_value();
    thread_.join();
  }

  std::atomic<bool> ended = false;

 private:
  std::promise<void> release_;
  std::thread thread_;
};

TEST(CallGateTest, RunsACallAndACallInsideIt) {
  CallGate gate;
  std::vector<std::string> log;
  gate.enter([&] {
    gate.enter([&] { log.push_back("inner"); });
    log.push_back("outer");
  });
  EXPECT_THAT(log, ElementsAre("inner", "outer"));
}

TEST(CallGateTest, LetsNothingThroughOnceItIsClosed) {
  CallGate gate;
  gate.close();
  gate.enter([] { FAIL(); });
}

TEST(CallGateTest, IsClosedFromInsideItsOwnCall) {
  CallGate gate;
  int calls = 0;
  gate.enter([&] {
    ++calls;
    const CallbackScope scope;
    gate.close();
    gate.enter([&] { ++calls; });
  });
  EXPECT_EQ(calls, 1);
}

TEST(CallGateTest, WaitsForTheCallOfAnotherThreadWhenItIsClosed) {
  CallGate gate;
  Busy busy(gate);
  std::thread closing([&] {
    gate.close();
    EXPECT_TRUE(busy.ended.load());
  });
  busy.letGo();
  closing.join();
}

TEST(CallGateTest, DoesNotWaitWhenItIsClosedInsideACallback) {
  CallGate gate;
  Busy busy(gate);
  const CallbackScope scope;
  gate.close();
  EXPECT_FALSE(busy.ended.load());
  gate.enter([] { FAIL(); });
}

TEST(CallGateTest, LetsOneThreadThroughAtATime) {
  CallGate gate;
  std::atomic<int> inside = 0, most = 0, calls = 0;
  const auto enter = [&] {
    for (int i = 0; i < 200; ++i) {
      gate.enter([&] {
        most = std::max(most.load(), ++inside);
        std::this_thread::yield();
        --inside;
        ++calls;
      });
    }
  };
  std::thread one(enter), two(enter);
  one.join();
  two.join();
  EXPECT_EQ(most, 1);
  EXPECT_EQ(calls, 400);
}

TEST(CallGateTest, HandsACallOfACallbackToTheThreadThatIsInside) {
  CallGate gate;
  Busy busy(gate);
  std::vector<std::string> log;
  std::thread::id made;
  {
    const CallbackScope scope;
    gate.enter([&] {
      log.push_back("first");
      made = std::this_thread::get_id();
    });
    gate.enter([&] { log.push_back("second"); });
    EXPECT_THAT(log, ElementsAre());
  }
  busy.letGo();
  EXPECT_THAT(log, ElementsAre("first", "second"));
  EXPECT_NE(made, std::this_thread::get_id());
}

// What is let go with the last call that was handed over hands over another one, when the thread is leaving already.
TEST(CallGateTest, MakesACallThatIsHandedToALeavingThread) {
  CallGate gate;
  Busy busy(gate);
  bool isMade = false;
  const auto handOver = [&](void*) {
    std::thread([&] {
      const CallbackScope scope;
      gate.enter([&] { isMade = true; });
    }).join();
  };
  {
    const CallbackScope scope;
    gate.enter([last = std::shared_ptr<void>(&gate, handOver)] {});
  }
  busy.letGo();
  EXPECT_TRUE(isMade);
}

TEST(CallGateTest, MakesNoHandedOverCallOnceItIsClosed) {
  CallGate gate;
  Busy busy(gate);
  {
    const CallbackScope scope;
    gate.enter([] { FAIL(); });
    gate.close();
  }
  busy.letGo();
}

TEST(CallGateTest, KnowsACallbackOnItsOwnThreadOnly) {
  EXPECT_FALSE(insideCallback());
  const CallbackScope outer;
  { const CallbackScope inner; }
  EXPECT_TRUE(insideCallback());
  std::thread([] { EXPECT_FALSE(insideCallback()); }).join();
}

// Each of two observers, on a thread of its own, tells the other list, whose observer the other thread is in.
TEST(ObserverListTest, TwoObserversOnTwoThreadsMayTellEachOther) {
  ObserverList<int> first, second;
  std::promise<void> inFirst, inSecond;
  std::shared_future<void> firstIsIn = inFirst.get_future().share(), secondIsIn = inSecond.get_future().share();
  std::mutex mutex;
  std::vector<std::string> log;
  const auto note = [&](const std::string& entry) {
    const std::lock_guard lock(mutex);
    log.push_back(entry);
  };
  const auto one = first.add([&](int value) {
    note("first " + std::to_string(value));
    if (value != 1) return;
    inFirst.set_value();
    secondIsIn.wait();
    second.notify(2);
  });
  const auto two = second.add([&](int value) {
    note("second " + std::to_string(value));
    if (value != 1) return;
    inSecond.set_value();
    firstIsIn.wait();
    first.notify(2);
  });
  std::thread telling([&] { first.notify(1); });
  second.notify(1);
  telling.join();
  EXPECT_THAT(log, testing::UnorderedElementsAre("first 1", "second 1", "first 2", "second 2"));
}

TEST(ObserverListTest, TwoObserversOnTwoThreadsMayEndEachOther) {
  ObserverList<> first, second;
  std::promise<void> inFirst, inSecond;
  std::shared_future<void> firstIsIn = inFirst.get_future().share(), secondIsIn = inSecond.get_future().share();
  Observation one, two;
  one = first.add([&] {
    inFirst.set_value();
    secondIsIn.wait();
    two.reset();
  });
  two = second.add([&] {
    inSecond.set_value();
    firstIsIn.wait();
    one.reset();
  });
  std::thread telling([&] { first.notify(); });
  second.notify();
  telling.join();
  first.notify();  // a promise that is kept twice throws
  second.notify();
}

}  // namespace
}  // namespace zel::test
