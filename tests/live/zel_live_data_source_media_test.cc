// The road of pictures and sound, in virtual time.

#include <ZELTarkaSDK/ZELLiveDataSource.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/live/live_test.h"
#include "tests/media/nal_bytes.h"

namespace zel::test {
namespace {

using platform::MediaTime;
using testing::ElementsAre;
using testing::IsEmpty;

class LiveMediaTest : public LiveTest {
 protected:
  void runFrom(std::int64_t firstSound) {
    start();
    hearAt(firstSound);
    log->take();
  }
  // One picture, through both threads.
  void pass(int luma, std::int64_t timestamp) {
    see(luma, timestamp);
    letThreadsRun();
  }
};

TEST_F(LiveMediaTest, DeliversInItsOrder) {
  start();
  source->onAACHeader(hex("1190"));
  source->onAACAdts(hex("A1"), 1000);
  source->onAACHeader(hex("1190"));
  source->onAACAdts(hex("A2"), 1021);
  pass(7, 1040);
  source->onAACAdts(hex("A3"), 1042);
  pass(9, 1080);
  EXPECT_THAT(log->take(),
              ElementsAre("sound header 1190",  // and two frames of sound are held back
                          "raw 40 luma 7", "stitched 40 luma 8", "video header 6701 6802", "key unit 40 000000016508",
                          "sound 42 a3", "raw 80 luma 9", "stitched 80 luma 10", "unit 80 00000001410a"));
  EXPECT_THAT(encoders.times(), ElementsAre(MediaTime{40, 1000}, MediaTime{80, 1000}));
}

TEST_F(LiveMediaTest, DropsPicturesBeforeTheFirstSoundAndFromBeforeIt) {
  start();
  see(1, 5000);
  EXPECT_EQ(source->bufferTimestamp(), 0);
  hearAt(5100);
  see(2, 5099);
  see(3, 5100);
  EXPECT_EQ(source->bufferTimestamp(), 5100);
  EXPECT_THAT(log->take(), ElementsAre("sound header 1190", "raw 0 luma 3"));
  EXPECT_EQ(source->statistics().pictures, 3u);
  EXPECT_EQ(source->statistics().notWanted, 2u);
}

TEST_F(LiveMediaTest, KeepsTheNewestFiveOfSixPictures) {
  runFrom(1000);
  for (int i = 1; i <= 6; ++i) see(i, 1000 + i);
  log->take();
  letThreadsRun();
  EXPECT_EQ(log->count("stitched"), 5u);
  EXPECT_EQ(log->count("stitched 1 "), 0u);
  EXPECT_EQ(source->statistics().droppedBeforeStitching, 1u);
}

TEST_F(LiveMediaTest, ForgetsPicturesThatWaitToBeStitchedAtTheStop) {
  runFrom(1000);
  see(1, 1001);
  source->stopLiveData();
  log->take();
  start();
  hearAt(2000);
  letThreadsRun();
  EXPECT_EQ(log->count("stitched"), 0u);
  see(2, 2001);
  letThreadsRun();
  EXPECT_EQ(log->count("stitched 1 luma 3"), 1u);
}

TEST_F(LiveMediaTest, HandsOnParameterSetsWithoutBytesAsTheyAre) {
  runFrom(1000);
  encoders.beSilent();
  see(1, 1042);
  log->take();
  encoders.emitParameterSets(hex("67"), hex(""));
  EXPECT_THAT(log->take(), ElementsAre("video header 67 "));
}

TEST_F(LiveMediaTest, PutsAStartCodeInPlaceOfTheLength) {
  runFrom(1000);
  encoders.beSilent();
  see(1, 1042);
  encoders.emitParameterSets(hex("67"), hex("68"));
  log->take();
  Bytes unit = repeated(46, 0x11);
  std::ranges::copy(hex("0000002A65"), unit.begin());
  const Bytes changed = encoders.emitUnit(unit, true, {42, 1000});
  EXPECT_EQ(Bytes(changed.begin(), changed.begin() + 5), hex("0000000165"));
  EXPECT_EQ(changed.size(), 46u);
  EXPECT_THAT(log->take(), ElementsAre("key unit 42 " + hexText(changed)));
}

TEST_F(LiveMediaTest, TakesTheTimesValueWhateverItsScale) {
  runFrom(1000);
  encoders.beSilent();
  see(1, 1042);
  encoders.emitParameterSets(hex("67"), hex("68"));
  log->take();
  encoders.emitUnit(hex("00000001 41"), false, {42, 90'000});
  EXPECT_THAT(log->take(), ElementsAre("unit 42 0000000141"));
}

TEST_F(LiveMediaTest, DropsUnitsThatHoldNothing) {
  runFrom(1000);
  encoders.beSilent();
  encoders.emitParameterSets(hex("67"), hex("68"));
  log->take();
  for (const auto unit : {"", "00", "000000", "00000000"}) encoders.emitUnit(hex(unit), true, {0, 1000});
  EXPECT_THAT(log->take(), IsEmpty());
  EXPECT_EQ(source->statistics().droppedUnits, 4u);
}

TEST_F(LiveMediaTest, DeliversTheFirstParameterSetsOfARun) {
  runFrom(1000);
  encoders.beSilent();
  encoders.emitParameterSets(hex("6701"), hex("6802"));
  encoders.emitParameterSets(hex("6703"), hex("6804"));
  EXPECT_THAT(log->take(), ElementsAre("video header 6701 6802"));
}

TEST_F(LiveMediaTest, DeliversBothHeadersAgainInTheNextRun) {
  runFrom(1000);
  pass(1, 1000);
  source->stopLiveData();
  log->take();
  start();
  EXPECT_FALSE(source->hasVideo() || source->hasAudio());
  EXPECT_EQ(source->firstTimestamp(), 0);
  hearAt(9000);
  pass(2, 9010);
  EXPECT_THAT(log->take(), ElementsAre("sound header 1190", "raw 10 luma 2", "stitched 10 luma 3",
                                       "video header 6701 6802", "key unit 10 000000016503"));
}

TEST_F(LiveMediaTest, ForgetsAtTheStopWhatWaitsForTheEncoder) {
  source->setIsEncode(false);
  runFrom(1000);
  pass(1, 1000);
  pass(2, 1001);  // stitched, and nobody encodes them
  source->stopLiveData();
  source->setIsEncode(true);
  runFrom(2000);
  pass(3, 2040);
  EXPECT_THAT(encoders.times(), ElementsAre(MediaTime{40, 1000}));
}

TEST_F(LiveMediaTest, ForgetsAtTheStopWhatWaitsForTheRenderer) {
  runFrom(1000);
  see(1, 1000);
  see(2, 1001);
  source->stopLiveData();
  runFrom(2000);
  pass(3, 2040);
  EXPECT_EQ(log->count("stitched"), 1u);
  EXPECT_EQ(log->count("stitched 40 luma 4"), 1u);
}

TEST_F(LiveMediaTest, LetsPicturesWaitUntilTheEncoderIsGone) {
  runFrom(1000);
  auto picture = pictureOf(1);
  const std::weak_ptr<const platform::PixelBuffer> watch = picture;
  source->onPixelBuffer(picture, 1000);
  picture.reset();
  bool waited = false;
  encoders.onDestroy([&] { waited = !watch.expired(); });
  source->stopLiveData();
  encoders.onDestroy({});
  EXPECT_TRUE(waited);
  EXPECT_TRUE(watch.expired());
}

TEST_F(LiveMediaTest, KeepsTheNewestPicturesTimeOverAStart) {
  runFrom(1000);
  see(1, 1040);
  source->stopLiveData();
  start();
  EXPECT_EQ(source->bufferTimestamp(), 1040);
  EXPECT_EQ(source->firstTimestamp(), 0);
}

TEST_F(LiveMediaTest, LetsSoundFlowFromTheFirstFrameOnWithoutEncoding) {
  source->setIsEncode(false);
  start();
  hearAt(1000);
  for (int i = 1; i <= 6; ++i) pass(i, 1000 + i);
  EXPECT_EQ(log->count("sound 0 aa"), 1u);
  EXPECT_EQ(log->count("stitched"), 6u);
  EXPECT_EQ(log->count("video header"), 0u);
  EXPECT_THAT(encoders.created(), IsEmpty());
  EXPECT_EQ(source->statistics().droppedBeforeEncoding, 1u);  // five wait, for nobody
  source->stopLiveData();
}

TEST_F(LiveMediaTest, DropsAPictureThatCannotBeStitched) {
  runFrom(1000);
  library.renders = false;
  pass(1, 1000);
  library.renders = true;
  pass(2, 1040);
  EXPECT_THAT(log->take(), ElementsAre("raw 0 luma 1", "raw 40 luma 2", "stitched 40 luma 3", "video header 6701 6802",
                                       "key unit 40 000000016503"));
  EXPECT_EQ(source->statistics().notStitched, 1u);
}

TEST_F(LiveMediaTest, StitchesNothingWithoutARenderer) {
  runFrom(1000);
  library.makesRenderers = false;
  pass(1, 1000);
  EXPECT_EQ(log->count("stitched"), 0u);
  library.makesRenderers = true;
  pass(2, 1040);
  EXPECT_EQ(log->count("stitched"), 1u);
}

TEST_F(LiveMediaTest, TellsTheRendererEverythingBeforeTheFirstPicture) {
  source->setLogoAngle(45);
  source->setLogoImage(platform::RgbaImage{1, 1, {1, 2, 3, 4}});
  runFrom(1000);
  pass(1, 1000);
  pass(2, 1040);
  EXPECT_THAT(library.takeCalls(),
              ElementsAre("size 160x80", std::string("offset ") + kOffsetText, "video", "angle 45.000000",
                          "logo of width 1", "keep purple", "video", "render", "video", "render"));
}

// The fifth picture that cannot be encoded in spite of four attempts.
TEST_F(LiveMediaTest, EndsWithAnErrorWhereTheEncoderFailsAlways) {
  runFrom(1000);
  encoders.failPictures(1000);
  for (int i = 1; i <= 4; ++i) pass(i, 1000 + i);
  EXPECT_EQ(encoders.attempts(), 16u);
  EXPECT_EQ(source->encodeFailCount(), 4);
  EXPECT_EQ(log->count("error"), 0u);
  pass(5, 1005);
  EXPECT_EQ(encoders.attempts(), 20u);
  EXPECT_EQ(source->encodeFailCount(), 0);
  pass(6, 1006);
  host.advance(60);
  EXPECT_EQ(log->count("error zelcam.liveSource 7 encode image error"), 1u);
  EXPECT_EQ(log->count("error"), 1u);
}

TEST_F(LiveMediaTest, WaitsForGoodWhereTheEncodeThreadStopsTheRun) {
  runFrom(1000);
  encoders.failPictures(20);
  for (int i = 1; i <= 5; ++i) see(i, 1000 + i);
  host.advance(60);
  EXPECT_EQ(host.liveTasks(), 1u);  // the encode thread; the render thread has ended
  EXPECT_TRUE(source->cancelled());
  EXPECT_TRUE(source->isLive());
  EXPECT_EQ(encoders.live(), 1u);
  EXPECT_EQ(source->player()->mediaDataDelegate(), source);
  EXPECT_EQ(library.live, 0);
  source->stopLiveData();
  EXPECT_EQ(host.liveTasks(), 1u);
  EXPECT_THAT(written(), IsEmpty());
}

TEST_F(LiveMediaTest, ForgetsFailuresAtTheThirdAttemptsSuccess) {
  runFrom(1000);
  encoders.failPictures(4 + 2);
  pass(1, 1000);
  EXPECT_EQ(source->encodeFailCount(), 1);
  pass(2, 1040);
  EXPECT_EQ(encoders.attempts(), 7u);
  EXPECT_EQ(source->encodeFailCount(), 0);
  EXPECT_THAT(encoders.times(), ElementsAre(MediaTime{40, 1000}));
}

TEST_F(LiveMediaTest, CountsFailuresOverRuns) {
  runFrom(1000);
  encoders.failPictures(12);
  for (int i = 0; i < 3; ++i) pass(i, 1000 + i);
  source->stopLiveData();
  EXPECT_EQ(source->encodeFailCount(), 3);
  runFrom(2000);
  encoders.failPictures(8);
  pass(1, 2000);
  EXPECT_EQ(log->count("error"), 0u);
  pass(2, 2001);
  host.runUntilIdle();
  EXPECT_EQ(log->count("error zelcam.liveSource 7 encode image error"), 1u);
}

// From the camera's bytes to the delegate.
TEST_F(LiveMediaTest, StreamsWhatTheCameraSends) {
  start();
  const auto frame = [](int type, const Bytes& payload) {
    return join(bytes({6 + static_cast<int>(payload.size()), 0, 0, 0, type, 0}), payload);
  };
  const auto time = [&](int stream, int milliseconds) {
    return frame(8, bytes({stream, milliseconds, 0, 0, 0, 0, 0, 0, 0}));
  };
  const Bytes sound = bytes({0xFF, 0xF1, 0x4C, 0x80, 0x01, 0x3F, 0xFC, 7, 8});
  for (const Bytes& each : {frame(1, unit({0x67, 1})), frame(1, unit({0x68, 2})), time(1, 30), frame(2, sound),
                            frame(1, unit({0x65, 3})), time(0, 40), frame(1, unit({0x41, 4}))}) {
    send(each);
  }
  letThreadsRun();
  send(join(time(1, 51), frame(2, sound)));
  // A unit takes effect when the next one comes.
  EXPECT_THAT(log->take(), ElementsAre("sound header 1190", "raw 10 luma 1", "stitched 10 luma 2",
                                       "video header 6701 6802", "key unit 10 000000016502", "sound 21 0708"));
}

}  // namespace
}  // namespace zel::test
