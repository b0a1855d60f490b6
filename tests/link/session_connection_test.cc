#include "link/session_connection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/simulated/simulated_platform.h"
#include "tests/link/bytes.h"

namespace zel::test {
namespace {

using testing::ElementsAre;

class RecordingOwner final : public ConnectionOwner {
 public:
  void streamFailed(SessionConnection&) override { ++failures; }
  void threadBeganAfterAnother() override { ++waited; }
  void threadEnded() override { ++ended; }
  std::span<std::uint8_t> readBuffer() override { return buffer; }
  std::int64_t stampSyncTime() override { return 0x0102030405060708; }
  void bytesWritten(std::size_t count) override { written += count; }

  Bytes buffer = Bytes(16);
  int failures = 0, waited = 0, ended = 0;
  std::size_t written = 0;
};

class RecordingStream final : public InboundStream {
 public:
  void appendBytes(const std::uint8_t* bytes, std::size_t length) override {
    received.insert(received.end(), bytes, bytes + length);
  }
  void parserData(ByteView lastRead) override {
    appendBytes(lastRead.data(), lastRead.size());
    parsed.push_back(received.size());
  }
  void clearData() override {}
  void setIsNeedDataSynchronism(bool) override {}

  Bytes received;
  std::vector<std::size_t> parsed;  // bytes received by each parse
};

class SessionConnectionTest : public testing::Test {
 protected:
  SessionConnectionTest() {
    platform::AccessoryDescription description;
    description.protocolStrings = {"com.zelcam.ucd"};
    camera = host.plug(description);
    connection = make(nullptr);
  }

  ~SessionConnectionTest() override {
    if (connection) connection->join();
  }

  std::shared_ptr<SessionConnection> make(std::shared_ptr<void> keepAlive) {
    auto session = host.ports().accessories.openSession(camera, "com.zelcam.ucd");
    return SessionConnection::create(owner, inbound, std::move(session), host.ports().threads, std::move(keepAlive));
  }
  void start(bool afterAnother = false) {
    connection->begin(afterAnother);
    host.runUntilIdle();
  }
  platform::ScriptedLink& link() { return *camera->current(); }

  platform::SimulatedPlatform host;
  std::shared_ptr<platform::ScriptedAccessory> camera;
  RecordingOwner owner;
  RecordingStream inbound;
  std::shared_ptr<SessionConnection> connection;
};

TEST_F(SessionConnectionTest, ParsesABurstOnceHoweverManyReadsItTakes) {
  start();
  link().send(repeated(40, 7));  // three reads of 16 at most
  host.runUntilIdle();
  EXPECT_EQ(inbound.received, repeated(40, 7));
  EXPECT_THAT(inbound.parsed, ElementsAre(40u));
}

TEST_F(SessionConnectionTest, ParsesBetweenTheReadsOfAnEndlessBurst) {
  start();
  link().send(repeated(300, 7));  // eight reads of 16 a burst
  host.runUntilIdle();
  EXPECT_THAT(inbound.parsed, ElementsAre(128u, 256u, 300u));
}

TEST_F(SessionConnectionTest, ReadsNothingMoreOnceItWasClosed) {
  start();
  link().send(bytes({1}));
  connection->close();
  host.runUntilIdle();
  EXPECT_THAT(inbound.parsed, testing::IsEmpty());
  EXPECT_TRUE(link().isClosed());
  EXPECT_EQ(owner.ended, 1);
}

TEST_F(SessionConnectionTest, WritesTheClockFrameWithTheOwnersTime) {
  start();
  connection->sendSyncTimeCmd();
  host.runUntilIdle();
  EXPECT_EQ(link().written(), bytes({0x10, 0, 0, 0, 4, 0, 0x49, 0x40, 8, 7, 6, 5, 4, 3, 2, 1}));
}

TEST_F(SessionConnectionTest, WritesWhatWasQueuedBeforeItsThreadBegan) {
  connection->writeData(bytes({1, 2}));
  start();
  EXPECT_EQ(link().written(), bytes({1, 2}));
}

TEST_F(SessionConnectionTest, ReadsNothingBeforeItBegins) {
  link().send(bytes({1, 2}));
  host.runUntilIdle();
  EXPECT_EQ(host.liveThreads("session thread"), 1);
  EXPECT_THAT(inbound.parsed, testing::IsEmpty());
  start();
  EXPECT_EQ(inbound.received, bytes({1, 2}));
}

TEST_F(SessionConnectionTest, EndsAThreadThatNeverBeganWithoutTellingItsOwner) {
  connection->close();
  host.runUntilIdle();
  EXPECT_EQ(host.liveThreads("session thread"), 0);
  EXPECT_TRUE(link().isClosed());
  EXPECT_EQ(owner.ended, 0);
}

// close() waits for nothing, because it may be called on the session thread itself, or while that thread is busy.
TEST_F(SessionConnectionTest, LeavesItToItsThreadToCloseTheStreams) {
  start();
  connection->close();
  EXPECT_EQ(host.liveThreads("session thread"), 1);
  EXPECT_FALSE(link().isClosed());
  host.runUntilIdle();
  EXPECT_EQ(host.liveThreads("session thread"), 0);
  EXPECT_TRUE(link().isClosed());
}

TEST_F(SessionConnectionTest, HasEndedAThreadThatNeverBeganOnceItIsClosed) {
  connection->close();
  EXPECT_EQ(host.liveThreads("session thread"), 0);
  EXPECT_TRUE(link().isClosed());
}

class NoThreads final : public platform::Threads {
 public:
  explicit NoThreads(platform::Threads& platform) : platform_(platform) {}
  std::unique_ptr<platform::Thread> start(std::string, platform::ThreadBody) override { return nullptr; }
  platform::RunLoop& currentRunLoop() override { return platform_.currentRunLoop(); }

 private:
  platform::Threads& platform_;
};

TEST_F(SessionConnectionTest, IsNotMadeWhereThereIsNoThread) {
  NoThreads none(host.ports().threads);
  auto session = host.ports().accessories.openSession(camera, "com.zelcam.ucd");
  EXPECT_EQ(SessionConnection::create(owner, inbound, std::move(session), none, nullptr), nullptr);
}

TEST_F(SessionConnectionTest, ReportsAStreamErrorOnce) {
  start();
  link().failReads();
  host.runUntilIdle();
  EXPECT_EQ(owner.failures, 1);
}

TEST_F(SessionConnectionTest, ReportsAFailedWriteAsAStreamError) {
  start();
  link().failWrites();
  connection->writeData(bytes({1}));
  host.runUntilIdle();
  EXPECT_EQ(owner.failures, 1);
}

TEST_F(SessionConnectionTest, TellsItsOwnerThatItHadToWait) {
  start(true);
  EXPECT_EQ(owner.waited, 1);
}

TEST_F(SessionConnectionTest, ClosesItsStreamsWhenItIsJoinedWithoutAClose) {
  start();
  connection->join();
  EXPECT_TRUE(link().isClosed());
  EXPECT_EQ(owner.ended, 1);
}

TEST_F(SessionConnectionTest, IsGoneOnceItsThreadHasEndedAndNobodyHoldsIt) {
  start();
  const std::weak_ptr<SessionConnection> watched = connection;
  connection->close();
  connection.reset();
  host.runUntilIdle();
  EXPECT_TRUE(watched.expired());
}

TEST_F(SessionConnectionTest, LetsGoOfWhatItKeptAliveWhenItsThreadEnds) {
  auto kept = std::make_shared<int>(1);
  const std::weak_ptr<int> watched = kept;
  connection->close();
  connection = make(std::move(kept));
  start();
  EXPECT_FALSE(watched.expired());
  connection->close();
  host.runUntilIdle();
  EXPECT_TRUE(watched.expired());
}

}  // namespace
}  // namespace zel::test
