#include "link/camera_data_parser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "protocol/frame.h"
#include "tests/link/recording_consumers.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

class CameraDataParserTest : public testing::Test {
 protected:
  CameraDataParserTest() {
    parser.setAccessory(&link);
    parser.setPreviewPlayer(player);
    parser.setPhotoParser(std::make_shared<RecordingPhoto>(log));
    parser.setUcdFile(std::make_shared<RecordingFile>(log));
  }

  void append(const Bytes& data) { parser.appendBytes(data.data(), data.size()); }
  void receive(const Bytes& data) {
    append(data);
    parser.parserData();
  }
  Bytes held() const { return Bytes(parser.data().begin(), parser.data().end()); }
  LinkStatistics statistics() const {
    LinkStatistics result;
    parser.copyStatistics(result);
    return result;
  }
  void registerReply(int code, int msgType) {
    const auto record = [this](std::uint64_t type, const std::optional<ZELData>& body, void*) {
      log.push_back(entry(("msg " + std::to_string(type) + (body ? " body" : " none")).c_str(),
                          body ? body->bytes() : ByteView()));
    };
    parser.registerMsgParser(CameraMsgParser(static_cast<std::uint64_t>(msgType), record), code);
  }

  Log log;
  RecordingLink link;
  std::shared_ptr<RecordingPlayer> player = std::make_shared<RecordingPlayer>(log);
  CameraDataParser parser;
};

const Bytes kVideo = bytes({8, 0, 0, 0, 1, 0, 7, 9});      // length 8, type 1, payload 7 9
const Bytes kAudio = bytes({7, 0, 0, 0, 2, 0, 5});         // length 7, type 2, payload 5
const Bytes kPhoto = bytes({7, 0, 0, 0, 3, 0, 4});         // length 7, type 3, payload 4
const Bytes kFileReply = bytes({8, 0, 0, 0, 9, 0, 1, 2});  // length 8, type 9, payload 1 2
const Bytes kReply800B = bytes({9, 0, 0, 0, 4, 0, 0x0B, 0x80, 1});

TEST_F(CameraDataParserTest, RoutesEachDataTypeToItsConsumer) {
  registerReply(0x800B, 14);
  receive(join(kVideo, kAudio, kPhoto, kFileReply, kReply800B));
  EXPECT_THAT(log, ElementsAre("video 7 9", "audio 5", "photo 4", "file 1 2", "msg 14 body 1"));
  EXPECT_EQ(link.received, 5);
  EXPECT_THAT(held(), IsEmpty());
}

TEST_F(CameraDataParserTest, TellsTheAccessoryOfAFrameOnceItsConsumerHasIt) {
  link.log = &log;
  receive(join(kVideo, kPhoto, bytes({6, 0, 0, 0, 99, 0})));
  EXPECT_THAT(log, ElementsAre("video 7 9", "received", "photo 4", "received", "received"));
}

TEST_F(CameraDataParserTest, GivesFramesToAConsumerThatCameLater) {
  receive(join(kVideo, kPhoto, kFileReply));
  Log later;
  const auto second = std::make_shared<RecordingPlayer>(later);
  parser.setPreviewPlayer(second);
  receive(kAudio);
  parser.setPhotoParser(std::make_shared<RecordingPhoto>(later));
  receive(kPhoto);
  parser.setUcdFile(std::make_shared<RecordingFile>(later));
  receive(kFileReply);
  EXPECT_THAT(log, ElementsAre("video 7 9", "photo 4", "file 1 2"));
  EXPECT_THAT(later, ElementsAre("audio 5", "photo 4", "file 1 2"));
}

TEST_F(CameraDataParserTest, DeliversOnceAFrameCutAtAnyByte) {
  for (std::size_t cut = 0; cut <= kVideo.size(); ++cut) {
    log.clear();
    receive(Bytes(kVideo.begin(), kVideo.begin() + static_cast<std::ptrdiff_t>(cut)));
    receive(Bytes(kVideo.begin() + static_cast<std::ptrdiff_t>(cut), kVideo.end()));
    EXPECT_THAT(log, ElementsAre("video 7 9")) << "cut at " << cut;
  }
}

TEST_F(CameraDataParserTest, KeepsHalfAFrameBehindThreeWholeOnes) {
  receive(join(kVideo, kAudio, kPhoto, bytes({8, 0, 0, 0})));
  EXPECT_THAT(log, ElementsAre("video 7 9", "audio 5", "photo 4"));
  EXPECT_EQ(held(), bytes({8, 0, 0, 0}));
  receive(bytes({1, 0, 7, 9}));
  EXPECT_EQ(log.back(), "video 7 9");
}

TEST_F(CameraDataParserTest, ParsesNothingBeforeItIsAskedTo) {
  append(kVideo);
  EXPECT_THAT(log, IsEmpty());
  EXPECT_EQ(held(), kVideo);
}

TEST_F(CameraDataParserTest, DeliversAFrameOfTheHeaderAlone) {
  receive(bytes({6, 0, 0, 0, 1, 0}));
  EXPECT_THAT(log, ElementsAre("video"));
}

TEST_F(CameraDataParserTest, WaitsWithExactlyTheMarkerInResynchronisation) {
  parser.setIsNeedDataSynchronism(true);
  receive(kMarker);
  EXPECT_TRUE(parser.isNeedDataSynchronism());
  EXPECT_EQ(held(), kMarker);
  receive(bytes({0x2A}));
  EXPECT_FALSE(parser.isNeedDataSynchronism());
  EXPECT_EQ(held(), bytes({0x2A}));
}

TEST_F(CameraDataParserTest, KeepsTheLastTenOfTwentyFiveGarbageBytes) {
  parser.setIsNeedDataSynchronism(true);
  Bytes garbage;
  for (int i = 0; i < 25; ++i) garbage.push_back(static_cast<std::uint8_t>(i));
  receive(garbage);
  EXPECT_EQ(held(), bytes({15, 16, 17, 18, 19, 20, 21, 22, 23, 24}));
  EXPECT_EQ(statistics().bytesDiscarded, 15u);
}

TEST_F(CameraDataParserTest, KeepsNineBytesInResynchronisation) {
  parser.setIsNeedDataSynchronism(true);
  receive(bytes({1, 2, 3, 4, 5, 6, 7, 8, 9}));
  EXPECT_EQ(held().size(), 9u);
}

TEST_F(CameraDataParserTest, FindsAMarkerCutAtAnyByte) {
  for (std::size_t cut = 0; cut <= 11; ++cut) {
    parser.clearData();
    parser.setIsNeedDataSynchronism(true);
    const Bytes stream = join(bytes({1, 2, 3}), kMarker, bytes({8}));
    receive(Bytes(stream.begin(), stream.begin() + 3 + static_cast<std::ptrdiff_t>(cut)));
    receive(Bytes(stream.begin() + 3 + static_cast<std::ptrdiff_t>(cut), stream.end()));
    EXPECT_FALSE(parser.isNeedDataSynchronism()) << "cut at " << cut;
    EXPECT_EQ(held(), bytes({8})) << "cut at " << cut;
  }
}

TEST_F(CameraDataParserTest, FindsTheFirstOfTwoOverlappingMarkers) {
  parser.setIsNeedDataSynchronism(true);
  receive(join(kMarker, bytes({0xAF, 0xFA, 1})));  // the marker stands at 0 and at 2
  EXPECT_EQ(held(), bytes({0xAF, 0xFA, 1}));
}

TEST_F(CameraDataParserTest, CountsMarkersAndWhatStoodBeforeThem) {
  parser.setIsNeedDataSynchronism(true);
  receive(join(bytes({1, 2, 3}), kMarker, bytes({8})));
  EXPECT_EQ(statistics().markersFound, 1u);
  EXPECT_EQ(statistics().bytesDiscarded, 3u);
}

TEST_F(CameraDataParserTest, LeavesWhatFollowsTheMarkerForTheNextCall) {
  parser.setIsNeedDataSynchronism(true);
  receive(join(kMarker, kVideo));
  EXPECT_THAT(log, IsEmpty());
  parser.parserData();
  EXPECT_THAT(log, ElementsAre("video 7 9"));
}

TEST_F(CameraDataParserTest, Firmware189EndsResynchronisationButStartsNoClockAndIgnoresTimestamps) {
  link.firmware = 189;
  parser.setIsNeedDataSynchronism(true);
  receive(join(kMarker, bytes({15, 0, 0, 0, 8, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0})));
  parser.parserData();
  EXPECT_FALSE(parser.isNeedDataSynchronism());
  EXPECT_EQ(link.syncTimeCommands, 0);
  EXPECT_THAT(log, IsEmpty());
  EXPECT_EQ(statistics().dropped.timestampOldFirmware, 1u);
  EXPECT_EQ(link.received, 1);
}

TEST_F(CameraDataParserTest, Firmware190StartsTheClockAndTakesTimestamps) {
  link.firmware = 190;
  parser.setIsNeedDataSynchronism(true);
  receive(join(kMarker, bytes({15, 0, 0, 0, 8, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0})));
  parser.parserData();
  EXPECT_EQ(link.syncTimeCommands, 1);
  EXPECT_THAT(log, ElementsAre("videoTime 1"));
}

TEST_F(CameraDataParserTest, IgnoresATimestampPayloadOfEightBytes) {
  receive(bytes({14, 0, 0, 0, 8, 0, 0, 1, 0, 0, 0, 0, 0, 0}));
  EXPECT_THAT(log, IsEmpty());
  EXPECT_EQ(statistics().dropped.shortTimestamp, 1u);
  EXPECT_EQ(link.received, 1);
}

TEST_F(CameraDataParserTest, AddsTheOffsetToATimestampOfNineBytes) {
  link.offset = 5;
  receive(bytes({15, 0, 0, 0, 8, 0, 0, 0xE8, 0x03, 0, 0, 0, 0, 0, 0}));  // flag 0, 1000 ms
  EXPECT_THAT(log, ElementsAre("videoTime 1005"));
}

TEST_F(CameraDataParserTest, SendsAnyOtherFlagToTheAudioAndIgnoresTrailingBytes) {
  link.offset = -1;
  receive(bytes({17, 0, 0, 0, 8, 0, 0xFF, 2, 0, 0, 0, 0, 0, 0, 0, 0xEE, 0xEE}));
  EXPECT_THAT(log, ElementsAre("audioTime 1"));
}

TEST_F(CameraDataParserTest, WrapsATimestampAroundInsteadOfOverflowing) {
  link.offset = 1;
  receive(bytes({15, 0, 0, 0, 8, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F}));
  EXPECT_THAT(log, ElementsAre("videoTime -9223372036854775808"));
}

TEST_F(CameraDataParserTest, GivesATwoByteMessageAnAbsentBody) {
  registerReply(0x800B, 14);
  receive(bytes({8, 0, 0, 0, 4, 0, 0x0B, 0x80}));
  EXPECT_THAT(log, ElementsAre("msg 14 none"));
}

TEST_F(CameraDataParserTest, DropsAMessageOfOneByteButCountsItAsData) {
  receive(bytes({7, 0, 0, 0, 4, 0, 0x0B}));
  EXPECT_EQ(statistics().dropped.shortMessage, 1u);
  EXPECT_EQ(link.received, 1);
}

TEST_F(CameraDataParserTest, DropsAnUnregisteredCode) {
  receive(kReply800B);
  EXPECT_EQ(statistics().dropped.unregisteredCode, 1u);
  EXPECT_EQ(link.received, 1);
}

TEST_F(CameraDataParserTest, PassesTheTimeOfAClockReplyOfThreeBytes) {
  link.seconds = 123.4569;  // 123456 ms, truncated
  receive(bytes({9, 0, 0, 0, 4, 0, 0x49, 0xC0, 0}));
  EXPECT_THAT(link.syncTimes, ElementsAre(123456));
  EXPECT_EQ(statistics().dropped.unregisteredCode, 0u);
}

TEST_F(CameraDataParserTest, TakesTheTimeOfAClockReplyBeforeItsHandlerRuns) {
  link.log = &log;
  registerReply(0xC049, 1);
  receive(bytes({9, 0, 0, 0, 4, 0, 0x49, 0xC0, 5}));
  EXPECT_THAT(log, ElementsAre("syncTime 0", "msg 1 body 5", "received"));
}

TEST_F(CameraDataParserTest, TakesNoTimeFromAClockReplyOfTwoBytes) {
  registerReply(0xC049, 1);
  receive(bytes({8, 0, 0, 0, 4, 0, 0x49, 0xC0}));
  EXPECT_THAT(link.syncTimes, IsEmpty());
  EXPECT_THAT(log, ElementsAre("msg 1 none"));
}

TEST_F(CameraDataParserTest, DropsAnUnknownTypeButCountsItAsData) {
  receive(join(bytes({7, 0, 0, 0, 5, 0, 1}), bytes({7, 0, 0, 0, 0xFF, 0xFF, 1}), kVideo));
  EXPECT_THAT(log, ElementsAre("video 7 9"));
  EXPECT_EQ(statistics().dropped.unknownType, 2u);
  EXPECT_EQ(link.received, 3);
}

TEST_F(CameraDataParserTest, HandsDataOfType7ToItsRegisteredParserAlone) {
  const auto source = std::make_shared<int>(42);
  const auto handler = [this](const std::shared_ptr<void>& object, ByteView payload) {
    log.push_back(entry(object ? "seven with source" : "seven without source", payload));
  };
  const Bytes seven = bytes({8, 0, 0, 0, 7, 0, 1, 2});
  receive(seven);
  parser.registerDataParser(ZELCameraDataParser(8, source, handler), 8);  // key 8 is never consulted
  receive(seven);
  parser.registerDataParser(ZELCameraDataParser(7, source, handler), 7);
  receive(seven);
  parser.removeDataParser(7);
  receive(seven);
  EXPECT_THAT(log, ElementsAre("seven with source 1 2"));
  EXPECT_EQ(statistics().dropped.unregisteredData, 3u);
}

TEST_F(CameraDataParserTest, HoldsTheSourceOfADataParserWeakly) {
  auto source = std::make_shared<int>(42);
  parser.registerDataParser(ZELCameraDataParser(7, source,
                                                [this](const std::shared_ptr<void>& object, ByteView) {
                                                  log.push_back(object ? "source" : "no source");
                                                }),
                            7);
  source.reset();
  receive(bytes({6, 0, 0, 0, 7, 0}));
  EXPECT_THAT(log, ElementsAre("no source"));
}

TEST_F(CameraDataParserTest, DropsDataOfType7WhoseRecordHasNoHandler) {
  parser.registerDataParser(ZELCameraDataParser(7, {}, nullptr), 7);
  receive(bytes({6, 0, 0, 0, 7, 0}));
  EXPECT_EQ(statistics().dropped.unregisteredData, 1u);
}

TEST_F(CameraDataParserTest, RemovesADataParserThatWasNeverThere) {
  parser.removeDataParser(7);
  receive(kVideo);
  EXPECT_THAT(log, ElementsAre("video 7 9"));
}

TEST_F(CameraDataParserTest, DropsMediaWithoutAPlayer) {
  player.reset();
  receive(join(kVideo, kAudio));
  EXPECT_EQ(statistics().dropped.noConsumer, 2u);
  EXPECT_EQ(link.received, 2);
}

class ImpossibleLength : public CameraDataParserTest, public testing::WithParamInterface<std::uint32_t> {};

TEST_P(ImpossibleLength, LosesThePositionAndReadsNothingMore) {
  const std::uint32_t length = GetParam();
  Bytes bad;
  appendLittleEndian(bad, length);
  receive(join(kVideo, bad, bytes({1, 0}), kAudio));
  EXPECT_THAT(log, ElementsAre("video 7 9"));
  EXPECT_EQ(link.positionsLost, 1);
  EXPECT_EQ(statistics().positionsLost, 1u);
  EXPECT_THAT(held(), IsEmpty());
  EXPECT_TRUE(parser.isNeedDataSynchronism());
}

INSTANTIATE_TEST_SUITE_P(Lengths, ImpossibleLength, testing::Values(0u, 1u, 5u, 268435457u, 0xFFFFFFFFu));

TEST_F(CameraDataParserTest, WaitsForAFrameOfExactlyTheLargestLength) {
  receive(bytes({0, 0, 0, 0x10, 1, 0}));  // 256 MiB
  EXPECT_EQ(link.positionsLost, 0);
  EXPECT_EQ(held().size(), 6u);
}

TEST_F(CameraDataParserTest, TakesNoLongerFrameThanItWasTold) {
  parser.setLongestFrame(1000);
  receive(bytes({0xE8, 3, 0, 0, 1, 0}));  // 1000
  EXPECT_EQ(link.positionsLost, 0);
  parser.clearData();
  receive(bytes({0xE9, 3, 0, 0, 1, 0}));
  EXPECT_EQ(link.positionsLost, 1);
}

TEST_F(CameraDataParserTest, TakesNoLongerPhotoThanAnyFrameWhereNobodyWaitsForOne) {
  parser.setPhotoParser(nullptr);
  parser.setLongestFrame(1000);
  receive(bytes({0xE8, 3, 0, 0, 3, 0}));  // 1000
  EXPECT_EQ(link.positionsLost, 0);
  parser.clearData();
  receive(bytes({0xE9, 3, 0, 0, 3, 0}));
  EXPECT_EQ(link.positionsLost, 1);
}

TEST_F(CameraDataParserTest, TakesAPhotoOfTheLargestLengthAllTheSame) {
  parser.setLongestFrame(1000);
  receive(bytes({0, 0, 0, 0x10, 3, 0}));  // 256 MiB
  EXPECT_EQ(link.positionsLost, 0);
  parser.clearData();
  receive(bytes({1, 0, 0, 0x10, 3, 0}));
  EXPECT_EQ(link.positionsLost, 1);
}

TEST_F(CameraDataParserTest, CountsAFrameForWhichItsConsumerHasNoMemoryAndGoesOn) {
  parser.registerDataParser(ZELCameraDataParser(7, {}, [](const auto&, ByteView) { throw std::bad_alloc(); }), 7);
  receive(join(bytes({7, 0, 0, 0, 7, 0, 1}), kVideo));
  EXPECT_EQ(statistics().dropped.noMemory, 1u);
  EXPECT_THAT(log, ElementsAre("video 7 9"));
}

TEST_F(CameraDataParserTest, HoldsNoMoreThanTwiceWhatHasArrivedOfAHugeFrame) {
  receive(bytes({0, 0, 0, 0x10, 1, 0}));
  receive(repeated(1000000, 0));
  EXPECT_LE(parser.dataCapacity(), 2 * 1000006u);
}

TEST_F(CameraDataParserTest, GrowsToTheFrameItWaitsForAndShrinksAfterIt) {
  const std::uint32_t length = 20u * 1024 * 1024;
  Bytes frame;
  appendLittleEndian(frame, length);
  frame.insert(frame.end(), {3, 0});
  parser.setPhotoParser(nullptr);
  receive(frame);
  for (std::uint32_t sent = 6; sent < length; sent += 4096) {
    receive(repeated(std::min<std::size_t>(4096, length - sent), 0));
    ASSERT_LE(parser.dataCapacity(), 2u * length);
  }
  EXPECT_EQ(statistics().frames[3], 1u);
  EXPECT_LE(parser.dataCapacity(), 64u * 1024);
}

TEST_F(CameraDataParserTest, ForgetsClearedBytes) {
  append(bytes({8, 0, 0, 0, 1}));
  parser.clearData();
  EXPECT_THAT(held(), IsEmpty());
  receive(kAudio);
  EXPECT_THAT(log, ElementsAre("audio 5"));
}

TEST_F(CameraDataParserTest, ParsesNothingOfClearedBytes) {
  append(kVideo);
  parser.clearData();
  parser.parserData();
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(CameraDataParserTest, TakesWhatComesAfterTwoClearingsInARow) {
  parser.clearData();
  parser.clearData();
  receive(kAudio);
  EXPECT_THAT(log, ElementsAre("audio 5"));
}

TEST_F(CameraDataParserTest, WaitsForNoFrameWhoseBeginningWasCleared) {
  receive(bytes({100, 0, 0, 0, 1, 0, 7}));
  parser.clearData();
  receive(kAudio);
  EXPECT_THAT(log, ElementsAre("audio 5"));
}

TEST_F(CameraDataParserTest, DropsTheRestWhenAConsumerClosesTheSession) {
  parser.registerMsgParser(
      CameraMsgParser(1, [this](std::uint64_t, const std::optional<ZELData>&, void*) { parser.clearData(); }), 0x800B);
  receive(join(kVideo, kReply800B, kAudio));
  EXPECT_THAT(log, ElementsAre("video 7 9"));
  EXPECT_THAT(held(), IsEmpty());
}

TEST_F(CameraDataParserTest, SizesThePlayerByTheResolutionCode) {
  parser.setVideoStreamRes(13);
  EXPECT_THAT(log, ElementsAre("width 3040", "height 1520", "fps 20"));
  EXPECT_EQ(parser.videoStreamRes(), 13u);
}

TEST_F(CameraDataParserTest, OnlyKeepsAResolutionCodeOf16) {
  parser.setVideoStreamRes(16);
  EXPECT_THAT(log, IsEmpty());
  EXPECT_EQ(parser.videoStreamRes(), 16u);
}

TEST_F(CameraDataParserTest, GivesAPlayerCodeZeroBeforeAnyWasSet) {
  parser.setVideoStreamRes(parser.videoStreamRes());
  EXPECT_THAT(log, ElementsAre("width 1440", "height 720", "fps 15"));
}

TEST_F(CameraDataParserTest, PacksAnEmptyBodyIntoEightBytes) {
  parser.registerMsgPacket(
      CameraMsgPacket(0x000B, [](std::int32_t, const ZELMessageFields&, void*) { return std::optional<ZELData>(); }),
      14);
  const auto frame = parser.packetMsgData(14, {});
  ASSERT_TRUE(frame.has_value());
  EXPECT_THAT(frame->bytes(), ElementsAre(8, 0, 0, 0, 4, 0, 0x0B, 0));
}

TEST_F(CameraDataParserTest, PacksWithTheRecordsCodeAndAnswersUnderTheMessageNumber) {
  int source = 7;
  parser.registerMsgPacket(CameraMsgPacket(11, &source,
                                           [](std::int32_t code, const ZELMessageFields& fields, void* object) {
                                             const int number = *static_cast<int*>(object);
                                             return std::optional(ZELData(Bytes{static_cast<std::uint8_t>(code),
                                                                                static_cast<std::uint8_t>(number),
                                                                                *fields.get<std::uint8_t>("v")}));
                                           }),
                           14);
  registerReply(32779, 14);
  EXPECT_THAT(parser.packetMsgData(14, {{"v", std::uint8_t{3}}})->bytes(),
              ElementsAre(11, 0, 0, 0, 4, 0, 0x0B, 0, 11, 7, 3));
  receive(kReply800B);
  EXPECT_THAT(log, ElementsAre("msg 14 body 1"));
}

TEST_F(CameraDataParserTest, PacksNothingForANumberWithoutARecord) {
  EXPECT_FALSE(parser.packetMsgData(14, {}).has_value());
}

TEST_F(CameraDataParserTest, CallsOnlyTheLastRecordRegisteredForACode) {
  registerReply(0x800B, 1);
  registerReply(0x800B, 2);
  receive(kReply800B);
  EXPECT_THAT(log, ElementsAre("msg 2 body 1"));
}

TEST_F(CameraDataParserTest, DeliversWholeFramesFromWhereTheyWereRead) {
  parser.parserData(join(kVideo, kAudio, bytes({7, 0, 0})));
  EXPECT_THAT(log, ElementsAre("video 7 9", "audio 5"));
  EXPECT_EQ(held(), bytes({7, 0, 0}));
  parser.parserData(join(bytes({0, 3, 0, 4}), kVideo));
  EXPECT_THAT(log, ElementsAre("video 7 9", "audio 5", "photo 4", "video 7 9"));
  EXPECT_THAT(held(), IsEmpty());
}

TEST_F(CameraDataParserTest, DeliversWhatWasAppendedBeforeWhatIsParsedInPlace) {
  append(join(kPhoto, bytes({8, 0, 0, 0, 1, 0})));
  parser.parserData(join(bytes({7, 9}), kAudio));
  EXPECT_THAT(log, ElementsAre("photo 4", "video 7 9", "audio 5"));
}

TEST_F(CameraDataParserTest, DropsTheRestOfAReadWhenAConsumerClosesTheSession) {
  parser.registerMsgParser(
      CameraMsgParser(1, [this](std::uint64_t, const std::optional<ZELData>&, void*) { parser.clearData(); }), 0x800B);
  parser.parserData(join(kReply800B, kAudio, bytes({1})));
  EXPECT_THAT(log, IsEmpty());
  EXPECT_THAT(held(), IsEmpty());
}

TEST_F(CameraDataParserTest, LosesThePositionBehindACompletedFrame) {
  append(bytes({8, 0, 0}));
  parser.parserData(bytes({0, 1, 0, 7, 9, 5, 0, 0, 0, 1, 0, 1}));
  EXPECT_THAT(log, ElementsAre("video 7 9"));
  EXPECT_EQ(link.positionsLost, 1);
  EXPECT_THAT(held(), IsEmpty());
}

TEST_F(CameraDataParserTest, CountsFramesAndBytesByType) {
  receive(join(kVideo, kVideo, kAudio, bytes({6, 0, 0, 0, 200, 0})));
  EXPECT_EQ(statistics().frames[1], 2u);
  EXPECT_EQ(statistics().bytes[1], 16u);
  EXPECT_EQ(statistics().frames[2], 1u);
  EXPECT_EQ(statistics().frames[0], 1u);
  EXPECT_EQ(statistics().bytesReceived, 29u);
}

class RecordingRequester final : public SyncDataRequester {
 public:
  void msgReqSendSyncData(const ZELData& marker, RebackDic rebackBlock) override {
    markers.push_back(marker);
    rebackBlock(std::nullopt);
  }
  std::vector<ZELData> markers;
};

TEST_F(CameraDataParserTest, AsksForTheMarkerWithItsTenBytes) {
  RecordingRequester requester;
  parser.setSyncDataRequester(&requester);
  parser.sendSyncData();
  ASSERT_EQ(requester.markers.size(), 1u);
  EXPECT_THAT(requester.markers[0].bytes(), ElementsAreArray(kMarker));
}

}  // namespace
}  // namespace zel::test
