#include <ZELTarkaSDK/ZELPreviewPlayer.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ZELTarkaSDK/platform/ports.h>

#include "media/h264_nalu_parser.h"
#include "platform/simulated/scripted_video_decoder.h"
#include "platform/simulated/simulated_platform.h"
#include "tests/media/nal_bytes.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string listed(std::span<const std::uint8_t> data) {
  std::string line;
  for (const std::uint8_t byte : data) line += ' ' + std::to_string(byte);
  return line;
}

// What reaches the delegate, a line each.
class MediaLog final : public ZELCameraMediaDataDelegate {
 public:
  void onH264Nalu(Bytes nalu, bool keyFrame, std::int64_t timestamp) override {
    lines.push_back((keyFrame ? "key " : "slice ") + std::to_string(timestamp) + ":" + listed(nalu));
  }
  void onSps(Bytes sps, Bytes pps) override { lines.push_back("sets:" + listed(sps) + " |" + listed(pps)); }
  void onAACHeader(Bytes header) override { lines.push_back("header:" + listed(header)); }
  void onAACAdts(Bytes data, std::int64_t timestamp) override {
    lines.push_back("audio " + std::to_string(timestamp) + ":" + listed(data));
  }
  std::vector<std::string> take() { return std::exchange(lines, {}); }
  std::vector<std::string> lines;
};

class PlayedPictures final : public ZELPixelBufferDataProtocol {
 public:
  void onPixelBuffer(const platform::PixelBufferRef& pixelBuffer, std::int64_t timestamp) override {
    times.push_back(timestamp);
    last = pixelBuffer;
    if (onPicture) onPicture();
  }
  std::function<void()> onPicture;
  std::vector<std::int64_t> times;
  platform::PixelBufferRef last;
};

const Bytes kSps = unit({0x67, 1, 2});
const Bytes kPps = unit({0x68, 3});
const Bytes kIdr = unit({0x65, 4});
const Bytes kSlice = unit({0x41, 5});
// AAC-LC, 48 kHz, stereo, two bytes of sound
const Bytes kAudio = bytes({0xFF, 0xF1, 0x4C, 0x80, 0x01, 0x3F, 0xFC, 7, 8});

class ZELPreviewPlayerTest : public testing::Test {
 protected:
  void SetUp() override { create(); }
  void create() {
    platform::Ports ports = host.ports();
    ports.videoDecoders = &decoders;
    player = ZELPreviewPlayer::create(ports, [this] { return firmware; });
    player->setMediaDataDelegate(media);
    player->setPixelBufferDelegate(pictures);
  }
  // Each unit takes effect when the next one comes; the last is followed by one of a type that nobody wants.
  void video(const std::vector<Bytes>& units) {
    for (const Bytes& each : units) append(each);
    append(unit({0x09, 0}));
  }
  void append(const Bytes& chunk) {
    player->appendVideoBytes(chunk);
    host.runUntilIdle();
  }
  void audio(const Bytes& data) { player->appendAudioBytes(data); }

  platform::SimulatedPlatform host;
  platform::ScriptedVideoDecoders decoders;
  std::int64_t firmware = 192;
  std::shared_ptr<MediaLog> media = std::make_shared<MediaLog>();
  std::shared_ptr<PlayedPictures> pictures = std::make_shared<PlayedPictures>();
  std::shared_ptr<ZELPreviewPlayer> player;
};

TEST_F(ZELPreviewPlayerTest, HandsParameterSetsAndSlicesOn) {
  player->setNextVideoTimestamp(1000);
  video({kSps, kPps, kIdr, kSlice});
  EXPECT_THAT(media->lines,
              ElementsAre("sets: 103 1 2 | 104 3", "key 1000: 0 0 0 1 101 4", "slice 1000: 0 0 0 1 65 5"));
}

TEST_F(ZELPreviewPlayerTest, DecodesSlicesWithTheirLengthAndTime) {
  player->setNextVideoTimestamp(-5);
  video({kSps, kPps, kIdr, kSlice});
  EXPECT_THAT(decoders.units(), ElementsAre(prefixed({0x65, 4}), prefixed({0x41, 5})));
  EXPECT_THAT(pictures->times, ElementsAre(-5, -5));
}

TEST_F(ZELPreviewPlayerTest, StartsNothingWithAPpsBeforeAnySps) {
  video({kPps, kSps});
  EXPECT_EQ(decoders.created(), 0u);
  EXPECT_THAT(media->lines, IsEmpty());
  video({unit({0x68, 9})});
  EXPECT_EQ(decoders.created(), 1u);
  EXPECT_EQ(decoders.lastPps(), bytes({0x68, 3}));
  EXPECT_THAT(media->lines, ElementsAre("sets: 103 1 2 | 104 3"));
}

TEST_F(ZELPreviewPlayerTest, SendsTheStoredSetsWithEveryPps) {
  video({kSps, kPps, unit({0x67, 7, 7}), unit({0x68, 7})});
  EXPECT_THAT(media->lines, ElementsAre("sets: 103 1 2 | 104 3", "sets: 103 1 2 | 104 3"));
  EXPECT_EQ(decoders.created(), 1u);
}

TEST_F(ZELPreviewPlayerTest, IgnoresSetsWithInvalidHeaders) {
  video({unit({0xE7, 1, 2}), unit({0x07, 1, 2}), kPps});
  EXPECT_EQ(decoders.created(), 0u);
  EXPECT_TRUE(ZELPreviewPlayer::isValid(0x67));
  EXPECT_TRUE(ZELPreviewPlayer::isValid(0x20));
  EXPECT_FALSE(ZELPreviewPlayer::isValid(0x1F));
  EXPECT_FALSE(ZELPreviewPlayer::isValid(0xE7));
}

TEST_F(ZELPreviewPlayerTest, IgnoresUnitsBelowSixBytesAndOtherTypes) {
  video({kSps, kPps, unit({0x65}), unit({0x66, 1}), unit({0x62, 1}), unit({0x6C, 1})});
  EXPECT_THAT(media->lines, ElementsAre("sets: 103 1 2 | 104 3"));
  EXPECT_TRUE(decoders.units().empty());
}

TEST_F(ZELPreviewPlayerTest, DecodesWithoutAMediaDataDelegate) {
  player->setMediaDataDelegate({});
  video({kSps, kPps, kIdr});
  EXPECT_EQ(pictures->times.size(), 1u);
}

TEST_F(ZELPreviewPlayerTest, OnlyForwardsSlicesBeforeTheParameterSets) {
  video({kIdr, kSlice});
  EXPECT_THAT(media->lines, ElementsAre("key 0: 0 0 0 1 101 4", "slice 0: 0 0 0 1 65 5"));
  EXPECT_TRUE(decoders.units().empty());
}

TEST_F(ZELPreviewPlayerTest, HoldsBothDelegatesWeakly) {
  media.reset();
  pictures.reset();
  EXPECT_EQ(player->mediaDataDelegate(), nullptr);
  EXPECT_EQ(player->pixelBufferDelegate(), nullptr);
  video({kSps, kPps, kIdr});
  audio(kAudio);
  EXPECT_EQ(decoders.units().size(), 1u);
}

TEST_F(ZELPreviewPlayerTest, AdvancesVideoTimePerSliceBeforeFirmware190) {
  firmware = 189;
  video({kIdr, kSlice, kSlice});
  EXPECT_THAT(media->lines, ElementsAre("key 33: 0 0 0 1 101 4", "slice 66: 0 0 0 1 65 5", "slice 99: 0 0 0 1 65 5"));
  player->setFps(0);
  video({kSlice});
  EXPECT_EQ(player->nextVideoTimestamp(), 99);
}

// Deliberate: four slices of one picture are four steps, and the sound is joined to them.
TEST_F(ZELPreviewPlayerTest, CountsEverySliceOfAPictureBeforeFirmware190) {
  firmware = 189;
  video({kSps, kPps, unit({0x65, 0x88}), unit({0x65, 0x42}), unit({0x65, 0x43}), unit({0x65, 0x2A})});
  audio(kAudio);
  EXPECT_THAT(media->lines,
              ElementsAre("sets: 103 1 2 | 104 3", "key 33: 0 0 0 1 101 136", "key 66: 0 0 0 1 101 66",
                          "key 99: 0 0 0 1 101 67", "key 132: 0 0 0 1 101 42", "header: 17 144", "audio 153: 7 8"));
}

TEST_F(ZELPreviewPlayerTest, StartsAudioOnlyAfterTheParameterSetsBeforeFirmware190) {
  firmware = 189;
  video({kIdr});
  audio(kAudio);
  EXPECT_THAT(media->take(), ElementsAre("key 33: 0 0 0 1 101 4", "header: 17 144"));
  video({kSps, kPps});
  audio(kAudio);
  audio(kAudio);
  EXPECT_THAT(media->take(), ElementsAre("sets: 103 1 2 | 104 3", "header: 17 144", "audio 54: 7 8", "header: 17 144",
                                         "audio 75: 7 8"));
}

TEST_F(ZELPreviewPlayerTest, MovesNoClockByItselfFromFirmware190On) {
  firmware = 190;
  video({kSps, kPps, kIdr, kSlice});
  audio(kAudio);
  EXPECT_EQ(player->nextVideoTimestamp(), 0);
  EXPECT_EQ(player->nextAudioTimestamp(), 0);
  EXPECT_THAT(media->take(),
              ElementsAre("sets: 103 1 2 | 104 3", "key 0: 0 0 0 1 101 4", "slice 0: 0 0 0 1 65 5", "header: 17 144"));
  player->setNextAudioTimestamp(500);
  audio(join(kAudio, kAudio));
  EXPECT_THAT(media->take(), ElementsAre("header: 17 144", "audio 500: 7 8", "header: 17 144", "audio 500: 7 8"));
}

TEST_F(ZELPreviewPlayerTest, HandsOnAFrameOfSoundThatIsAHeaderAndNothingElse) {
  const Bytes empty = bytes({0xFF, 0xF1, 0x4C, 0x80, 0x00, 0xFF, 0xFC});
  player->setNextAudioTimestamp(500);
  audio(join(empty, kAudio));
  EXPECT_THAT(media->take(), ElementsAre("header: 17 144", "audio 500:", "header: 17 144", "audio 500: 7 8"));
}

TEST_F(ZELPreviewPlayerTest, StopsTheAudioClockForANewDelegate) {
  firmware = 189;
  video({kSps, kPps, kIdr});
  audio(kAudio);
  EXPECT_EQ(player->nextAudioTimestamp(), 54);
  player->setMediaDataDelegate(media);
  EXPECT_EQ(player->nextAudioTimestamp(), 0);
  audio(kAudio);
  EXPECT_EQ(player->nextAudioTimestamp(), 0);
  video({kPps});
  audio(kAudio);
  EXPECT_EQ(player->nextAudioTimestamp(), 54);
}

TEST_F(ZELPreviewPlayerTest, LeavesTheAudioClockAloneWithoutADelegate) {
  firmware = 189;
  player->setNextAudioTimestamp(100);
  media.reset();
  audio(kAudio);
  EXPECT_EQ(player->nextAudioTimestamp(), 100);
}

TEST_F(ZELPreviewPlayerTest, SetsBothClocksToTheLater) {
  player->setNextVideoTimestamp(-1);
  player->setNextAudioTimestamp(-3);
  player->synTimestamp();
  EXPECT_EQ(player->nextVideoTimestamp(), -1);
  EXPECT_EQ(player->nextAudioTimestamp(), -1);
}

TEST_F(ZELPreviewPlayerTest, IgnoresSevenBytesOfAudioAndCutOffFrames) {
  player->setNextAudioTimestamp(500);
  audio(Bytes(kAudio.begin(), kAudio.begin() + 7));
  EXPECT_THAT(media->take(), IsEmpty());
  audio(join(kAudio, Bytes(kAudio.begin(), kAudio.end() - 1)));
  EXPECT_THAT(media->take(), ElementsAre("header: 17 144", "audio 500: 7 8"));
}

TEST_F(ZELPreviewPlayerTest, EndsWithAudioFramesOfNoLength) {
  audio(repeated(64, 0));
  EXPECT_THAT(media->lines, IsEmpty());
}

TEST_F(ZELPreviewPlayerTest, TakesTheSizeOfEveryPicture) {
  player->setImageWidth(1440);
  player->setImageHeight(720);
  EXPECT_EQ(player->imageWidth(), 1440);
  decoders.setPictureSize(6, 4);
  video({kSps, kPps, kIdr});
  EXPECT_EQ(player->imageWidth(), 6);
  EXPECT_EQ(player->imageHeight(), 4);
}

TEST_F(ZELPreviewPlayerTest, CallsASnapshotBlockOnceWithTheNextPicture) {
  std::vector<platform::PixelBufferRef> shots;
  bool replacedRan = false;
  player->createSnapshot([&](const platform::PixelBufferRef&) { replacedRan = true; });
  player->createSnapshot([&](const platform::PixelBufferRef& picture) { shots.push_back(picture); });
  EXPECT_TRUE(player->hasPendingSnapshot());
  video({kSps, kPps, kIdr, kSlice});
  ASSERT_EQ(shots.size(), 1u);
  EXPECT_EQ(shots[0]->luma().data[0], 1);
  EXPECT_FALSE(replacedRan);
  EXPECT_FALSE(player->hasPendingSnapshot());
}

TEST_F(ZELPreviewPlayerTest, LetsASnapshotBlockAskForAnother) {
  int shots = 0;
  player->createSnapshot([&](const platform::PixelBufferRef&) {
    ++shots;
    player->createSnapshot([&](const platform::PixelBufferRef&) { ++shots; });
  });
  video({kSps, kPps, kIdr});
  EXPECT_EQ(shots, 1);
  video({kSlice, kSlice});
  EXPECT_EQ(shots, 2);
}

TEST_F(ZELPreviewPlayerTest, GivesPicturesToWhoeverPolls) {
  std::int64_t time = 77;
  EXPECT_EQ(player->copyNextFrame(&time), nullptr);
  EXPECT_EQ(time, 77);
  player->setNextVideoTimestamp(40);
  video({kSps, kPps, kIdr, kSlice});
  EXPECT_EQ(player->copyNextFrame(nullptr)->luma().data[0], 1);
  EXPECT_EQ(player->copyNextFrame(&time)->luma().data[0], 2);
  EXPECT_EQ(time, 40);
  EXPECT_EQ(player->copyNextFrame(&time), nullptr);
}

TEST_F(ZELPreviewPlayerTest, StartsAnewWithTheNextSetsAfterAReset) {
  video({kSps, kPps, kIdr});
  player->setNextVideoTimestamp(40);
  player->resetPlayer();
  host.runUntilIdle();
  EXPECT_EQ(player->imageWidth(), 0);
  EXPECT_EQ(player->imageHeight(), 0);
  EXPECT_EQ(player->nextVideoTimestamp(), 40);
  EXPECT_EQ(host.liveThreads("preview decode"), 0);
  EXPECT_EQ(player->copyNextFrame(nullptr), nullptr);
  video({unit({0x67, 9, 9}), unit({0x68, 9}), kIdr});
  EXPECT_EQ(decoders.lastSps(), bytes({0x67, 9, 9}));
  EXPECT_EQ(pictures->times.size(), 2u);
}

TEST_F(ZELPreviewPlayerTest, ShowsNothingThatTheDecoderHeldBackBeforeAReset) {
  decoders.holdBack();
  video({kSps, kPps, kIdr, kSlice});
  pictures->times.clear();
  player->resetPlayer();
  bool shot = false;
  player->createSnapshot([&](const platform::PixelBufferRef&) { shot = true; });
  host.runUntilIdle();
  EXPECT_THAT(pictures->times, IsEmpty());
  EXPECT_FALSE(shot);
  EXPECT_EQ(player->imageWidth(), 0);
}

// The unit that the decode thread is at gives its picture after the reset.
TEST_F(ZELPreviewPlayerTest, ShowsNothingThatWasBeingDecodedDuringAReset) {
  bool shot = false;
  decoders.onDecode([&] {
    decoders.onDecode({});
    player->resetPlayer();
    player->createSnapshot([&](const platform::PixelBufferRef&) { shot = true; });
  });
  video({kSps, kPps, kIdr});
  EXPECT_THAT(pictures->times, IsEmpty());
  EXPECT_FALSE(shot);
  EXPECT_EQ(player->imageWidth(), 0);
  video({kSps, kPps, kIdr});
  EXPECT_TRUE(shot);
  EXPECT_EQ(pictures->times.size(), 1u);
  EXPECT_EQ(player->imageWidth(), 64);
}

TEST_F(ZELPreviewPlayerTest, AnswersASnapshotBeforeTheDelegate) {
  std::vector<std::string> order;
  pictures->onPicture = [&] { order.emplace_back("delegate"); };
  player->createSnapshot([&](const platform::PixelBufferRef&) { order.emplace_back("snapshot"); });
  video({kSps, kPps, kIdr});
  EXPECT_THAT(order, ElementsAre("snapshot", "delegate"));
}

TEST_F(ZELPreviewPlayerTest, DeliversTheUnitHeldBackBeforeAResetFirst) {
  player->appendVideoBytes(kIdr);
  player->resetPlayer();
  player->appendVideoBytes(kSlice);
  EXPECT_THAT(media->lines, ElementsAre("key 0: 0 0 0 1 101 4"));
}

TEST_F(ZELPreviewPlayerTest, EndsItsThreadWithItself) {
  video({kSps, kPps, kIdr});
  player.reset();
  host.runUntilIdle();
  EXPECT_EQ(host.liveThreads("preview decode"), 0);
  EXPECT_EQ(decoders.live(), 0u);
}

TEST_F(ZELPreviewPlayerTest, MayDieInsideASnapshotBlock) {
  player->createSnapshot([&](const platform::PixelBufferRef&) { player.reset(); });
  append(join(kSps, kPps, kIdr));
  append(kSlice);
  EXPECT_EQ(player, nullptr);
  EXPECT_EQ(host.liveThreads("preview decode"), 0);
}

// What the cutter makes of the same chunks is the measure: every slice of it is handed on, and nothing else.
TEST_F(ZELPreviewPlayerTest, HandsOnWhatTheCutterGivesForEveryCutOfTheStream) {
  const Bytes stream = join(kSps, kPps, kIdr, join(unit({0x41}), repeated(50, 7)), kSlice, join(kIdr, kSlice));
  player->setMediaDataDelegate(media);
  for (std::size_t cut = 0; cut <= stream.size(); ++cut) {
    create();
    orq::H264NaluParser cutter;
    std::vector<std::string> expected;
    const auto at = stream.begin() + static_cast<std::ptrdiff_t>(cut);
    for (const Bytes& chunk : {Bytes(stream.begin(), at), Bytes(at, stream.end()), kSps}) {
      for (const auto& each : cutter.AppendData(chunk.data(), static_cast<int>(chunk.size()))) {
        const bool isKey = each->size() >= 6 && each->data()[4] == 0x65;
        const bool isSlice = each->size() >= 6 && each->data()[4] == 0x41;
        if (isKey || isSlice) expected.push_back((isKey ? "key 0:" : "slice 0:") + listed(bytesOf(*each)));
      }
      append(chunk);
    }
    std::erase_if(media->lines, [](const std::string& line) { return line.starts_with("sets"); });
    EXPECT_GE(expected.size(), 2u) << "cut at " << cut;
    EXPECT_EQ(media->take(), expected) << "cut at " << cut;
  }
}

}  // namespace
}  // namespace zel::test
