// Starting, stopping, the camera's answers and the application's events.

#include <ZELTarkaSDK/ZELLiveDataSource.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include <ZELTarkaSDK/platform/application_events.h>

#include "tests/command/full_queues.h"
#include "tests/live/live_test.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string kPreviewOn = "040006", kPreviewOff = "0600";
const std::string kSoundOn = "0e0001", kSoundOff = "0e0000";
const std::string kOffsetRequest = "0f400006";

class ZELLiveDataSourceTest : public LiveTest {
 protected:
  void post(std::string_view name) {
    host.ports().notifications.post({std::string(name), {}});
    host.runUntilIdle();
  }
  void enterBackground() { post(platform::kApplicationDidEnterBackgroundNotification); }
  void becomeActive() { post(platform::kApplicationDidBecomeActiveNotification); }

  void startPreview() {
    source->startPreviewWithFrame({1, 2, 30, 40}, [this](std::shared_ptr<ZELRenderView> view) {
      ++viewsGiven;
      given = std::move(view);
    });
    host.runUntilIdle();
  }
  std::shared_ptr<zel::PreviewConsumer> registered() { return stack->parser().previewPlayer(); }
  void expectNothingLeft() {
    host.advance(0.02);
    EXPECT_EQ(host.liveTasks(), 0u);
    EXPECT_EQ(library.live, 0);
    EXPECT_EQ(encoders.live(), 0u);
    EXPECT_TRUE(source->cancelled());
    EXPECT_FALSE(source->isLive());
  }

  int viewsGiven = 0;
  std::shared_ptr<ZELRenderView> given;
};

TEST_F(ZELLiveDataSourceTest, HasItsArgumentsAndNothingElseAtFirst) {
  EXPECT_EQ(source->resolution(), 6u);
  EXPECT_EQ(source->width(), 160u);
  EXPECT_EQ(source->height(), 80u);
  EXPECT_EQ(source->bitrate(), 8'000'000u);
  EXPECT_EQ(source->fps(), 25u);
  EXPECT_TRUE(source->isStitch() && source->isEncode() && source->cancelled());
  EXPECT_FALSE(source->removePurple() || source->isPreview() || source->isLive());
  EXPECT_FALSE(source->hasVideo() || source->hasAudio());
  EXPECT_EQ(source->encodeFailCount(), 0);
  EXPECT_EQ(source->firstTimestamp(), 0);
  EXPECT_EQ(source->bufferTimestamp(), 0);
  EXPECT_EQ(source->logoAngle(), 0);
  EXPECT_FALSE(source->logoImage() || source->offset() || source->url());
  EXPECT_EQ(source->player(), nullptr);
}

TEST_F(ZELLiveDataSourceTest, LeavesTheRateOfAnUnknownResolutionAtZero) {
  makeSource(16);
  EXPECT_EQ(source->fps(), 0u);
}

TEST_F(ZELLiveDataSourceTest, KeepsAUrlForTheHost) {
  source->setUrl("rtmp://example/live");
  EXPECT_EQ(source->url(), "rtmp://example/live");
}

// The start chain

TEST_F(ZELLiveDataSourceTest, StartsStepByStep) {
  source->startLiveData();
  EXPECT_TRUE(source->isLive());
  EXPECT_FALSE(source->cancelled());
  EXPECT_THAT(written(), ElementsAre(kPreviewOn));
  answerPreview();
  EXPECT_THAT(written(), ElementsAre(kSoundOn));
  answerSound();
  EXPECT_THAT(written(), ElementsAre(kOffsetRequest));
  EXPECT_EQ(host.liveTasks(), 0u);
  answerOffset();
  EXPECT_EQ(source->offset(), kOffsetText);
  EXPECT_EQ(source->player(), registered());
  EXPECT_EQ(source->player()->pixelBufferDelegate(), source);
  EXPECT_EQ(source->player()->mediaDataDelegate(), source);
  EXPECT_THAT(encoders.created(), ElementsAre(platform::VideoEncoderSettings{160, 80, 8'000'000, 25}));
  EXPECT_EQ(host.liveTasks(), 2u);
  EXPECT_THAT(log->take(), IsEmpty());
}

TEST_F(ZELLiveDataSourceTest, UsesThePlayerThatIsThere) {
  const auto player = stack->suitablePreviewPlayer();
  start();
  EXPECT_EQ(source->player(), player);
}

TEST_F(ZELLiveDataSourceTest, NarrowsTheEncodersNumbersTo32Bits) {
  source->setWidth((std::uint64_t{1} << 32) + 640);
  source->setHeight(320);
  source->setBitrate(0xFFFFFFFF);
  source->setFps(7);
  start();
  EXPECT_THAT(encoders.created(), ElementsAre(platform::VideoEncoderSettings{640, 320, -1, 7}));
}

TEST_F(ZELLiveDataSourceTest, SendsTheLowByteOfTheResolution) {
  makeSource(0x1FF);
  source->startLiveData();
  EXPECT_THAT(written(), ElementsAre("0400ff"));
  answerPreview();
  answerSound();
  EXPECT_THAT(written(), ElementsAre(kSoundOn, "0f4000ff"));
}

TEST_F(ZELLiveDataSourceTest, EndsTheStartWhereThePreviewIsRefused) {
  source->startLiveData();
  written();
  answer("0480 00 06");
  EXPECT_THAT(log->take(), ElementsAre("error zelcam.liveSource 4 failed to open camera video stream"));
  EXPECT_THAT(written(), IsEmpty());
  EXPECT_TRUE(source->isLive());
  EXPECT_FALSE(source->cancelled());
}

TEST_F(ZELLiveDataSourceTest, EndsTheStartWhereTheSoundIsRefused) {
  source->startLiveData();
  answerPreview();
  written();
  answer("0E80 00");
  EXPECT_THAT(log->take(), ElementsAre("error zelcam.liveSource 6 failed to switch audio"));
  EXPECT_THAT(written(), IsEmpty());
  EXPECT_TRUE(source->isLive());
}

TEST_F(ZELLiveDataSourceTest, EndsTheStartWithoutALensOffset) {
  source->startLiveData();
  answerPreview();
  answerSound();
  answer("0FC0 00");
  EXPECT_THAT(log->take(), ElementsAre("error zelcam.liveSource 3 failed to get camera offset"));
  EXPECT_TRUE(source->isLive());
  EXPECT_FALSE(source->offset());
  EXPECT_EQ(host.liveTasks(), 0u);
}

TEST_F(ZELLiveDataSourceTest, EndsTheStartWithoutAPreviewPlayer) {
  source->startLiveData();
  answerPreview();
  answerSound();
  EXPECT_THAT(written(), ElementsAre(kPreviewOn, kSoundOn, kOffsetRequest));
  stack->parser().setPreviewPlayer({});
  answerOffset();
  EXPECT_THAT(log->take(), ElementsAre("error zelcam.liveSource 1 failed to get camera demux"));
  EXPECT_EQ(host.liveTasks(), 0u);
}

TEST_F(ZELLiveDataSourceTest, StitchesOnWhereTheEncoderDoesNotOpen) {
  encoders.failOpenings(1);
  start();
  EXPECT_THAT(log->take(), ElementsAre("error zelcam.liveSource 7 failed to open encoder"));
  EXPECT_EQ(encoders.live(), 0u);
  EXPECT_EQ(host.liveTasks(), 1u);
  hearAt(1000);
  see(7, 1040);
  letThreadsRun();
  EXPECT_THAT(log->take(), ElementsAre("sound header 1190", "raw 40 luma 7", "stitched 40 luma 8"));
}

TEST_F(ZELLiveDataSourceTest, FailsLikewiseWhereThereIsNoEncoder) {
  encoders.failCreations(1);
  start();
  EXPECT_THAT(log->take(), ElementsAre("error zelcam.liveSource 7 failed to open encoder"));
}

class StitchingWithoutMemory : public ZELLiveDataSourceTest {
 protected:
  void SetUp() override {
    const platform::Ports hosts = ports();
    stack = std::make_unique<CameraStack>(platform::Ports{hosts.clock, hosts.threads, queues, hosts.accessories,
                                                          hosts.notifications, hosts.videoDecoders, hosts.mediaLibrary,
                                                          hosts.videoEncoders});
    ZELLiveDataSourceTest::SetUp();
    queues.global.refuse(2);  // the first attaches the source to the player
  }
  void TearDown() override {
    source.reset();
    stack.reset();
    host.runUntilIdle();
  }

  FullQueues queues{host.ports().queues};
};

TEST_F(StitchingWithoutMemory, IsToldAsAnEncoderThatDoesNotOpenAndOpensNone) {
  start();
  EXPECT_THAT(log->take(), ElementsAre("error zelcam.liveSource 7 failed to open encoder"));
  EXPECT_THAT(encoders.created(), IsEmpty());
  EXPECT_EQ(host.liveTasks(), 0u);
  source->stopLiveData();
  expectNothingLeft();
}

TEST_F(ZELLiveDataSourceTest, MakesNoRendererAndNoEncoderWithoutStitching) {
  source->setIsStitch(false);
  start();
  hearAt(1000);
  for (int i = 1; i <= 7; ++i) see(i, 1000 + 10 * i);
  letThreadsRun();
  EXPECT_EQ(library.created, 0);
  EXPECT_THAT(encoders.created(), IsEmpty());
  EXPECT_EQ(host.liveTasks(), 0u);
  EXPECT_EQ(log->count("raw"), 7u);
  EXPECT_EQ(log->count("sound"), 2u);
  EXPECT_EQ(log->count(""), 9u);
  EXPECT_EQ(source->statistics().droppedBeforeStitching, 2u);  // five wait, for nobody
}

TEST_F(ZELLiveDataSourceTest, RepeatsTheStartOfARunThatIsNotStopped) {
  start();
  start();
  EXPECT_EQ(encoders.created().size(), 2u);
  EXPECT_EQ(encoders.live(), 1u);
  EXPECT_EQ(host.liveTasks(), 4u);  // two of them wait for the end of the others
  source->stopLiveData();
  expectNothingLeft();
}

// The stop sequence

TEST_F(ZELLiveDataSourceTest, HasNothingToStopAtFirst) {
  source->stopLiveData();
  EXPECT_THAT(written(), IsEmpty());
}

TEST_F(ZELLiveDataSourceTest, StopsEverythingAndLetsTheCameraGo) {
  const auto player = stack->suitablePreviewPlayer();
  start();
  hearAt(1000);
  see(1, 1000);
  letThreadsRun();
  see(2, 1040);
  source->stopLiveData();
  EXPECT_EQ(player->pixelBufferDelegate(), nullptr);
  EXPECT_EQ(player->mediaDataDelegate(), nullptr);
  EXPECT_EQ(source->player(), nullptr);
  EXPECT_THAT(written(), ElementsAre(kPreviewOff, kSoundOff));
  expectNothingLeft();
}

TEST_F(ZELLiveDataSourceTest, StopsOnce) {
  start();
  source->stopLiveData();
  EXPECT_THAT(written(), ElementsAre(kPreviewOff, kSoundOff));
  source->stopLiveData();
  EXPECT_THAT(written(), IsEmpty());
}

TEST_F(ZELLiveDataSourceTest, TellsWhatTheCameraRefusesToStop) {
  start();
  source->stopLiveData();
  answer("0680 00");
  answer("0E80 00");
  EXPECT_THAT(log->take(), ElementsAre("error zelcam.liveSource 5 failed to close camera video stream",
                                       "error zelcam.liveSource 6 failed to switch audio"));
}

TEST_F(ZELLiveDataSourceTest, KeepsTheCameraForLiveWhenThePreviewStops) {
  start();
  startPreview();
  written();
  source->stopPreview();
  EXPECT_FALSE(source->isPreview());
  EXPECT_THAT(written(), IsEmpty());
  EXPECT_NE(source->player(), nullptr);
}

TEST_F(ZELLiveDataSourceTest, KeepsTheCameraForThePreviewWhenLiveStops) {
  start();
  startPreview();
  written();
  source->stopLiveData();
  EXPECT_FALSE(source->isLive());
  EXPECT_TRUE(source->isPreview());
  EXPECT_THAT(written(), IsEmpty());
  EXPECT_NE(source->player(), nullptr);
  source->stopPreview();
  EXPECT_THAT(written(), ElementsAre(kPreviewOff, kSoundOff));
}

// A stop after so many of the start's answers; those that still come are of no consequence.
class StoppedStart : public ZELLiveDataSourceTest, public testing::WithParamInterface<int> {};

TEST_P(StoppedStart, BeginsNothingAnyMore) {
  const auto player = stack->suitablePreviewPlayer();
  source->startLiveData();
  if (GetParam() > 0) answerPreview();
  if (GetParam() > 1) answerSound();
  written();
  source->stopLiveData();
  EXPECT_THAT(written(), ElementsAre(kPreviewOff, kSoundOff));
  answerStart();
  EXPECT_THAT(written(), IsEmpty());
  EXPECT_EQ(player->mediaDataDelegate(), nullptr);
  expectNothingLeft();
  start();
  EXPECT_EQ(host.liveTasks(), 2u);
}

INSTANTIATE_TEST_SUITE_P(AfterAnswers, StoppedStart, testing::Values(0, 1, 2));

// The camera goes after so many of the start's answers.
class UnpluggedStart : public ZELLiveDataSourceTest, public testing::WithParamInterface<int> {};

TEST_P(UnpluggedStart, IsToldAndMayBeRepeated) {
  const std::vector<std::vector<std::string>> told = {{"error zelcam.liveSource 4 failed to open camera video stream"},
                                                      {"error zelcam.liveSource 6 failed to switch audio"},
                                                      {"error zelcam.liveSource 3 failed to get camera offset"},
                                                      {}};
  source->startLiveData();
  if (GetParam() > 0) answerPreview();
  if (GetParam() > 1) answerSound();
  if (GetParam() > 2) answerOffset();
  host.unplug(camera);
  host.runUntilIdle();
  EXPECT_EQ(log->take(), told[static_cast<std::size_t>(GetParam())]);
  EXPECT_TRUE(source->isLive());
  source->stopLiveData();
  expectNothingLeft();
  openCamera();
  log->take();
  start();
  EXPECT_EQ(host.liveTasks(), 2u);
  EXPECT_THAT(log->take(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(AfterAnswers, UnpluggedStart, testing::Values(0, 1, 2, 3));

// Preview in a view

TEST_F(ZELLiveDataSourceTest, ShowsThePreviewInAView) {
  startPreview();
  EXPECT_TRUE(source->isPreview());
  EXPECT_THAT(written(), ElementsAre(kPreviewOn));
  answerPreview();
  EXPECT_THAT(written(), ElementsAre(kOffsetRequest));
  answerOffset();
  ASSERT_NE(given, nullptr);
  EXPECT_EQ(given->frame(), (ZELRect{1, 2, 30, 40}));
  EXPECT_EQ(library.view.frame, (ZELRect{1, 2, 30, 40}));
  EXPECT_EQ(library.view.renderType, 0);
  EXPECT_EQ(library.view.player, source->player());
  EXPECT_EQ(library.view.offset, kOffsetText);
  EXPECT_EQ(source->offset(), kOffsetText);
}

TEST_F(ZELLiveDataSourceTest, GivesNoViewWhereThePreviewIsRefused) {
  startPreview();
  answer("0480 00 06");
  EXPECT_THAT(log->take(), ElementsAre("error zelcam.liveSource 4 failed to open camera video stream"));
  EXPECT_EQ(viewsGiven, 0);
}

TEST_F(ZELLiveDataSourceTest, GivesNoViewWithoutALensOffset) {
  startPreview();
  answerPreview();
  answer("0FC0 00");
  EXPECT_THAT(log->take(), ElementsAre("error zelcam.liveSource 3 failed to get camera offset"));
  EXPECT_EQ(viewsGiven, 0);
}

// A result block that finds no memory for a copy of itself.
struct UncopiedBlock {
  explicit UncopiedBlock(std::vector<bool>& into) : results(into) {}
  UncopiedBlock(UncopiedBlock&&) = default;
  UncopiedBlock(const UncopiedBlock& other) : results(other.results) { throw std::bad_alloc(); }
  void operator()(bool success) const { results.push_back(success); }

  std::vector<bool>& results;
};

TEST_F(ZELLiveDataSourceTest, TellsASwitchForWhichThereIsNoMemoryAsOneThatTheCameraRefuses) {
  std::vector<bool> results;
  source->setCameraPreviewOn(true, UncopiedBlock(results));
  source->setCameraPreviewOn(false, UncopiedBlock(results));
  source->setCameraAudioOn(false, UncopiedBlock(results));
  EXPECT_THAT(results, ElementsAre(false, false, false));
  EXPECT_THAT(written(), IsEmpty());
  EXPECT_THAT(log->take(), ElementsAre("error zelcam.liveSource 4 failed to open camera video stream",
                                       "error zelcam.liveSource 5 failed to close camera video stream",
                                       "error zelcam.liveSource 6 failed to switch audio"));
}

// The renderer's purple switch

TEST_F(ZELLiveDataSourceTest, KeepsThePurpleSwitchForTheRenderer) {
  source->setRemovePurple(true);
  EXPECT_TRUE(source->removePurple());
  EXPECT_THAT(library.takeCalls(), IsEmpty());
  start();
  hearAt(1000);
  see(1, 1000);
  letThreadsRun();
  EXPECT_THAT(library.takeCalls(), testing::Contains("remove purple").Times(1));
}

TEST_F(ZELLiveDataSourceTest, ForwardsThePurpleSwitchInTheRenderersContext) {
  start();
  hearAt(1000);
  see(1, 1000);
  letThreadsRun();
  library.takeCalls();
  source->setRemovePurple(true);
  EXPECT_THAT(library.takeCalls(), ElementsAre("own context", "remove purple", "former context"));
}

// The application's events

TEST_F(ZELLiveDataSourceTest, SwitchesTheCameraOffInTheBackgroundAndOnAgain) {
  start();
  enterBackground();
  EXPECT_THAT(written(), ElementsAre(kPreviewOff));
  answer(kPreviewIsOff);
  EXPECT_THAT(written(), ElementsAre(kSoundOff));
  answerSound();
  host.advance(60);
  EXPECT_EQ(host.liveTasks(), 2u);
  becomeActive();
  EXPECT_THAT(written(), ElementsAre(kPreviewOn, kSoundOn));
  EXPECT_EQ(host.liveTasks(), 2u);
  EXPECT_EQ(encoders.created().size(), 1u);
  hearAt(1000);
  see(1, 1000);
  letThreadsRun();
  EXPECT_EQ(log->count("stitched"), 1u);
}

TEST_F(ZELLiveDataSourceTest, SwitchesTheSoundOffWhateverBecomesOfThePreview) {
  enterBackground();
  EXPECT_THAT(written(), ElementsAre(kPreviewOff));
  answer("0680 00");
  EXPECT_THAT(log->take(), ElementsAre("error zelcam.liveSource 5 failed to close camera video stream"));
  EXPECT_THAT(written(), ElementsAre(kSoundOff));
}

TEST_F(ZELLiveDataSourceTest, SwitchesOnOnlyWhatIsInUse) {
  becomeActive();
  EXPECT_THAT(written(), IsEmpty());
  startPreview();
  answerPreview();
  answerOffset();
  written();
  becomeActive();
  EXPECT_THAT(written(), ElementsAre(kPreviewOn));
}

// Lifetimes

TEST_F(ZELLiveDataSourceTest, HearsNothingAnyMoreOnceItIsGone) {
  source->startLiveData();
  written();
  source.reset();
  answerPreview();
  enterBackground();
  becomeActive();
  EXPECT_THAT(written(), IsEmpty());
}

TEST_F(ZELLiveDataSourceTest, LivesUntilItsRunIsStopped) {
  start();
  const std::weak_ptr<ZELLiveDataSource> kept = source;
  source.reset();
  ASSERT_FALSE(kept.expired());
  kept.lock()->stopLiveData();
  host.advance(0.02);
  EXPECT_TRUE(kept.expired());
}

TEST_F(ZELLiveDataSourceTest, TellsTheDelegateOfTheMomentWhenTheMainQueueComesToIt) {
  const auto later = std::make_shared<LiveLog>();
  source->failWithErrorCode(3, "failed to get camera offset");
  source->setDataSourceDelegate(later);
  EXPECT_THAT(later->take(), IsEmpty());
  const std::weak_ptr<ZELLiveDataSource> kept = source;
  source.reset();
  EXPECT_FALSE(kept.expired());
  host.runUntilIdle();
  EXPECT_THAT(later->take(), ElementsAre("error zelcam.liveSource 3 failed to get camera offset"));
  EXPECT_THAT(log->take(), IsEmpty());
  EXPECT_TRUE(kept.expired());
}

TEST_F(ZELLiveDataSourceTest, MayOutliveItsStack) {
  start();
  stack.reset();
  host.runUntilIdle();
  source->stopLiveData();
  host.runUntilIdle();
  EXPECT_THAT(log->take(), ElementsAre("error zelcam.liveSource 5 failed to close camera video stream",
                                       "error zelcam.liveSource 6 failed to switch audio"));
  expectNothingLeft();
}

TEST_F(ZELLiveDataSourceTest, GivesBackEverythingOverThreeHundredRuns) {
  for (int cycle = 0; cycle < 300; ++cycle) {
    start();
    hearAt(1000);
    for (int i = 0; i < 8; ++i) see(i, 1000 + i);
    letThreadsRun();
    ASSERT_EQ(log->count("unit") + log->count("key unit"), 5u) << "cycle " << cycle;
    source->stopLiveData();
    answer(kPreviewIsOff);
    answerSound();
    written();
    log->take();
    library.takeCalls();
    ASSERT_EQ(host.liveTasks(), 0u) << "cycle " << cycle;
    ASSERT_EQ(source.use_count(), 1) << "cycle " << cycle;
  }
  expectNothingLeft();
  EXPECT_EQ(registered(), nullptr);
  EXPECT_EQ(decoders.live(), 0u);
}

}  // namespace
}  // namespace zel::test
