#include <ZELTarkaSDK/Camera.h>
#include <gmock/gmock.h>

#include <filesystem>
#include <future>

#include "tests/facade/bus_camera.h"

namespace zel::test {
namespace {

using Reason = CameraError::Reason;
using std::chrono::milliseconds;

constexpr std::uint16_t kStartPreview = 0x0004, kSwitchSound = 0x000E;

class StreamsTest : public BusCamera {
 protected:
  std::string file(const std::string& name) const { return folder_.path() + "-" + name; }
};

TEST_F(StreamsTest, PicturesComeInTheirSizeWithTimesThatGrow) {
  attach();
  Camera camera = opened();
  auto pictures = camera.pictures({.resolution = previewCode({1440, 720, 15})});
  std::int64_t before = 0;
  for (int one = 0; one < 5; ++one) {
    const auto picture = pictures.next().get();
    ASSERT_TRUE(picture) << picture.error().message;
    EXPECT_EQ(picture->pixels->width(), 1440);
    EXPECT_EQ(picture->pixels->height(), 720);
    EXPECT_GT(picture->time, before);
    before = picture->time;
  }
}

TEST_F(StreamsTest, PicturesOfTwoResolutionsAtOnceAreRefused) {
  attach();
  Camera camera = opened();
  auto pictures = camera.pictures({.resolution = 3});
  auto others = camera.pictures({.resolution = 7});
  const auto refused = others.next().get();
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().reason, Reason::invalid);
  EXPECT_EQ(refused.error().message, "the preview runs at resolution 3, and can have no other, 7, at the same time");
  EXPECT_TRUE(pictures.next().get());
  pictures.close();
  EXPECT_EQ(camera.pictures({.resolution = 7}).next().get()->pixels->width(), 2160);
}

TEST_F(StreamsTest, PicturesGoOnWhenTheCameraComesBack) {
  attach();
  Camera camera = opened();
  auto pictures = camera.pictures();
  ASSERT_TRUE(pictures.next().get());
  auto link = camera.linkChanges();
  simulated().unplug();
  while (*link.next().get() != LinkStatus::closed) {
  }
  while (pictures.next({.timeLimit = milliseconds(1)}).get()) {
  }
  simulated().plug();
  EXPECT_TRUE(pictures.next().get());
}

TEST_F(StreamsTest, PicturesGoOnWhenTheStreamHadToBeOpenedAgain) {
  simulator::Faults faults;
  faults.length4GiB = 1;
  attach(faults);
  Camera camera = opened();
  auto pictures = camera.pictures();
  while (camera.statistics().positionsLost == 0) ASSERT_TRUE(pictures.next().get());
  for (int one = 0; one < 10; ++one) EXPECT_TRUE(pictures.next().get());
}

TEST_F(StreamsTest, AStreamGivesWholePicturesAndSoundFromAKeyPictureOn) {
  attach();
  Camera camera = opened();
  auto stream = camera.stream().get();
  ASSERT_TRUE(stream) << stream.error().message;
  EXPECT_EQ(stream->headers().width, 1440);
  EXPECT_EQ(stream->headers().audioConfig.size(), 2u);
  auto packets = stream->packets();
  const auto first = packets.next().get();
  ASSERT_TRUE(first);
  EXPECT_EQ(first->track, Track::video);
  EXPECT_TRUE(first->key);
  bool hasSound = false;
  while (!hasSound) hasSound = packets.next().get()->track == Track::audio;
}

TEST_F(StreamsTest, OutputsComeAndGoWhileAStreamRuns) {
  attach();
  Camera camera = opened();
  auto stream = camera.stream({.outputs = {file("a.mp4")}}).get();
  ASSERT_TRUE(stream) << stream.error().message;
  const auto second = stream->addOutput(file("b.ts"));
  ASSERT_TRUE(second);
  auto packets = stream->packets();
  for (int one = 0; one < 60; ++one) ASSERT_TRUE(packets.next().get());
  const auto removed = stream->removeOutput(*second);
  ASSERT_TRUE(removed);
  EXPECT_GT(removed->pictures, 0u);
  EXPECT_EQ(stream->outputs().size(), 1u);
  stream->stop();
  EXPECT_EQ(stream->outputs()[0].state, OutputState::finished);
  EXPECT_FALSE(stream->outputs()[0].fault) << *stream->outputs()[0].fault;
  EXPECT_GT(std::filesystem::file_size(file("a.mp4")), 100'000u);
  EXPECT_GT(std::filesystem::file_size(file("b.ts")), 10'000u);
}

TEST_F(StreamsTest, WhatIsNoOutputIsRefused) {
  attach();
  Camera camera = opened();
  EXPECT_EQ(camera.stream({.outputs = {"film.avi"}}).get().error().reason, Reason::invalid);
  auto stream = camera.stream().get();
  ASSERT_TRUE(stream);
  const auto refused = stream->addOutput("film.avi");
  ASSERT_FALSE(refused);
  EXPECT_THAT(refused.error().message, testing::StartsWith("\"film.avi\" is no output; use FILE.mp4, "));
  EXPECT_EQ(stream->removeOutput(99).error().message, "there is no output 99");
}

TEST_F(StreamsTest, TwoStreamsAtOnceAreRefused) {
  attach();
  Camera camera = opened();
  auto stream = camera.stream().get();
  ASSERT_TRUE(stream);
  EXPECT_EQ(camera.stream().get().error().message, "a stream is running already; outputs can be added to it");
  stream->stop();
  EXPECT_TRUE(camera.stream().get());
}

TEST_F(StreamsTest, PicturesAreSeenBesideAStreamOfEitherKindAndAfterIt) {
  attach();
  Camera camera = opened();
  auto pictures = camera.pictures();
  ASSERT_TRUE(pictures.next().get());
  for (const bool stitched : {false, true}) {
    StreamOptions options;
    if (stitched) options.stitched = StitchedPictures{.width = 640, .height = 320};
    auto stream = camera.stream(options).get();
    ASSERT_TRUE(stream) << stream.error().message;
    EXPECT_EQ(stream->headers().width, stitched ? 640 : 1440);
    while (pictures.next({.timeLimit = milliseconds(1)}).get()) {
    }
    EXPECT_EQ(pictures.next().get()->pixels->width(), 1440) << stitched;
  }
  EXPECT_TRUE(pictures.next().get());
}

TEST_F(StreamsTest, APictureThatNobodyLooksAtIsNotDecoded) {
  attach();
  Camera camera = opened();
  auto stream = camera.stream().get();
  ASSERT_TRUE(stream);
  auto packets = stream->packets();
  for (int one = 0; one < 30; ++one) ASSERT_TRUE(packets.next().get());
  const auto before = stream->statistics().preview.pictures;
  EXPECT_EQ(before, 0u);
  EXPECT_TRUE(camera.pictures().next().get()) << "the decoder goes on with the next key picture";
}

TEST_F(StreamsTest, APictureBesideAStreamHasItsPlaceAmongThePackets) {
  attach();
  Camera camera = opened();
  auto stream = camera.stream().get();
  ASSERT_TRUE(stream);
  auto packets = stream->packets();
  auto pictures = camera.pictures();
  const auto picture = pictures.next().get();
  ASSERT_TRUE(picture);
  const auto time = stream->timeOf(*picture);
  ASSERT_TRUE(time);
  std::int64_t reached = 0;
  while (reached < *time) {
    const auto packet = packets.next().get();
    ASSERT_TRUE(packet);
    if (packet->track == Track::video) reached = packet->time;
  }
  EXPECT_EQ(reached, *time);
  EXPECT_FALSE(stream->timeOf({picture->pixels, picture->time - 3'600'000})) << "older than the stream";
}

TEST_F(StreamsTest, PicturesThatTheCameraRefusesEndWithItsError) {
  simulator::Faults faults;
  faults.refuse = {kStartPreview};
  attach(faults);
  Camera camera = opened();
  EXPECT_EQ(camera.pictures().next().get().error(),
            (CameraError{Reason::refused, "pictures: the camera refused, or its answer cannot be read",
                         "NSOSStatusErrorDomain", 101}));
}

TEST_F(StreamsTest, AStreamWithoutSoundSaysSo) {
  simulator::Faults faults;
  faults.noReply = {kSwitchSound};
  attach(faults);
  Camera camera = opened();
  EXPECT_TRUE(camera.pictures().next().get()) << "pictures do not need it";
  const auto stream = camera.stream({.startTimeLimit = milliseconds(700)}).get();
  ASSERT_FALSE(stream);
  EXPECT_EQ(stream.error().reason, Reason::media);
  EXPECT_EQ(stream.error().message,
            "the stream did not start: pictures come, and no sound, without which no stream begins");
}

TEST_F(StreamsTest, AStreamWithoutPicturesSaysSo) {
  attach();
  Camera camera = opened();
  simulated().beSilent(2);
  const auto stream = camera.stream({.startTimeLimit = milliseconds(100)}).get();
  ASSERT_FALSE(stream);
  EXPECT_EQ(stream.error().message, "the stream did not start: the camera sent no picture");
}

TEST_F(StreamsTest, AStreamTellsALostCameraAndGoesOnWithADiscontinuity) {
  attach();
  Camera camera = opened();
  auto stream = camera.stream().get();
  ASSERT_TRUE(stream);
  auto problems = stream->problems();
  auto packets = stream->packets();
  ASSERT_TRUE(packets.next().get());
  simulated().unplug();
  EXPECT_EQ(problems.next().get()->error.reason, Reason::lost);
  simulated().plug();
  bool goesOn = false;
  while (!goesOn) {
    const auto packet = packets.next().get();
    ASSERT_TRUE(packet) << packet.error().message;
    goesOn = packet->discontinuity;
  }
}

TEST_F(StreamsTest, TheEndOfTheCameraEndsItsStream) {
  attach();
  std::optional<Camera> camera(opened());
  auto stream = camera->stream({.outputs = {file("end.mp4")}}).get();
  ASSERT_TRUE(stream);
  auto packets = stream->packets();
  auto pictures = camera->pictures();
  ASSERT_TRUE(packets.next().get());
  camera.reset();
  while (packets.next().get()) {
  }
  while (pictures.next().get()) {
  }
  EXPECT_EQ(packets.next().get().error().reason, Reason::closed);
  EXPECT_EQ(pictures.next().get().error().reason, Reason::closed);
  EXPECT_EQ(stream->problems().next().get().error().reason, Reason::closed);
  stream->stop();
  EXPECT_EQ(stream->outputs()[0].state, OutputState::finished);
}

TEST_F(StreamsTest, AStreamThatWasStoppedTakesNoOutputAndGivesNoPackets) {
  attach();
  Camera camera = opened();
  auto stream = camera.stream().get();
  ASSERT_TRUE(stream);
  stream->stop();
  const auto refused = stream->addOutput(file("late.mp4"));
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error(), (CameraError{Reason::closed, "the stream was stopped", "", 0}));
  EXPECT_EQ(stream->packets().next().get().error().reason, Reason::closed);
}

TEST_F(StreamsTest, AStreamMayBeStoppedInACallback) {
  attach();
  Camera camera = opened();
  auto stream = std::make_unique<CameraStream>(*camera.stream().get());
  auto packets = stream->packets();
  std::promise<void> stopped;
  packets.each([&, done = false](const MediaPacket&) mutable {
    if (std::exchange(done, true)) return;
    stream.reset();
    stopped.set_value();
  });
  stopped.get_future().get();
  EXPECT_TRUE(camera.stream().get());
}

TEST_F(StreamsTest, AStreamThatNobodyTakesEnds) {
  attach();
  Camera camera = opened();
  { const auto dropped = camera.stream(); }
  auto link = camera.linkChanges();
  Result<CameraStream> next = CameraError{};
  while (!(next = camera.stream().get()) && next.error().reason == Reason::invalid) {
  }
  EXPECT_TRUE(next) << next.error().message;
}

// One resolution at a time is streamed: a start that was given up and left its stream behind would be in the way.
TEST_F(StreamsTest, AStartWhoseStopWasRequestedBeforeLeavesNoStreamBehind) {
  attach();
  Camera camera = opened();
  std::stop_source stop;
  stop.request_stop();
  for (int round = 0; round < 50; ++round) {
    StreamOptions options;
    options.resolution = round % 2 == 0 ? 3 : 7;
    ASSERT_EQ(camera.stream(options, {.stop = stop.get_token()}).get().error().reason, Reason::cancelled);
  }
}

}  // namespace
}  // namespace zel::test
