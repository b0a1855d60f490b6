#include "simulator/media/media_source.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zel::simulator {
namespace {

using testing::ElementsAre;

const Bytes kSets{0, 0, 0, 1, 0x67, 0x42, 0, 0, 0, 1, 0x68, 0xCE};
const Bytes kKey{0, 0, 0, 1, 0x65, 0x88, 0x11, 0x12, 0x13};
const Bytes kOther{0, 0, 0, 1, 0x41, 0x9A, 0x21, 0x22, 0x23};
const Bytes kSound{0xFF, 0xF1, 0x60, 0x40, 0x01, 0x1F, 0xFC, 0xCC};

Bytes joined(Bytes first, const Bytes& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

// A loop of a key picture and three others, 10 a second; audio frames of 64 ms, if any.
MediaSetup setup(bool timestamps, bool audio = false) {
  const auto loop = std::make_shared<VideoLoop>(4);
  loop->add({joined(kSets, kKey), true});
  for (int i = 0; i < 3; ++i) loop->add({kOther, false});
  MediaSetup result;
  result.video = loop;
  result.rate = 10;
  result.timestamps = timestamps;
  if (audio) result.audio = readyAudio({16000, {kSound}});
  return result;
}

std::vector<MediaFrame> take(MediaSource& source, std::size_t count) {
  std::vector<MediaFrame> frames;
  while (frames.size() < count) frames.push_back(source.next(0).value());
  return frames;
}

std::vector<double> duesOf(const std::vector<MediaFrame>& frames) {
  std::vector<double> dues;
  for (const MediaFrame& frame : frames) dues.push_back(frame.due);
  return dues;
}

Bytes videoOf(const std::vector<MediaFrame>& frames) {
  Bytes bytes;
  for (const MediaFrame& frame : frames)
    if (frame.type == kVideo) bytes = joined(bytes, frame.payload);
  return bytes;
}

auto isFrame(std::uint16_t type, const Bytes& payload, double due) {
  return testing::AllOf(testing::Field(&MediaFrame::type, type), testing::Field(&MediaFrame::payload, payload),
                        testing::Field(&MediaFrame::due, testing::DoubleNear(due, 1e-9)));
}

TEST(MediaSourceTest, SendsPicturesAtTheirRateWithoutEnd) {
  MediaSource source(setup(false));
  EXPECT_THAT(take(source, 5), ElementsAre(isFrame(kVideo, joined(kSets, kKey), 0), isFrame(kVideo, kOther, 0.1),
                                           isFrame(kVideo, kOther, 0.2), isFrame(kVideo, kOther, 0.3),
                                           isFrame(kVideo, joined(kSets, kKey), 0.4)));
}

TEST(MediaSourceTest, PutsATimestampBeforeEachPictureAndEachAudioFrame) {
  MediaSource source(setup(true, true));
  EXPECT_THAT(take(source, 10),
              ElementsAre(isFrame(kTimestamp, {0, 0, 0, 0, 0, 0, 0, 0, 0}, 0),  // stream, milliseconds
                          isFrame(kVideo, joined(kSets, kKey), 0),              //
                          isFrame(kTimestamp, {1, 0, 0, 0, 0, 0, 0, 0, 0}, 0),  //
                          isFrame(kAudio, kSound, 0),                           //
                          isFrame(kTimestamp, {1, 64, 0, 0, 0, 0, 0, 0, 0}, 0.064), isFrame(kAudio, kSound, 0.064),  //
                          isFrame(kTimestamp, {0, 100, 0, 0, 0, 0, 0, 0, 0}, 0.1), isFrame(kVideo, kOther, 0.1),     //
                          isFrame(kTimestamp, {1, 128, 0, 0, 0, 0, 0, 0, 0}, 0.128), isFrame(kAudio, kSound, 0.128)));
}

TEST(MediaSourceTest, SendsNoTimestampsForOlderFirmware) {
  MediaSource source(setup(false, true));
  for (const MediaFrame& frame : take(source, 40)) EXPECT_NE(frame.type, kTimestamp);
}

TEST(MediaSourceTest, CountsTheCamerasTimeFromTheStartOfItsClock) {
  MediaSource source(setup(true));
  take(source, 2);
  source.startClock(0.05);
  EXPECT_THAT(take(source, 1), ElementsAre(isFrame(kTimestamp, {0, 50, 0, 0, 0, 0, 0, 0, 0}, 0.1)));
}

TEST(MediaSourceTest, StandsStillWhileAPictureIsBeingMade) {
  MediaSetup waiting = setup(true, true);
  const auto loop = std::make_shared<VideoLoop>(4);
  waiting.video = loop;
  MediaSource source(waiting);
  EXPECT_FALSE(source.next(0.5).has_value());
  EXPECT_FALSE(source.next(2.0).has_value());
  loop->add({kOther, false});
  EXPECT_THAT(take(source, 2),
              ElementsAre(isFrame(kTimestamp, {0, 0xD0, 0x07, 0, 0, 0, 0, 0, 0}, 2.0), isFrame(kVideo, kOther, 2.0)));
}

TEST(MediaSourceTest, BeginsToSoundInStepWhenItsAudioIsReady) {
  std::promise<std::shared_ptr<const AudioTrack>> promise;
  MediaSetup late = setup(false);
  late.audio = promise.get_future().share();
  MediaSource source(late);
  take(source, 2);  // up to 0.1 s
  promise.set_value(std::make_shared<const AudioTrack>(AudioTrack{16000, {kSound, kOther, kSets, kKey, Bytes{4}}}));
  const auto frames = take(source, 2);
  EXPECT_THAT(frames, ElementsAre(isFrame(kVideo, kOther, 0.2), isFrame(kAudio, Bytes{4}, 0.256)));
}

TEST(MediaSourceTest, LosesKeyPictures) {
  MediaSetup faulty = setup(false);
  faulty.faults.lostKeyFrames = 1;
  MediaSource source(faulty);
  EXPECT_THAT(duesOf(take(source, 4)), testing::Pointwise(testing::DoubleNear(1e-9), {0.1, 0.2, 0.3, 0.5}));
}

TEST(MediaSourceTest, LeavesOutTheFirstParameterSets) {
  MediaSetup faulty = setup(false);
  faulty.faults.missingParameterSets = 1;
  MediaSource source(faulty);
  const auto frames = take(source, 5);
  EXPECT_EQ(frames[0].payload, kKey);
  EXPECT_EQ(frames[4].payload, joined(kSets, kKey));
}

TEST(MediaSourceTest, FlipsBitsInSlicesOnly) {
  MediaSetup faulty = setup(false);
  faulty.faults.corruptUnits = 1;
  MediaSource source(faulty);
  for (const MediaFrame& frame : take(source, 40)) {
    const bool key = frame.payload.size() == 21;
    const Bytes sound = key ? joined(kSets, kKey) : kOther;
    ASSERT_EQ(frame.payload.size(), sound.size());
    const std::size_t header = key ? 17 : 5;
    EXPECT_TRUE(std::equal(sound.begin(), sound.begin() + static_cast<std::ptrdiff_t>(header), frame.payload.begin()));
  }
  MediaSource again(faulty);
  EXPECT_NE(videoOf(take(again, 40)), videoOf(take(*std::make_unique<MediaSource>(setup(false)), 40)));
}

TEST(MediaSourceTest, DoesTheSameForTheSameSeed) {
  MediaSetup faulty = setup(false);
  faulty.faults = {.corruptUnits = 0.5, .lostKeyFrames = 0.5, .splitAnywhere = true};
  faulty.seed = 7;
  MediaSource one(faulty), two(faulty);
  const auto first = take(one, 50), second = take(two, 50);
  for (std::size_t i = 0; i < 50; ++i) EXPECT_EQ(first[i].payload, second[i].payload) << i;
}

TEST(MediaSourceTest, CutsPicturesAnywhere) {
  MediaSetup faulty = setup(true);
  faulty.faults.splitAnywhere = true;
  MediaSource source(faulty);
  std::size_t timestamps = 0;
  Bytes video;
  while (video.size() < 21 + 3 * 9) {
    const MediaFrame frame = source.next(0).value();
    if (frame.type == kTimestamp) ++timestamps;
    if (frame.type == kVideo) video = joined(video, frame.payload);
  }
  EXPECT_EQ(video, joined(joined(joined(kSets, kKey), kOther), joined(kOther, kOther)));
  EXPECT_EQ(timestamps, 4u);  // one a picture, however it is cut
}

TEST(MediaSourceTest, HoldsPicturesBackAndSendsThemAtOnce) {
  MediaSetup faulty = setup(true);
  faulty.faults.burst = 3;
  MediaSource source(faulty);
  const auto frames = take(source, 8);
  EXPECT_THAT(duesOf(frames), testing::Pointwise(testing::DoubleNear(1e-9), {0.3, 0.3, 0.3, 0.3, 0.3, 0.3, 0.6, 0.6}));
  EXPECT_EQ(frames[2].payload, (Bytes{0, 100, 0, 0, 0, 0, 0, 0, 0}));  // when it was taken, not when it was sent
}

}  // namespace
}  // namespace zel::simulator
