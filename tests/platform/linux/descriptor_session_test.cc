#include "platform/linux/descriptor_session.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>

#include "platform/linux/linux_run_loop.h"
#include "platform/linux/unique_descriptor.h"
#include "tests/platform/linux/waiting.h"

namespace zel::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr StreamEvent kOpen = StreamEvent::openCompleted;
constexpr StreamEvent kBytes = StreamEvent::hasBytesAvailable;
constexpr StreamEvent kSpace = StreamEvent::hasSpaceAvailable;
constexpr StreamEvent kError = StreamEvent::errorOccurred;
constexpr StreamEvent kEnd = StreamEvent::endEncountered;

// Keeps the events of one stream and answers them as told. The loop runs on the test's own thread.
class Delegate final : public StreamDelegate {
 public:
  void streamHandleEvent(Stream& stream, StreamEvent event) override {
    events.push_back(event);
    if (answer) answer(stream, event);
  }

  std::vector<StreamEvent> events;
  std::function<void(Stream&, StreamEvent)> answer;
};

class DescriptorSessionTest : public ::testing::Test {
 protected:
  DescriptorSessionTest() {
    std::array<int, 2> ends = {-1, -1};
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    session_ = makeDescriptorSession(ends[0]);
    far_.reset(ends[1]);
  }

  void openInput() {
    input().setDelegate(delegate_);
    input().scheduleInRunLoop(*loop_);
    input().open();
  }
  void openOutput() {
    output().setDelegate(delegate_);
    output().scheduleInRunLoop(*loop_);
    output().open();
  }
  InputStream& input() { return session_->inputStream(); }
  OutputStream& output() { return session_->outputStream(); }

  void send(std::size_t count) {
    const std::vector<char> bytes(count, 'x');
    ASSERT_EQ(write(far_.get(), bytes.data(), count), static_cast<ssize_t>(count));
  }
  std::ptrdiff_t readUpTo(std::size_t count) {
    std::vector<std::uint8_t> buffer(count);
    return input().read(buffer);
  }
  std::ptrdiff_t writeBytes(std::size_t count) { return output().write(std::vector<std::uint8_t>(count, 'y')); }
  // Reads everything each time there is something.
  void readEverything() {
    delegate_->answer = [this](Stream&, StreamEvent event) {
      if (event == kBytes) readUpTo(1000);
    };
  }
  // The far end takes all that waits for it.
  void receiveAll() {
    std::array<char, 65536> bytes = {};
    while (recv(far_.get(), bytes.data(), bytes.size(), MSG_DONTWAIT) > 0) continue;
  }
  void runUntil(std::size_t events) {
    const auto limit = std::chrono::steady_clock::now() + test::kLimit;
    while (delegate_->events.size() < events && std::chrono::steady_clock::now() < limit) {
      loop_->runFor(std::chrono::milliseconds(1));
    }
  }
  // What would come, has come.
  void settle() {
    for (int round = 0; round < 3; ++round) loop_->drain();
  }

  const std::shared_ptr<LinuxRunLoop> loop_ = LinuxRunLoop::create();
  const std::shared_ptr<Delegate> delegate_ = std::make_shared<Delegate>();
  std::unique_ptr<AccessorySession> session_;
  UniqueDescriptor far_;
};

TEST_F(DescriptorSessionTest, OpeningIsReportedOnceFromTheRunLoop) {
  openInput();
  EXPECT_THAT(delegate_->events, IsEmpty()) << "never inside the call";
  input().open();
  settle();
  EXPECT_THAT(delegate_->events, ElementsAre(kOpen));
}

TEST_F(DescriptorSessionTest, ScheduleMayFollowOpen) {
  input().open();
  input().setDelegate(delegate_);
  input().scheduleInRunLoop(*loop_);
  send(1);
  readEverything();
  runUntil(2);
  EXPECT_THAT(delegate_->events, ElementsAre(kOpen, kBytes));
}

TEST_F(DescriptorSessionTest, BytesThatWereThereBeforeOpeningAreReported) {
  send(3);
  openInput();
  readEverything();
  runUntil(2);
  settle();
  EXPECT_THAT(delegate_->events, ElementsAre(kOpen, kBytes));
}

TEST_F(DescriptorSessionTest, BytesAreReportedAgainWhileSomeAreLeftUnread) {
  send(10);
  openInput();
  delegate_->answer = [this](Stream&, StreamEvent event) {
    if (event == kBytes) readUpTo(4);
  };
  runUntil(4);
  settle();
  EXPECT_THAT(delegate_->events, ElementsAre(kOpen, kBytes, kBytes, kBytes)) << "4, 4 and 2 bytes";
}

TEST_F(DescriptorSessionTest, BytesThatNobodyReadsAreReportedAgain) {
  send(1);
  openInput();
  runUntil(4);
  ASSERT_GE(delegate_->events.size(), 4U);
  EXPECT_EQ(delegate_->events[3], kBytes);
}

TEST_F(DescriptorSessionTest, ReadThatIsNotFilledMeansThatNothingIsLeft) {
  send(10);
  openInput();
  settle();
  EXPECT_TRUE(input().hasBytesAvailable());
  EXPECT_EQ(readUpTo(4), 4);
  EXPECT_TRUE(input().hasBytesAvailable());
  EXPECT_EQ(readUpTo(100), 6);
  EXPECT_FALSE(input().hasBytesAvailable());
  EXPECT_EQ(readUpTo(100), 0);
}

TEST_F(DescriptorSessionTest, NothingCanBeReadBeforeOpening) {
  send(1);
  EXPECT_FALSE(input().hasBytesAvailable());
  EXPECT_EQ(readUpTo(1), 0);
}

TEST_F(DescriptorSessionTest, EndIsReportedOnceBehindTheLastByte) {
  send(2);
  far_.reset();
  openInput();
  readEverything();
  runUntil(4);
  settle();
  EXPECT_THAT(delegate_->events, ElementsAre(kOpen, kBytes, kBytes, kEnd));
  EXPECT_FALSE(input().hasBytesAvailable());
  EXPECT_EQ(readUpTo(1), 0);
}

TEST_F(DescriptorSessionTest, EndedStreamLetsTheLoopSleep) {
  far_.reset();
  openInput();
  readEverything();
  runUntil(3);
  const auto before = std::clock();
  loop_->runFor(std::chrono::milliseconds(100));
  EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 50) << "processor time of 100 idle milliseconds";
  EXPECT_THAT(delegate_->events, ElementsAre(kOpen, kBytes, kEnd));
}

TEST_F(DescriptorSessionTest, UnreadBytesWithNobodyToTellLetTheLoopSleep) {
  send(1);
  openInput();
  input().setDelegate({});
  settle();
  const auto before = std::clock();
  loop_->runFor(std::chrono::milliseconds(100));
  EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 50);
  input().setDelegate(delegate_);
  readEverything();
  runUntil(1);
  EXPECT_THAT(delegate_->events, ElementsAre(kBytes)) << "a new delegate hears of them";
}

TEST_F(DescriptorSessionTest, ReadErrorIsReportedOnceAndLast) {
  openOutput();
  ASSERT_EQ(writeBytes(1), 1);  // unread by the far end, so that its going resets the connection
  output().setDelegate({});
  openInput();
  far_.reset();
  std::ptrdiff_t count = 0;
  delegate_->answer = [&](Stream&, StreamEvent event) {
    if (event == kBytes) count = readUpTo(10);
  };
  runUntil(3);
  settle();
  EXPECT_EQ(count, -1);
  EXPECT_EQ(readUpTo(10), -1);
  EXPECT_THAT(delegate_->events, ElementsAre(kOpen, kBytes, kError));
}

TEST_F(DescriptorSessionTest, WriteErrorIsReportedOnceFromTheRunLoopWithoutASignal) {
  signal(SIGPIPE, SIG_DFL);  // would end the test
  openOutput();
  settle();
  far_.reset();
  EXPECT_EQ(writeBytes(1), -1);
  EXPECT_EQ(writeBytes(1), -1);
  EXPECT_FALSE(output().hasSpaceAvailable());
  EXPECT_THAT(delegate_->events, ElementsAre(kOpen)) << "never inside the call";
  settle();
  EXPECT_THAT(delegate_->events, ElementsAre(kOpen, kError));
}

TEST_F(DescriptorSessionTest, ErrorBeforeTheOpeningIsReportedStillFollowsIt) {
  far_.reset();
  openOutput();
  EXPECT_EQ(writeBytes(1), -1);
  settle();
  EXPECT_THAT(delegate_->events, ElementsAre(kOpen, kError));
}

TEST_F(DescriptorSessionTest, ShortWriteIsFollowedBySpaceOnceThereIsSome) {
  openOutput();
  settle();
  EXPECT_TRUE(output().hasSpaceAvailable());
  const std::ptrdiff_t taken = writeBytes(10'000'000);
  ASSERT_GT(taken, 0);
  ASSERT_LT(taken, 10'000'000);
  EXPECT_FALSE(output().hasSpaceAvailable());
  EXPECT_EQ(writeBytes(1), 0);
  settle();
  EXPECT_THAT(delegate_->events, ElementsAre(kOpen));
  receiveAll();
  runUntil(2);
  settle();
  EXPECT_THAT(delegate_->events, ElementsAre(kOpen, kSpace));
  EXPECT_GT(writeBytes(1), 0);
}

TEST_F(DescriptorSessionTest, FullStreamWhoseFarEndGoesReportsAnError) {
  openOutput();
  writeBytes(10'000'000);
  delegate_->answer = [this](Stream&, StreamEvent event) {
    if (event == kSpace) writeBytes(1);
  };
  settle();
  far_.reset();
  runUntil(3);
  EXPECT_THAT(delegate_->events, ElementsAre(kOpen, kSpace, kError));
}

TEST_F(DescriptorSessionTest, AfterCloseNoEventComesThoughOneWasQueued) {
  openInput();
  send(1);
  loop_->perform([this] { input().close(); });
  settle();
  EXPECT_THAT(delegate_->events, ElementsAre(kOpen));
  input().close();
  EXPECT_EQ(readUpTo(1), 0);
}

TEST_F(DescriptorSessionTest, QueuedErrorIsNotReportedAfterClose) {
  openOutput();
  settle();
  far_.reset();
  EXPECT_EQ(writeBytes(1), -1);
  output().close();
  settle();
  EXPECT_THAT(delegate_->events, ElementsAre(kOpen));
}

TEST_F(DescriptorSessionTest, FarEndSeesTheEndOnceBothDirectionsAreClosed) {
  openInput();
  openOutput();
  settle();
  char byte = 0;
  input().close();
  EXPECT_EQ(recv(far_.get(), &byte, 1, MSG_DONTWAIT), -1);
  output().close();
  EXPECT_EQ(recv(far_.get(), &byte, 1, MSG_DONTWAIT), 0);
}

TEST_F(DescriptorSessionTest, SessionMayBeDestroyedInsideAnEvent) {
  openInput();
  openOutput();
  send(1);
  delegate_->answer = [this](Stream&, StreamEvent event) {
    if (event == kBytes) session_.reset();
  };
  runUntil(3);
  settle();
  EXPECT_THAT(delegate_->events, ElementsAre(kOpen, kOpen, kBytes));
  char byte = 0;
  EXPECT_LE(recv(far_.get(), &byte, 1, MSG_DONTWAIT), 0) << "the descriptor is closed";
}

TEST_F(DescriptorSessionTest, DestroyedDelegateHearsNothing) {
  openInput();
  auto another = std::make_shared<Delegate>();
  input().setDelegate(another);
  another.reset();
  send(1);
  settle();
  EXPECT_THAT(delegate_->events, IsEmpty());
}

TEST_F(DescriptorSessionTest, RemovedStreamIsSilentUntilItIsScheduledAgain) {
  openInput();
  settle();
  input().removeFromRunLoop(*loop_);
  send(1);
  settle();
  EXPECT_THAT(delegate_->events, ElementsAre(kOpen));
  readEverything();
  input().scheduleInRunLoop(*loop_);
  runUntil(2);
  EXPECT_THAT(delegate_->events, ElementsAre(kOpen, kBytes));
}

TEST_F(DescriptorSessionTest, StreamsOutliveARunLoopThatHasEnded) {
  openInput();
  openOutput();
  writeBytes(10'000'000);
  loop_->perform([this] { loop_->stop(); });
  loop_->run();
  input().close();
  session_.reset();
}

TEST_F(DescriptorSessionTest, ClosedStreamHoldsTheLoopNoLonger) {
  openInput();
  settle();
  loop_->stop();
  session_.reset();
  EXPECT_EQ(loop_.use_count(), 1);
}

TEST_F(DescriptorSessionTest, DescriptorIsNonBlockingAndNotInherited) {
  std::array<int, 2> ends = {-1, -1};
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
  const UniqueDescriptor far(ends[1]);
  const auto session = makeDescriptorSession(ends[0]);
  ASSERT_NE(session, nullptr);
  EXPECT_NE(fcntl(ends[0], F_GETFL) & O_NONBLOCK, 0);
  EXPECT_NE(fcntl(ends[0], F_GETFD) & FD_CLOEXEC, 0);
}

TEST_F(DescriptorSessionTest, BadDescriptorGivesNoSession) { EXPECT_EQ(makeDescriptorSession(-1), nullptr); }

}  // namespace
}  // namespace zel::platform
