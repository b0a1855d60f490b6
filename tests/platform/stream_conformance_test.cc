#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>

#include "tests/platform/harness.h"

namespace zel::test {
namespace {

using platform::StreamEvent;
using testing::ElementsAre;

// Records the events of one stream; what it does about them is the test's.
class Recorder final : public platform::StreamDelegate {
 public:
  explicit Recorder(std::function<void(StreamEvent)> act = {}) : act_(std::move(act)) {}

  void streamHandleEvent(platform::Stream&, StreamEvent event) override {
    events.add(event);
    if (act_) act_(event);
  }

  std::size_t count(StreamEvent event) const {
    const auto all = events.all();
    return static_cast<std::size_t>(std::count(all.begin(), all.end(), event));
  }

  Log<StreamEvent> events;

 private:
  std::function<void(StreamEvent)> act_;
};

class StreamConformance : public Conformance {
 protected:
  void SetUp() override {
    Conformance::SetUp();
    if (IsSkipped()) return;
    harness->plug(camera(7));
    ASSERT_TRUE(runUntil([&] { return ports.accessories.connectedAccessories().size() == 1; }));
    connection = harness->connect(7);
    ASSERT_NE(connection.host, nullptr);
  }

  // Streams are closed on their own thread.
  void TearDown() override {
    if (!connection.host) return;
    inside(loop, [&] { connection.host.reset(); });
  }

  void open(platform::Stream& stream, const std::shared_ptr<Recorder>& recorder) {
    inside(loop, [&] {
      stream.setDelegate(recorder);
      stream.scheduleInRunLoop(loop);
      stream.open();
    });
    ASSERT_TRUE(runUntil([&] { return recorder->count(StreamEvent::openCompleted) == 1; }));
  }

  // Opens the input with a host that, at each has-bytes event, reads once, at most `atOnce` bytes.
  std::shared_ptr<Recorder> openReading(std::size_t atOnce) {
    auto recorder = std::make_shared<Recorder>([this, atOnce](StreamEvent event) {
      if (event == StreamEvent::hasBytesAvailable) readOnce(atOnce);
    });
    open(input(), recorder);
    return recorder;
  }

  void readOnce(std::size_t atOnce) {
    Bytes buffer(atOnce);
    const std::ptrdiff_t count = input().read(buffer);
    for (std::ptrdiff_t i = 0; i < count; ++i) read.add(buffer[static_cast<std::size_t>(i)]);
    results.add(count);
  }

  std::ptrdiff_t write(const Bytes& bytes) {
    std::atomic<std::ptrdiff_t> count = 0;
    inside(loop, [&] { count = output().write(bytes); });
    return count;
  }

  platform::InputStream& input() { return connection.host->inputStream(); }
  platform::OutputStream& output() { return connection.host->outputStream(); }
  FarEnd& far() { return *connection.far; }

  std::unique_ptr<platform::Thread> thread = startThread("streams");
  platform::RunLoop& loop = thread->runLoop();
  Connection connection;
  Log<std::uint8_t> read;
  Log<std::ptrdiff_t> results;
};

TEST_P(StreamConformance, CompletesItsOpeningOnceBeforeAnythingElse) {
  far().send({1});
  const auto recorder = openReading(16);
  ASSERT_TRUE(runUntil([&] { return read.size() == 1; }));
  EXPECT_EQ(recorder->events.all().front(), StreamEvent::openCompleted);
  EXPECT_EQ(recorder->count(StreamEvent::openCompleted), 1U);
}

TEST_P(StreamConformance, ReportsBytesAndReadsThem) {
  const auto recorder = openReading(16);
  far().send({1, 2, 3});
  ASSERT_TRUE(runUntil([&] { return read.size() == 3; }));
  far().send({4});
  ASSERT_TRUE(runUntil([&] { return read.size() == 4; }));
  EXPECT_THAT(read.all(), ElementsAre(1, 2, 3, 4));
}

TEST_P(StreamConformance, ReportsAgainTheBytesLeftUnread) {
  const auto recorder = openReading(2);
  far().send({1, 2, 3, 4, 5});
  ASSERT_TRUE(runUntil([&] { return read.size() == 5; }));
  EXPECT_THAT(read.all(), ElementsAre(1, 2, 3, 4, 5));
}

TEST_P(StreamConformance, ReadsNothingFromAnEmptyStream) {
  const auto recorder = openReading(16);
  inside(loop, [&] { readOnce(16); });
  EXPECT_THAT(results.all(), ElementsAre(0));
}

TEST_P(StreamConformance, TellsTheEndOnceBehindTheLastByte) {
  const auto recorder = openReading(2);
  far().send({1, 2, 3, 4, 5});
  far().close();
  ASSERT_TRUE(runUntil([&] { return recorder->count(StreamEvent::endEncountered) == 1; }));
  flush(loop);
  EXPECT_THAT(read.all(), ElementsAre(1, 2, 3, 4, 5));
  EXPECT_EQ(recorder->events.all().back(), StreamEvent::endEncountered);
  EXPECT_EQ(recorder->count(StreamEvent::endEncountered), 1U);
  EXPECT_EQ(recorder->count(StreamEvent::errorOccurred), 0U);
}

TEST_P(StreamConformance, SleepsAfterTheEnd) {
  const auto recorder = openReading(16);
  far().close();
  ASSERT_TRUE(runUntil([&] { return recorder->count(StreamEvent::endEncountered) == 1; }));
  EXPECT_TRUE(runUntil([&] { return loop.isWaiting(); }));
  const std::size_t events = recorder->events.size();
  flush(loop);
  EXPECT_EQ(recorder->events.size(), events);
  EXPECT_LE(events, 3U) << "open, perhaps bytes that turn out to be the end, the end";
}

TEST_P(StreamConformance, TellsAnErrorFromAnEnd) {
  const auto recorder = openReading(16);
  open(output(), std::make_shared<Recorder>());
  ASSERT_EQ(write({1, 2, 3}), 3);
  far().breakLink();
  ASSERT_TRUE(runUntil([&] { return recorder->count(StreamEvent::errorOccurred) == 1; }));
  flush(loop);
  EXPECT_EQ(recorder->events.all().back(), StreamEvent::errorOccurred);
  EXPECT_EQ(recorder->count(StreamEvent::errorOccurred), 1U);
  EXPECT_EQ(recorder->count(StreamEvent::endEncountered), 0U);
}

TEST_P(StreamConformance, HasNoBytesAfterAnError) {
  const auto recorder = openReading(16);
  open(output(), std::make_shared<Recorder>());
  ASSERT_EQ(write({1}), 1);
  far().breakLink();
  ASSERT_TRUE(runUntil([&] { return recorder->count(StreamEvent::errorOccurred) == 1; }));
  std::atomic<bool> available = true;
  inside(loop, [&] { available = input().hasBytesAvailable(); });
  EXPECT_FALSE(available);
}

TEST_P(StreamConformance, DeliversWhatIsWrittenInOrder) {
  open(output(), std::make_shared<Recorder>());
  EXPECT_EQ(write({1, 2, 3}), 3);
  EXPECT_EQ(write({4, 5}), 2);
  ASSERT_TRUE(runUntil([&] { return far().received().size() == 5; }));
  EXPECT_EQ(far().received(), (Bytes{1, 2, 3, 4, 5}));
}

TEST_P(StreamConformance, ReportsSpaceAgainAfterAShortWrite) {
  std::atomic<bool> stalled = true;
  std::atomic<std::size_t> spaceAfterStall = 0;
  const auto recorder = std::make_shared<Recorder>([&](StreamEvent event) {
    if (event == StreamEvent::hasSpaceAvailable && !stalled) ++spaceAfterStall;
  });
  open(output(), recorder);
  far().stall();
  const Bytes much(8U << 20U, 0x5A);
  const std::ptrdiff_t first = write(much);
  ASSERT_GT(first, 0);
  ASSERT_LT(first, static_cast<std::ptrdiff_t>(much.size()));
  EXPECT_EQ(write({1}), 0);
  flush(loop);
  stalled = false;
  far().resume();
  ASSERT_TRUE(
      runUntil([&] { return far().received().size() >= static_cast<std::size_t>(first) && spaceAfterStall > 0; }));
  EXPECT_EQ(write({7}), 1);
  ASSERT_TRUE(runUntil([&] { return far().received().size() > static_cast<std::size_t>(first); }));
  EXPECT_EQ(far().received().back(), 7);
}

TEST_P(StreamConformance, DoesNotReportSpaceForEver) {
  const auto recorder = std::make_shared<Recorder>();
  open(output(), recorder);
  flush(loop);
  EXPECT_TRUE(runUntil([&] { return loop.isWaiting(); }));
  EXPECT_LE(recorder->count(StreamEvent::hasSpaceAvailable), 1U);
}

TEST_P(StreamConformance, NeverReportsInsideACall) {
  std::atomic<bool> calling = false;
  std::atomic<bool> reentered = false;
  const auto recorder = std::make_shared<Recorder>([&](StreamEvent event) {
    reentered = reentered || calling;
    if (event == StreamEvent::hasBytesAvailable) readOnce(16);
  });
  far().send({1, 2, 3});
  inside(loop, [&] {
    calling = true;
    for (platform::Stream* stream :
         {static_cast<platform::Stream*>(&input()), static_cast<platform::Stream*>(&output())}) {
      stream->setDelegate(recorder);
      stream->scheduleInRunLoop(loop);
      stream->open();
    }
    readOnce(2);
    output().write(Bytes{1});
    calling = false;
  });
  flush(loop);
  EXPECT_GE(recorder->count(StreamEvent::openCompleted), 2U);
  EXPECT_FALSE(reentered);
}

TEST_P(StreamConformance, ReportsOnItsRunLoopsThread) {
  std::atomic<bool> elsewhere = false;
  const auto recorder = std::make_shared<Recorder>([&](StreamEvent event) {
    elsewhere = elsewhere || !thread->isCurrent();
    if (event == StreamEvent::hasBytesAvailable) readOnce(16);
  });
  open(input(), recorder);
  far().send({1});
  ASSERT_TRUE(runUntil([&] { return recorder->count(StreamEvent::hasBytesAvailable) >= 1; }));
  inside(loop, [&] { input().close(); });
  EXPECT_FALSE(elsewhere);
}

TEST_P(StreamConformance, ReportsNothingAfterClose) {
  const auto recorder = openReading(16);
  far().send({1});
  ASSERT_TRUE(runUntil([&] { return read.size() == 1; }));
  std::atomic<std::size_t> before = 0;
  inside(loop, [&] {
    far().send({2});
    input().close();
    input().close();
    before = recorder->events.size();
  });
  far().close();
  flush(loop);
  EXPECT_EQ(recorder->events.size(), before);
}

TEST_P(StreamConformance, ReportsNothingAfterLeavingItsRunLoop) {
  const auto recorder = openReading(16);
  std::atomic<std::size_t> before = 0;
  inside(loop, [&] {
    far().send({1});
    input().removeFromRunLoop(loop);
    before = recorder->events.size();
  });
  flush(loop);
  EXPECT_EQ(recorder->events.size(), before);
}

TEST_P(StreamConformance, CallsNoDelegateThatHasGone) {
  auto recorder = openReading(16);
  const std::weak_ptr<Recorder> watched = recorder;
  inside(loop, [&] { recorder.reset(); });
  ASSERT_TRUE(watched.expired()) << "the stream keeps its delegate";
  far().send({1, 2});
  flush(loop);
  EXPECT_EQ(read.size(), 0U);
}

TEST_P(StreamConformance, CallsNoDelegateThatWasTakenAway) {
  const auto recorder = openReading(16);
  std::atomic<std::size_t> before = 0;
  inside(loop, [&] {
    far().send({1});
    input().setDelegate({});
    before = recorder->events.size();
  });
  flush(loop);
  EXPECT_EQ(recorder->events.size(), before);
}

TEST_P(StreamConformance, LetsADelegateDestroyTheSessionInsideItsCall) {
  const auto recorder = std::make_shared<Recorder>([&](StreamEvent event) {
    if (event == StreamEvent::hasBytesAvailable) connection.host.reset();
  });
  open(input(), recorder);
  far().send({1, 2, 3});
  ASSERT_TRUE(runUntil([&] { return recorder->count(StreamEvent::hasBytesAvailable) == 1; }));
  flush(loop);
  EXPECT_EQ(recorder->events.all().back(), StreamEvent::hasBytesAvailable);
}

ZEL_CONFORMANCE_SUITE(StreamConformance);

}  // namespace
}  // namespace zel::test
