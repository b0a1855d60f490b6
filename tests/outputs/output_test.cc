#include "outputs/output.h"

#include <gmock/gmock.h>
#include <sys/resource.h>

#include <algorithm>
#include <deque>
#include <memory>
#include <new>
#include <semaphore>
#include <utility>
#include <vector>

#include "base/mutex.h"
#include "tests/sanitizers.h"

namespace zel {
namespace {

using testing::ElementsAre;

// What sinks are to do, and what they were asked for.
struct Script {
  struct Attempt {
    Fault open;
    std::optional<std::size_t> failsAfter;  // packets
  };

  std::deque<Attempt> attempts;               // those after the last one go well
  std::counting_semaphore<1000> mayWrite{0};  // each packet takes one where `slow`
  bool slow = false;
  bool hasNoMemory = false;
  Mutex mutex;
  std::vector<std::int64_t> written ZEL_GUARDED_BY(mutex);
  int finished ZEL_GUARDED_BY(mutex) = 0;
  std::vector<LeftOut> leftOut;  // by each sink after its first packet, its second and so on; the last one stays
  std::vector<double> ends ZEL_GUARDED_BY(mutex);
};

class ScriptedSink final : public Sink {
 public:
  ScriptedSink(Script& script, Script::Attempt attempt) : script_(script), attempt_(std::move(attempt)) {}

  Fault open(const StreamHeaders&) override { return attempt_.open; }
  Fault write(const MediaPacket& packet) override {
    if (script_.hasNoMemory) throw std::bad_alloc();
    if (attempt_.failsAfter && count_++ == *attempt_.failsAfter) return "it broke";
    if (script_.slow) script_.mayWrite.acquire();
    ++taken_;
    const MutexLock lock(script_.mutex);
    script_.written.push_back(packet.time);
    return std::nullopt;
  }
  Fault finish() override {
    const MutexLock lock(script_.mutex);
    ++script_.finished;
    return std::nullopt;
  }
  LeftOut leftOut() const override {
    if (script_.leftOut.empty() || taken_ == 0) return {};
    return script_.leftOut[std::min(taken_, script_.leftOut.size()) - 1];
  }
  void endWithin(double seconds) override {
    const MutexLock lock(script_.mutex);
    script_.ends.push_back(seconds);
  }

 private:
  Script& script_;
  const Script::Attempt attempt_;
  std::size_t count_ = 0, taken_ = 0;
};

class OutputTest : public testing::Test {
 protected:
  OutputRules rules() {
    OutputRules made;
    made.name = "it";
    made.tell = [this](const std::string& line) {
      const MutexLock lock(toldMutex);
      told.push_back(line);
      tells.release();
    };
    made.makeSink = [this] {
      Script::Attempt attempt;
      if (!script.attempts.empty()) {
        attempt = script.attempts.front();
        script.attempts.pop_front();
      }
      return std::make_unique<ScriptedSink>(script, attempt);
    };
    return made;
  }

  OutputRules serverRules(int attempts = 20) {
    OutputRules made = rules();
    made.retry = RetryRules{.most = attempts, .first = 0};
    made.secondsToFinish = 5;
    return made;
  }

  static MediaPacket picture(std::int64_t time, bool key) {
    return {Track::video, key, time, ZELData(std::vector<std::uint8_t>(10)), std::chrono::steady_clock::now()};
  }

  static void waitFor(std::counting_semaphore<1000>& semaphore) {
    ASSERT_TRUE(semaphore.try_acquire_for(std::chrono::seconds(60)));
  }

  std::vector<std::int64_t> written() {
    const MutexLock lock(script.mutex);
    return script.written;
  }
  int finished() {
    const MutexLock lock(script.mutex);
    return script.finished;
  }
  std::vector<double> ends() {
    const MutexLock lock(script.mutex);
    return script.ends;
  }
  std::string everythingTold() {
    const MutexLock lock(toldMutex);
    std::string all;
    for (const std::string& line : told) all += line + "\n";
    return all;
  }

  Script script;
  Mutex toldMutex;
  std::vector<std::string> told ZEL_GUARDED_BY(toldMutex);
  std::counting_semaphore<1000> tells{0}, reached{0}, mayConnect{0};
};

TEST_F(OutputTest, FailsInWordsWhereMemoryEnds) {
  script.hasNoMemory = true;
  Output output(rules());
  output.begin({});
  output.put(picture(1, true));
  waitFor(tells);
  output.finish();
  output.join();
  EXPECT_TRUE(output.state() == OutputState::failed);
  EXPECT_EQ(output.report().fault, "it: there is not enough memory");
  EXPECT_EQ(everythingTold(), "it: there is not enough memory\n");
  EXPECT_EQ(finished(), 0);
}

TEST_F(OutputTest, WritesWhatCameAndFinishes) {
  Output output(rules());
  output.begin({});
  output.put(picture(1, true));
  output.put(picture(2, false));
  output.finish();
  output.join();
  EXPECT_THAT(written(), ElementsAre(1, 2));
  EXPECT_EQ(finished(), 1);
  const OutputReport report = output.report();
  EXPECT_EQ(report.pictures, 2u);
  EXPECT_EQ(report.bytes, 20u);
  EXPECT_EQ(report.dropped, 0u);
  EXPECT_TRUE(report.medianLatency);
  EXPECT_TRUE(report.latency99);
  EXPECT_EQ(report.state, OutputState::finished);
  EXPECT_FALSE(report.fault);
}

TEST_F(OutputTest, WhatASinkLeavesOutCountsAsDropped) {
  script.leftOut = {{.pictures = 0}, {.pictures = 0}, {.pictures = 1}};  // the first, seen when it had the third
  Output output(rules());
  output.begin({});
  for (int i = 0; i < 4; ++i) output.put(picture(i, true));
  output.finish();
  output.join();
  EXPECT_EQ(output.report().pictures, 3u);
  EXPECT_EQ(output.report().dropped, 1u);
  EXPECT_FALSE(output.report().fault);
}

TEST_F(OutputTest, PacketsMayComeBeforeTheHeadersAreThere) {
  Output output(rules());
  output.put(picture(1, true));
  output.begin({});
  output.finish();
  output.join();
  EXPECT_THAT(written(), ElementsAre(1));
}

TEST_F(OutputTest, AFilesFirstFaultIsTheEndAndIsTold) {
  script.attempts = {{"no room", {}}};
  Output output(rules());
  output.begin({});
  waitFor(tells);
  output.put(picture(1, true));
  output.finish();
  output.join();
  EXPECT_EQ(output.state(), OutputState::failed);
  EXPECT_EQ(output.report().fault, "no room");
  EXPECT_EQ(everythingTold(), "no room\n");
  EXPECT_THAT(written(), ElementsAre());
}

TEST_F(OutputTest, ASlowOneDropsAndSaysSoOnceAndNobodyWaits) {
  script.slow = true;
  OutputRules slow = rules();
  slow.limits = {.bytes = 30, .microseconds = 1'000'000};
  Output output(slow);
  output.begin({});
  for (int i = 0; i < 40; ++i) output.put(picture(i, true));  // none of these waits
  script.mayWrite.release(40);
  output.finish();
  output.join();
  EXPECT_GE(output.report().dropped, 36u);  // three wait at most, and one is being written
  EXPECT_EQ(output.report().pictures + output.report().dropped, 40u);
  EXPECT_EQ(everythingTold(), "it is too slow: pictures are dropped\n");
}

TEST_F(OutputTest, AServerThatDropsTheStreamGetsItAgainFromAKeyPictureOn) {
  script.attempts = {{std::nullopt, 1}};
  Output output(serverRules());
  output.begin({});
  for (std::int64_t time = 0; written().size() < 2; ++time) output.put(picture(time, time % 3 == 0));
  output.finish();
  output.join();
  EXPECT_EQ(written().at(0) % 3, 0);
  EXPECT_EQ(written().at(1) % 3, 0);  // the first of the second connection
  EXPECT_EQ(everythingTold(), "it is connected\nit broke; trying again in 0.0 s (1 of 20)\nit is connected again\n");
  EXPECT_EQ(output.report().connections, 2);
  EXPECT_EQ(output.report().retries, 1);
  EXPECT_FALSE(output.report().fault);
}

TEST_F(OutputTest, AServerIsGivenUpAfterItsAttempts) {
  script.attempts = {{"refused", {}}, {"refused", {}}, {"refused", {}}};
  Output output(serverRules(2));
  output.begin({});
  for (int i = 0; i < 3; ++i) waitFor(tells);
  output.join();
  EXPECT_EQ(output.state(), OutputState::failed);
  EXPECT_EQ(everythingTold(),
            "refused; trying again in 0.0 s (1 of 2)\nrefused; trying again in 0.0 s (2 of 2)\nrefused\n");
  EXPECT_EQ(output.report().retries, 2);
}

TEST_F(OutputTest, WhatComesWhileAServerIsAwayIsCounted) {
  script.attempts = {{"refused", {}}};
  OutputRules patient = serverRules();
  patient.retry->first = 3600;
  Output output(patient);
  output.begin({});
  waitFor(tells);
  output.put(picture(1, true));
  output.put(picture(2, true));
  output.finish();  // does not wait for the hour
  output.join();
  EXPECT_EQ(output.report().dropped, 2u);
  EXPECT_EQ(output.report().fault, "refused");
}

TEST_F(OutputTest, AConnectedServerGetsSomeSecondsToFinish) {
  Output output(serverRules());
  output.begin({});
  while (output.report().connections == 0) std::this_thread::yield();
  output.finish();
  output.join();
  EXPECT_THAT(ends(), ElementsAre(5));
  EXPECT_EQ(finished(), 1);
}

TEST_F(OutputTest, IsWaitingUntilTheHeadersCome) {
  Output output(serverRules());
  EXPECT_EQ(output.state(), OutputState::waiting);
  output.put(picture(1, true));
  EXPECT_EQ(output.report().dropped, 1u);
}

TEST_F(OutputTest, IsConnectingWhileItsServerIsBeingReached) {
  OutputRules held = serverRules();
  held.makeSink = [this, make = held.makeSink] {
    reached.release();
    mayConnect.acquire();
    return make();
  };
  Output output(held);
  output.begin({});
  waitFor(reached);
  EXPECT_EQ(output.state(), OutputState::connecting);
  mayConnect.release();
  while (output.state() != OutputState::writing) std::this_thread::yield();
}

TEST_F(OutputTest, IsRetryingBetweenTwoAttempts) {
  script.attempts = {{"refused", {}}};
  OutputRules patient = serverRules();
  patient.retry->first = 3600;
  Output output(patient);
  output.begin({});
  waitFor(tells);
  EXPECT_EQ(output.state(), OutputState::retrying);
}

TEST_F(OutputTest, EndsWithoutAnyHeaders) {
  Output output(rules());
  output.finish();
  output.join();
  EXPECT_EQ(finished(), 0);
  EXPECT_EQ(output.state(), OutputState::finished);
}

// -- a machine that has nothing left

// The process gets no more memory than it has, while it exists.
class NoMoreMemory {
 public:
  NoMoreMemory() {
    getrlimit(RLIMIT_AS, &before_);
    rlimit none = before_;
    none.rlim_cur = 1;
    setrlimit(RLIMIT_AS, &none);
  }
  ~NoMoreMemory() { setrlimit(RLIMIT_AS, &before_); }
  NoMoreMemory(const NoMoreMemory&) = delete;
  NoMoreMemory& operator=(const NoMoreMemory&) = delete;

 private:
  rlimit before_{};
};

TEST_F(OutputTest, WithoutAThreadItHasFailed) {
  if (test::kSanitized) GTEST_SKIP() << "a sanitizer needs memory of its own";
  constexpr std::size_t kMany = 20;  // more than there are stacks of threads that have ended
  std::vector<std::unique_ptr<Output>> all(kMany);
  std::vector<OutputRules> each(kMany, rules());
  {
    const NoMoreMemory none;
    for (std::size_t at = 0; at < kMany; ++at) all[at] = std::make_unique<Output>(std::move(each[at]));
  }
  EXPECT_EQ(all.back()->state(), OutputState::failed);
  EXPECT_EQ(all.back()->report().fault, "it: no thread can be started");
}

}  // namespace
}  // namespace zel
