// The requests whose bytes or replies need a story of their own.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/command/command_test.h"
#include "tests/link/recording_consumers.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class OddRequestsTest : public CommandTest {
 protected:
  Outcome outcome;
};

// The body of the one message that was written.
Bytes bodyOf(const Bytes& frame) { return frame.size() < 8 ? Bytes() : Bytes(frame.begin() + 8, frame.end()); }

TEST_F(OddRequestsTest, SendsTheLowByteOfAGpsTimeout) {
  ucd().msgReqSetGPSTimeout(300, outcome);
  EXPECT_EQ(written(), hex("0A000000 0400 3140 2C00"));
}

TEST_F(OddRequestsTest, SendsMeteringWeightsAsTheMeteringModeZero) {
  ucd().msgReqSetAEMMWeight({}, outcome);
  EXPECT_EQ(written(), hex("09000000 0400 1640 00"));
  answer("17C0 01");  // the weights' own reply is nobody's
  EXPECT_EQ(outcome.calls, 0);
  answer("16C0 01");
  EXPECT_EQ(outcome.text, "ok");
}

// The operation of that name does not; a host that knows the number can.
TEST_F(OddRequestsTest, SendsMeteringWeightsUnderTheirOwnType) {
  ZELIPAEMMWeight weights{};
  weights.weights[0] = 1;
  weights.weights[95] = 2;
  ucd().sendMsg(40, {{"IPAEMMWeight", weights}}, [&](const auto& reply) { outcome.take(std::nullopt, reply ? 1 : 0); });
  EXPECT_EQ(written(), join(hex("68000000 0400 1740 01"), Bytes(94), bytes({2})));
  answer("17C0 01");
  EXPECT_EQ(outcome.text, "ok 0");
}

TEST_F(OddRequestsTest, AreMadeWithoutHandlersToo) {
  ucd().msgReqGetGPSTimeoutWithRebackBlock(nullptr);
  ucd().msgCmdShutterWithGps({}, {}, {}, nullptr, nullptr);
  ucd().msgCmdShutterAEBWithGps({}, {}, {}, {}, {}, nullptr, nullptr);
  EXPECT_EQ(written().size(), 8u + 72u + 82u);
  for (const char* reply : {"32C0 01 2C01", "0780", "0F80"}) answer(reply);
  send(join(bytes({71, 0, 0, 0, 3, 0}), Bytes(64), bytes({1})));
}

TEST_F(OddRequestsTest, NeverSendsAnOrientation) {
  ucd().msgReqUpdateOrientation({1, 2, 3, 4});
  ucd().newMsgReqUpdateOrientation(ZELMediaOrientation::initWithX(1, 2, 3, 4));
  EXPECT_THAT(written(), IsEmpty());
}

TEST_F(OddRequestsTest, FailsACaptureReplyOfTwelveBytes) {
  ucd().msgCmdStopRecordWithRebackBlock(outcome);
  answer("0980 04030201 0102030405060708");
  EXPECT_EQ(outcome.text, "error 101 0 0 none");
}

TEST_F(OddRequestsTest, TakesACaptureReplyOfThirteenBytesWithAnEmptyName) {
  ucd().msgCmdStopRecordWithRebackBlock(outcome);
  answer("0980 04030201 0102030405060708 00");
  EXPECT_EQ(outcome.text, "ok 16909060 578437695752307201 \"\"");
}

TEST_F(OddRequestsTest, FailsACaptureWhoseNameIsNotUtf8) {
  ucd().msgCmdStopRecordWithRebackBlock(outcome);
  answer("0980 04030201 0102030405060708 FF00");
  EXPECT_EQ(outcome.text, "error 101 0 0 none");
}

TEST_F(OddRequestsTest, TakesACaptureNameInUtf8AndWithoutItsEnd) {
  ucd().msgCmdStopRecordWithRebackBlock(outcome);
  answer("0980 04030201 0102030405060708 C3A9");
  EXPECT_EQ(outcome.text, "ok 16909060 578437695752307201 \"\xC3\xA9\"");
}

TEST_F(OddRequestsTest, GivesABracketItsNumbersBoxed) {
  std::optional<std::uint32_t> time;
  std::optional<std::uint64_t> size;
  ucd().msgCmdShutterAEBWithGps({}, {}, {}, {2, {}}, {},
                                [&](const auto&, const std::optional<std::uint32_t>& fileTime,
                                    const std::optional<std::uint64_t>& fileSize, const auto&) {
                                  time = fileTime;
                                  size = fileSize;
                                },
                                {});
  answer("0F80 04030201 0102030405060708 00");
  EXPECT_EQ(time, 16909060u);
  EXPECT_EQ(size, 578437695752307201u);
}

TEST_F(OddRequestsTest, DeliversThePhotoThatFollowsItsReply) {
  Outcome photo;
  ucd().msgCmdShutterWithGps({}, {}, {}, outcome, photo);
  answer("0780 00000000 0000000000000000 00");
  EXPECT_EQ(photo.calls, 0);
  Bytes payload = text("A.JPG");
  payload.resize(64);
  send(join(bytes({72, 0, 0, 0, 3, 0}), payload, bytes({0xFF, 0xD8})));
  EXPECT_EQ(photo.text, "ok \"A.JPG\" ffd8");
}

TEST_F(OddRequestsTest, ExpectsAsManyPicturesAsTheBracketCounts) {
  int names = -1;
  ucd().msgCmdShutterAEBWithGps({}, {}, {}, {2, {-1, 1}}, {}, {}, [&](const auto&, const auto& list, const auto&) {
    names = static_cast<int>(list.size());
  });
  const Bytes photo = join(bytes({71, 0, 0, 0, 3, 0}), Bytes(64), bytes({1}));
  send(photo);
  EXPECT_EQ(names, -1);
  send(photo);
  EXPECT_EQ(names, 2);
}

TEST_F(OddRequestsTest, FailsTheCaptureOfAShutterThatIsRefused) {
  Outcome photo;
  ucd().msgCmdShutterExtraWithGps({}, {}, {}, {}, outcome, photo);
  answer("1180");
  EXPECT_EQ(outcome.text, "error 101 0 0 none");
  EXPECT_EQ(photo.text, "error 101 none none");
}

TEST_F(OddRequestsTest, FailsTheCaptureOfAPlainShutterThatIsRefused) {
  Outcome photo;
  ucd().msgCmdShutterWithGps({}, {}, {}, outcome, photo);
  answer("0780");
  EXPECT_EQ(outcome.text, "error 101 0 0 none");
  EXPECT_EQ(photo.text, "error 101 none none");
}

TEST_F(OddRequestsTest, FailsTheSeriesOfABracketThatIsRefused) {
  int photoAnswers = 0;
  ucd().msgCmdShutterAEBWithGps({}, {}, {}, {2, {-1, 1}}, {}, outcome,
                                [&](const auto& error, const auto& names, const auto& images) {
                                  ++photoAnswers;
                                  EXPECT_EQ(error, (ZELError{"NSOSStatusErrorDomain", 101, std::nullopt}));
                                  EXPECT_THAT(names, IsEmpty());
                                  EXPECT_EQ(images, nullptr);
                                });
  answer("0F80");
  EXPECT_EQ(outcome.text, "error 101 none none none");
  EXPECT_EQ(photoAnswers, 1);
}

// Deliberate, and a trap: what the handler of the refusal begins anew is failed in its predecessor's place.
TEST_F(OddRequestsTest, FailsTheCaptureInForceAfterTheHandlerOfARefusal) {
  Log log;
  const auto note = [&](const auto& error, const auto&...) { log.push_back(error ? "refused" : "taken"); };
  const auto photo = std::make_shared<RecordingPhoto>(log);
  ucd().msgCmdShutterWithGps({}, {}, {}, note, {});
  stack.parser().setPhotoParser(photo);
  answer("0780");
  ucd().msgCmdShutterExtraWithGps({}, {}, {}, {}, note, {});
  stack.parser().setPhotoParser(photo);
  answer("1180");
  ucd().msgCmdShutterAEBWithGps({}, {}, {}, {1, {}}, {}, note, {});
  stack.parser().setPhotoParser(photo);
  answer("0F80");
  EXPECT_THAT(log, ElementsAre("refused", "photoError 101", "refused", "photoError 101", "refused", "photoError 101"));
  stack.parser().setPhotoParser(nullptr);  // a stack that goes fails the one in force, and the log goes first
}

TEST_F(OddRequestsTest, DeliversPhotosToTheHandlersOfNewRequests) {
  Outcome single, extra;
  int names = 0;
  const Bytes photo = join(bytes({71, 0, 0, 0, 3, 0}), Bytes(64), bytes({1}));
  ucd().newMsgCmdShutterWithGps({}, {}, {}, {}, single);
  send(photo);
  ucd().newMsgCmdShutterExtraWithGps({}, {}, {}, {}, {}, extra);
  send(photo);
  ucd().newMsgCmdShutterAEBWithGps({}, {}, {}, {1, {}}, {}, {}, [&](const auto&, const auto& list, const auto&) {
    names = static_cast<int>(list.size());
  });
  send(photo);
  EXPECT_EQ(single.text, "ok \"\" 01");
  EXPECT_EQ(extra.text, "ok \"\" 01");
  EXPECT_EQ(names, 1);
}

TEST_F(OddRequestsTest, LeavesTheCaptureWaitingWithoutAHandlerForTheReply) {
  Outcome photo;
  ucd().msgCmdShutterWithGps({}, {}, {}, {}, photo);
  answer("0780");
  EXPECT_EQ(photo.calls, 0);
}

// The capture in force is failed after the handler, as it always was, and that is the retry's.
TEST_F(OddRequestsTest, FailsTheCaptureThatARefusedOnesHandlerBegins) {
  Outcome first, retried;
  const auto retry = [&](const auto&, std::uint32_t, std::uint64_t, const auto&) {
    ucd().msgCmdShutterWithGps({}, {}, {}, outcome, retried);
  };
  ucd().msgCmdShutterWithGps({}, {}, {}, retry, first);
  answer("0780");
  EXPECT_EQ(first.calls, 0);
  EXPECT_EQ(retried.text, "error 101 none none");
  EXPECT_EQ(outcome.calls, 0);
}

TEST_F(OddRequestsTest, LetsAPhotoHandlerBeginTheNextCapture) {
  Outcome retried;
  const auto retry = [&](const auto&, const auto&, const auto&) {
    ucd().msgCmdShutterWithGps({}, {}, {}, outcome, retried);
  };
  ucd().msgCmdShutterWithGps({}, {}, {}, outcome, retry);
  answer("0780");
  EXPECT_EQ(retried.calls, 0);
  send(join(bytes({71, 0, 0, 0, 3, 0}), Bytes(64), bytes({1})));
  EXPECT_EQ(retried.text, "ok \"\" 01");
}

TEST_F(OddRequestsTest, LeavesTheCaptureWaitingWhereStoppingARecordingFails) {
  Outcome photo;
  ucd().msgCmdShutterWithGps({}, {}, {}, {}, photo);
  ucd().msgCmdStopRecordWithRebackBlock(outcome);
  answer("0980");
  EXPECT_EQ(outcome.calls, 1);
  EXPECT_EQ(photo.calls, 0);
}

TEST_F(OddRequestsTest, ReplacesThePhotoParserWithEachShutter) {
  Outcome first;
  Outcome second;
  ucd().msgCmdShutterWithGps({}, {}, {}, {}, first);
  ucd().msgCmdShutterWithGps({}, {}, {}, {}, second);
  send(join(bytes({71, 0, 0, 0, 3, 0}), Bytes(64), bytes({1})));
  EXPECT_EQ(first.calls, 0);
  EXPECT_EQ(second.calls, 1);
}

TEST_F(OddRequestsTest, TakesNoHdrPhoto) {
  ucd().msgCmdShutterHDRWithGps({}, {}, {}, {}, outcome);
  ucd().newMsgCmdShutterHDRWithGps({}, {}, {}, {}, outcome);
  EXPECT_THAT(written(), IsEmpty());
  host.unplug(camera);
  host.runUntilIdle();
  EXPECT_EQ(outcome.calls, 0);
}

TEST_F(OddRequestsTest, HasTheDemultiplexerExpectAResolutionWithoutAskingTheCamera) {
  ucd().setDemuxVideoRes(14);
  EXPECT_EQ(stack.parser().videoStreamRes(), 14u);
  EXPECT_THAT(written(), IsEmpty());
}

TEST_F(OddRequestsTest, TellsTheDemultiplexerOfThePreviewsResolutionBeforeItAsks) {
  Log log;
  const auto player = std::make_shared<RecordingPlayer>(log);
  stack.parser().setPreviewPlayer(player);
  ucd().msgCmdStartVideoWithVideoRes(11, outcome);
  EXPECT_EQ(stack.parser().videoStreamRes(), 11u);
  EXPECT_THAT(log, ElementsAre("width 2560", "height 1280", "fps 30"));
}

TEST_F(OddRequestsTest, TellsThePlayerOfThePreviewsSizeBeforeTheRequestIsPacked) {
  Log log;
  const auto player = std::make_shared<RecordingPlayer>(log);
  stack.parser().setPreviewPlayer(player);
  stack.parser().registerMsgPacket(CameraMsgPacket(0x0004,
                                                   [&](std::int32_t, const ZELMessageFields&, void*) {
                                                     log.push_back("packed");
                                                     return std::optional<ZELData>();
                                                   }),
                                   4);
  ucd().msgCmdStartVideoWithVideoRes(0, outcome);
  EXPECT_THAT(log, ElementsAre("width 1440", "height 720", "fps 15", "packed"));
}

TEST_F(OddRequestsTest, ResetsThePlayerWithEveryAnswerToAPreviewAndBeforeItsHandler) {
  Log log;
  const auto player = std::make_shared<RecordingPlayer>(log);
  ucd().msgCmdStartVideoWithVideoRes(255,
                                     [&](const auto& error, auto) { log.push_back(error ? "failed" : "started"); });
  stack.parser().setPreviewPlayer(player);
  answer("0480 01 0B");
  ucd().msgCmdStartVideoWithVideoRes(255,
                                     [&](const auto& error, auto) { log.push_back(error ? "failed" : "started"); });
  host.runUntilIdle();
  answer("0480 00 0B");
  ucd().msgCmdStartVideoWithVideoRes(255, nullptr);
  host.runUntilIdle();
  answer("0480 01 0B");
  EXPECT_THAT(log, ElementsAre("reset", "started", "reset", "failed", "reset"));
}

TEST_F(OddRequestsTest, AsksForAFilesMetadataByItsZeroTerminatedName) {
  ucd().msgReqGetFileMnd("ab", {});
  EXPECT_EQ(written(), hex("0B000000 0400 2840 616200"));
}

TEST_F(OddRequestsTest, CutsANameOutsideAsciiShort) {
  ucd().msgReqGetFileMnd("\xC3\xA9.mp4", {});  // five characters, six bytes
  EXPECT_EQ(bodyOf(written()), hex("C3A92E6D70 00"));
}

TEST_F(OddRequestsTest, SendsNothingForAnEmptyOrAbsentName) {
  ucd().msgReqGetFileMnd("", {});
  ucd().msgReqGetVideoExtraInfoWithFileName(std::nullopt, {});
  EXPECT_EQ(written(), hex("08000000 0400 2840 08000000 0400 3540"));
}

TEST_F(OddRequestsTest, GivesAnAllZeroRecordForAMetadataReplyOfOneByte) {
  ucd().msgReqGetFileMnd("a", outcome);
  answer("28C0 01");
  EXPECT_EQ(outcome.text, "ok " + std::string(384, '0'));
}

TEST_F(OddRequestsTest, CutsALongMetadataReplyToTheRecord) {
  ZELVideoMnd record;
  ucd().msgReqGetFileMnd("a", [&](const auto&, const ZELVideoMnd& value) { record = value; });
  answer("28C0 01 " + hexText(Bytes(191, 1)) + "02 03030303");
  EXPECT_EQ(record.head[0], 1);
  EXPECT_EQ(record.tail[30], 1);
  EXPECT_EQ(record.tail[31], 2);
}

TEST_F(OddRequestsTest, RefusesMetadataWithoutItsFlag) {
  ucd().msgReqGetFileMnd("a", outcome);
  answer("28C0 00 0102");
  EXPECT_EQ(outcome.text, "error 101 " + std::string(384, '0'));
}

TEST_F(OddRequestsTest, SendsATextFileWithItsNameSizeAndBytes) {
  ucd().msgReqCreateTxtFile("a.txt", 0x10203, ZELData(bytes({7, 8})), outcome);
  EXPECT_EQ(written(), join(hex("2C000000 0400 2D40"), text("a.txt"), Bytes(27), hex("0302 0708")));
}

TEST_F(OddRequestsTest, CutsATextFilesNameToThirtyTwoBytes) {
  ucd().msgReqCreateTxtFile(std::string(40, 'n'), 0, std::nullopt, outcome);
  EXPECT_EQ(bodyOf(written()), join(Bytes(32, 'n'), bytes({0, 0})));
}

TEST_F(OddRequestsTest, CutsAnExtraInfosNameToSixtyFourBytes) {
  ucd().msgReqSetPhotoExtraInfoWithFileName(std::string(70, 'n'), ZELData(bytes({7})), outcome);
  EXPECT_EQ(bodyOf(written()), join(Bytes(64, 'n'), bytes({7})));
}

TEST_F(OddRequestsTest, GivesATextFilesCodeWithASuccess) {
  ucd().msgReqCreateTxtFile("a", 0, {}, outcome);
  answer("2DC0 01 05");
  EXPECT_EQ(outcome.text, "ok 5");
}

TEST_F(OddRequestsTest, GivesATextFilesCodeTogetherWithTheError) {
  ucd().msgReqCreateTxtFile("a", 0, {}, outcome);
  answer("2DC0 00 05");
  EXPECT_EQ(outcome.text, "error 101 5");
}

TEST_F(OddRequestsTest, ReadsAMissingTextFileCodeAsZero) {
  ucd().msgReqCreateTxtFile("a", 0, {}, outcome);
  answer("2DC0 01");
  EXPECT_EQ(outcome.text, "ok 0");
  ucd().msgReqCreateTxtFile("a", 0, {}, outcome);
  answer("2DC0");
  EXPECT_EQ(outcome.text, "error 101 0");
}

TEST_F(OddRequestsTest, SendsASerialNumberOutsideAsciiAsNothing) {
  ucd().msgReqSetSerialNumber("\xC3\xA9", outcome);
  EXPECT_EQ(written(), hex("08000000 0400 1340"));
  ucd().msgReqSetSerialNumber(std::nullopt, outcome);
  EXPECT_EQ(written(), hex("08000000 0400 1340"));
}

TEST_F(OddRequestsTest, SucceedsWithoutATextWhereASerialNumberIsNotAscii) {
  ucd().msgReqGetSerialNumber(outcome);
  answer("12C0 01 C3A9");
  EXPECT_EQ(outcome.text, "ok none");
}

TEST_F(OddRequestsTest, TakesASerialNumberToTheEndOfTheReply) {
  ucd().msgReqGetSerialNumber(outcome);
  answer("12C0 01 453141");
  EXPECT_EQ(outcome.text, "ok \"E1A\"");
}

TEST_F(OddRequestsTest, GivesAVideosExtraInfoToTheEndOfTheReply) {
  ucd().msgReqGetVideoExtraInfoWithFileName("a", outcome);
  answer("35C0 01 0102");
  EXPECT_EQ(outcome.text, "ok 0102");
}

TEST_F(OddRequestsTest, RequiresTheOffsetsWholeRecordAfterTheFlag) {
  ucd().msgReqGetMediaOffset(0, 0, outcome);
  answer("0FC0 01 " + hexText(Bytes(79)));
  EXPECT_EQ(outcome.text, "error 101 none");
  ucd().msgReqGetMediaOffset(0, 0, outcome);
  answer("0FC0 01 " + hexText(Bytes(80)));
  EXPECT_EQ(outcome.text, "ok \"0_(null)_0_0_0\"");
}

class SyncDataTest : public SimulatedCameraTest {
 protected:
  void request() {
    stack.ucd().msgReqSendSyncData(ZELData(kMarker), [this](const std::optional<ZELMessageFields>& reply) {
      ++completed;
      error = reply ? reply->get<ZELError>("NSError") : std::nullopt;
      gotNothing = !reply;
    });
  }

  int completed = 0;
  bool gotNothing = false;
  std::optional<ZELError> error;
};

TEST_F(SyncDataTest, IsSentAlthoughNoFrameHasComeYet) {
  open();
  EXPECT_THAT(link().takeWritten(), IsEmpty());
  request();
  host.runUntilIdle();
  EXPECT_EQ(link().takeWritten(), join(hex("12000000 0400 2E40"), kMarker));
}

TEST_F(SyncDataTest, SucceedsWithAnyReplyAndGetsNothing) {
  openAndSynchronise();
  for (const char* reply : {"09000000 0400 2EC0 00", "08000000 0400 2EC0", "0A000000 0400 2EC0 0101"}) {
    completed = 0;
    request();
    send(hex(reply));
    EXPECT_EQ(completed, 1) << reply;
    EXPECT_TRUE(gotNothing) << reply;
  }
}

TEST_F(SyncDataTest, GetsTheErrorsDictionaryWhereTheConnectionIsLost) {
  openAndSynchronise();
  request();
  host.unplug(camera);
  host.runUntilIdle();
  EXPECT_EQ(completed, 1);
  EXPECT_EQ(error, (ZELError{"NSOSStatusErrorDomain", 100, std::nullopt}));
}

TEST_F(SyncDataTest, WaitsWithoutASessionForTheNextChangeOfTheLink) {
  attach();
  request();
  EXPECT_EQ(completed, 0);
  accessory().openCamera();
  host.runUntilIdle();
  EXPECT_EQ(completed, 1);
  EXPECT_EQ(error->code, 100);
}

}  // namespace
}  // namespace zel::test
