#include "command/request_engine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/command/command_test.h"
#include "tests/command/full_queues.h"
#include "tests/link/recording_consumers.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t kWhiteBalance = 43;
constexpr char kYes[] = "1AC0 01";

class RequestEngineTest : public CommandTest {
 protected:
  // The stack, which outlives the log, would tell the photo of its end.
  ~RequestEngineTest() override { stack.parser().setPhotoParser(nullptr); }

  RebackDic into(const std::string& who) {
    return [this, who](const std::optional<ZELMessageFields>& reply) {
      const auto error = reply ? reply->get<ZELError>("NSError") : std::nullopt;
      if (error) {
        EXPECT_EQ(error->domain, "NSOSStatusErrorDomain");
        EXPECT_FALSE(error->description);
      }
      log.push_back(who + (error ? " " + std::to_string(error->code) : " done"));
    };
  }
  void ask(const std::string& who, std::int64_t type = kWhiteBalance) {
    ucd().sendMsg(type, {{"ucharValue", std::uint8_t{2}}}, into(who));
  }
  void stopFrames() {
    host.advance(5);
    ASSERT_EQ(accessory().status(), 3u);
  }

  std::vector<std::string> log;
};

TEST_F(RequestEngineTest, CompletesARequestOnTheMainQueue) {
  ask("a");
  host.runUntilIdle();
  ucd().responseCameraMsg(kWhiteBalance, std::nullopt);
  EXPECT_THAT(log, IsEmpty());
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("a done"));
}

TEST_F(RequestEngineTest, HandsTheReplyDictionaryOnUnchanged) {
  std::optional<ZELMessageFields> got;
  ucd().sendMsg(kWhiteBalance, {}, [&](const auto& reply) { got = reply; });
  const ZELMessageFields reply{{"nsString", std::string("x")}};
  ucd().responseCameraMsg(kWhiteBalance, reply);
  host.runUntilIdle();
  EXPECT_EQ(got, reply);
}

TEST_F(RequestEngineTest, FailsOneRequestWith101) {
  ask("a");
  ucd().responseCameraErrorMsg(kWhiteBalance);
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("a 101"));
}

TEST_F(RequestEngineTest, DropsAReplyThatNobodyWaitsFor) {
  answer(kYes);
  ask("a");
  host.runUntilIdle();
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(RequestEngineTest, GivesTheFirstReplyToTheSecondRequestOfAType) {
  ask("first");
  ask("second");
  host.runUntilIdle();
  answer(kYes);
  answer(kYes);
  EXPECT_THAT(log, ElementsAre("second done"));
}

TEST_F(RequestEngineTest, KeepsRequestsOfDifferentTypesApart) {
  ask("a", 43);
  ask("b", 47);
  host.runUntilIdle();
  answer("1EC0 01");
  EXPECT_THAT(log, ElementsAre("b done"));
}

TEST_F(RequestEngineTest, SendsWithoutAHandler) {
  ucd().sendMsg(kWhiteBalance, {{"ucharValue", std::uint8_t{2}}}, nullptr);
  EXPECT_EQ(written(), hex("09000000 0400 1A40 02"));
  answer(kYes);
}

TEST_F(RequestEngineTest, SendsNothingForATypeThatNobodyRegistered) {
  ask("a", 5);
  EXPECT_THAT(written(), IsEmpty());
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(RequestEngineTest, WaitsForGoodForAReplyThatNeverComes) {
  ask("a");
  for (int second = 0; second < 3600; ++second) {
    send(kAudioFrame);
    host.advance(1);
  }
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(RequestEngineTest, FailsARequestOnceOnTheMainQueueWhileNothingIsConnected) {
  host.unplug(camera);
  host.runUntilIdle();
  link().takeWritten();
  ask("a");
  EXPECT_THAT(log, IsEmpty());
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("a 100"));
  ucd().sendMsg(kWhiteBalance, {}, nullptr);
  host.advance(10);
  EXPECT_THAT(log, ElementsAre("a 100"));
  attach();  // nothing was kept for the next session either
  EXPECT_THAT(link().written(), IsEmpty());
}

TEST_F(RequestEngineTest, FailsARequestBeforeTheFirstFrame) {
  link().fire(platform::StreamEvent::errorOccurred);  // the session is opened anew
  host.runUntilIdle();
  ASSERT_EQ(accessory().status(), 1u);
  link().takeWritten();
  ask("a");
  EXPECT_THAT(written(), IsEmpty());
  EXPECT_THAT(log, ElementsAre("a 100"));
}

TEST_F(RequestEngineTest, FailsAllWith100WhereFramesStopAndStillSends) {
  ask("a", 43);
  ask("b", 47);
  stopFrames();
  EXPECT_THAT(log, ElementsAre("a 100", "b 100"));
  link().takeWritten();
  ask("c");
  EXPECT_EQ(written(), hex("09000000 0400 1A40 02"));
  answer(kYes);
  EXPECT_EQ(log.back(), "c done");
}

TEST_F(RequestEngineTest, FailsNothingWhereFramesComeBack) {
  stopFrames();
  ask("a");
  send(kAudioFrame);
  ASSERT_EQ(accessory().status(), 2u);
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(RequestEngineTest, FailsAllWith100WhereTheSessionIsOpenedAnew) {
  ask("a");
  link().fire(platform::StreamEvent::errorOccurred);
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("a 100"));
}

TEST_F(RequestEngineTest, FailsAllWith100WhereTheCameraLeaves) {
  ask("a");
  stack.ucd().sendFileWithType(
      1, "a", ZELData(), [&](const auto& error) { log.push_back("file " + std::to_string(error ? error->code : 0)); });
  host.unplug(camera);
  host.runUntilIdle();
  EXPECT_THAT(log, testing::UnorderedElementsAre("a 100", "file 100"));
}

TEST_F(RequestEngineTest, FailsTheCaptureEvenWhereNoHandlerWaits) {
  const auto photo = std::make_shared<RecordingPhoto>(log);
  stack.parser().setPhotoParser(photo);
  ucd().responseAllReblackBlockWithErrorCode(100);
  EXPECT_THAT(log, IsEmpty());
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("photoError 100"));
}

TEST_F(RequestEngineTest, FailsTheCaptureAfterTheHandlers) {
  const auto photo = std::make_shared<RecordingPhoto>(log);
  stack.parser().setPhotoParser(photo);
  ask("b", 47);
  ask("a", 43);
  ucd().responseAllReblackBlockWithErrorCode(7);
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("a 7", "b 7", "photoError 7"));
}

TEST_F(RequestEngineTest, FailsTheCaptureAndEachHandlerWhereThereIsNoMemoryForOneTaskForAll) {
  FullQueues queues(host.ports().queues);
  CameraStack full(
      {host.ports().clock, host.ports().threads, queues, host.ports().accessories, host.ports().notifications});
  full.parser().setPhotoParser(std::make_shared<RecordingPhoto>(log));
  full.ucd().msgReqSendSyncData(ZELData(bytes({1})), into("marker"));
  queues.main.refuse(1);
  full.ucd().responseAllReblackBlockWithErrorCode(100);
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("photoError 100", "marker 100"));
}

// The stack's last owner may be a task that outlives the main queue.
TEST_F(RequestEngineTest, PostsNothingAtItsEndWhereNobodyWaits) {
  FullQueues queues(host.ports().queues);
  auto waiting = std::make_unique<CameraStack>(platform::Ports{host.ports().clock, host.ports().threads, queues,
                                                               host.ports().accessories, host.ports().notifications});
  waiting->ucd().msgReqSendSyncData(ZELData(bytes({1})), into("marker"));
  waiting->ucd().responseAllReblackBlockWithErrorCode(100);
  EXPECT_EQ(queues.main.posted(), 1);
  waiting->ucd().responseAllReblackBlockWithErrorCode(100);
  waiting.reset();
  EXPECT_EQ(queues.main.posted(), 1);
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("marker 100"));
}

// The reply comes while the frame is on its way and the handler is not stored yet: here, out of the packer.
TEST_F(RequestEngineTest, LosesNoReplyThatOvertakesItsHandler) {
  const auto replyDuringPacking = [this](std::int32_t, const ZELMessageFields&, void*) {
    const Bytes reply = hex(kYes);
    stack.parser().parserMsg(reply.data(), reply.size());
    return std::optional<ZELData>();
  };
  stack.parser().registerMsgPacket(CameraMsgPacket(0x401A, replyDuringPacking), kWhiteBalance);
  ask("a");
  EXPECT_THAT(log, IsEmpty());
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("a done"));
  answer(kYes);
  EXPECT_THAT(log, ElementsAre("a done"));
}

TEST_F(RequestEngineTest, FailsARequestThatIsCaughtBetweenWritingAndStoring) {
  const auto lossDuringPacking = [this](std::int32_t, const ZELMessageFields&, void*) {
    ucd().responseAllReblackBlockWithErrorCode(100);
    return std::optional<ZELData>();
  };
  stack.parser().registerMsgPacket(CameraMsgPacket(0x401A, lossDuringPacking), kWhiteBalance);
  ask("a");
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("a 100"));
}

TEST_F(RequestEngineTest, GivesAnOvertakingReplyToTheHandlerThatStillWaits) {
  ask("first");
  const auto replyDuringPacking = [this](std::int32_t, const ZELMessageFields&, void*) {
    const Bytes reply = hex(kYes);
    stack.parser().parserMsg(reply.data(), reply.size());
    return std::optional<ZELData>();
  };
  stack.parser().registerMsgPacket(CameraMsgPacket(0x401A, replyDuringPacking), kWhiteBalance);
  ask("second");
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("first done"));
  answer(kYes);
  EXPECT_THAT(log, ElementsAre("first done", "second done"));
}

TEST_F(RequestEngineTest, LetsAHandlerSendTheNextRequest) {
  ucd().sendMsg(kWhiteBalance, {}, [this](const auto&) { ask("next"); });
  host.runUntilIdle();
  answer(kYes);
  answer(kYes);
  EXPECT_THAT(log, ElementsAre("next done"));
}

TEST_F(RequestEngineTest, CompletesWhatStillWaitsWhereTheStackGoes) {
  auto other = std::make_unique<CameraStack>(host.ports(), "E1A0009");
  const auto second = host.plug(cameraDescription(9));
  other->accessory().openCamera();
  host.runUntilIdle();
  second->current()->send(join(kMarker, kAudioFrame));
  host.runUntilIdle();
  second->current()->send(kAudioFrame);
  host.runUntilIdle();
  other->ucd().sendMsg(kWhiteBalance, {}, into("a"));
  other.reset();
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("a 100"));
}

// The shared readers of replies.
class SharedReader : public RequestEngineTest {
 protected:
  using Reader = void (ZELCameraUCD::*)(const ZELCameraUCD::Data&, std::int64_t);

  std::string outcomeOf(Reader reader, std::optional<Bytes> body, const char* key = nullptr) {
    std::string text;
    ucd().sendMsg(kWhiteBalance, {}, [&](const auto& reply) {
      const auto error = reply ? reply->template get<ZELError>("NSError") : std::nullopt;
      text = error ? std::to_string(error->code) : reply ? valueIn(*reply, key) : "no dictionary";
    });
    (ucd().*reader)(body ? ZELCameraUCD::Data(ZELData(*body)) : std::nullopt, kWhiteBalance);
    host.runUntilIdle();
    return text;
  }
  static std::string valueIn(const ZELMessageFields& reply, const char* key) {
    if (const auto value = reply.get<std::uint8_t>(key)) return "u8 " + std::to_string(*value);
    if (const auto value = reply.get<std::int16_t>(key)) return "s16 " + std::to_string(*value);
    if (const auto value = reply.get<std::uint32_t>(key)) return "u32 " + std::to_string(*value);
    return "missing";
  }
};

TEST_F(SharedReader, OfAFlagTakesAnyByteButZero) {
  constexpr Reader kReader = &ZELCameraUCD::parserReceiveUint8ResponseData;
  EXPECT_EQ(outcomeOf(kReader, bytes({1})), "no dictionary");
  EXPECT_EQ(outcomeOf(kReader, bytes({255, 9})), "no dictionary");
  EXPECT_EQ(outcomeOf(kReader, bytes({0})), "101");
  EXPECT_EQ(outcomeOf(kReader, Bytes()), "101");
  EXPECT_EQ(outcomeOf(kReader, std::nullopt), "101");
}

TEST_F(SharedReader, OfAByteTakesZeroToo) {
  constexpr Reader kReader = &ZELCameraUCD::parserReceiveUint8ValueData;
  EXPECT_EQ(outcomeOf(kReader, bytes({0}), "ucharValue"), "u8 0");
  EXPECT_EQ(outcomeOf(kReader, bytes({7, 9}), "ucharValue"), "u8 7");
  EXPECT_EQ(outcomeOf(kReader, std::nullopt), "101");
}

TEST_F(SharedReader, OfAFlagAndAByteNeedsBoth) {
  constexpr Reader kReader = &ZELCameraUCD::parserReceiveUint8ResponseAndUint8ValueData;
  EXPECT_EQ(outcomeOf(kReader, bytes({1, 7}), "ucharValue"), "u8 7");
  EXPECT_EQ(outcomeOf(kReader, bytes({1})), "101");
  EXPECT_EQ(outcomeOf(kReader, bytes({0, 7})), "101");
}

TEST_F(SharedReader, OfAFlagAndAShortNeedsThreeBytes) {
  constexpr Reader kReader = &ZELCameraUCD::parserReceiveUint8ResponseAndInt16ValueData;
  EXPECT_EQ(outcomeOf(kReader, bytes({1, 0xFE, 0xFF}), "shortValue"), "s16 -2");
  EXPECT_EQ(outcomeOf(kReader, bytes({1, 0xFE})), "101");
  EXPECT_EQ(outcomeOf(kReader, bytes({0, 0xFE, 0xFF})), "101");
}

TEST_F(SharedReader, OfAFlagAndAUintNeedsFiveBytes) {
  constexpr Reader kReader = &ZELCameraUCD::parserReceiveUint8ResponseAndUint32ValueData;
  EXPECT_EQ(outcomeOf(kReader, bytes({1, 4, 3, 2, 1}), "uintValue"), "u32 16909060");
  EXPECT_EQ(outcomeOf(kReader, bytes({1, 4, 3, 2})), "101");
  EXPECT_EQ(outcomeOf(kReader, bytes({0, 4, 3, 2, 1})), "101");
}

}  // namespace
}  // namespace zel::test
