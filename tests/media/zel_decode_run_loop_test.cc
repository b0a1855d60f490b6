#include "media/zel_decode_run_loop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include <ZELTarkaSDK/platform/ports.h>

#include "platform/simulated/scripted_video_decoder.h"
#include "platform/simulated/simulated_platform.h"
#include "tests/media/nal_bytes.h"

namespace zel::test {
namespace {

using platform::DecodeStatus;
using testing::ElementsAre;
using testing::IsEmpty;

class DecodedPictures final : public ZELPixelBufferDataProtocol {
 public:
  void onPixelBuffer(const platform::PixelBufferRef& pixelBuffer, std::int64_t timestamp) override {
    times.push_back(timestamp);
    lumas.push_back(pixelBuffer->luma().data[0]);
    if (onPicture) onPicture();
  }
  std::vector<std::int64_t> times;
  std::vector<int> lumas;
  std::function<void()> onPicture;
};

class ZELDecodeRunLoopTest : public testing::Test {
 protected:
  void create() {
    loop = ZELDecodeRunLoop::initWidthSps(host.ports().threads, decoders, bytes({0x67, 1}), bytes({0x68, 2}), log);
  }
  void start() {
    create();
    loop->start();
    host.runUntilIdle();
  }
  void append(int header, std::uint64_t time) {
    const Bytes data = prefixed({header, 1});
    loop->appendDecodeData(std::make_shared<orq::MediaBuffer>(data.data(), static_cast<int>(data.size()), time));
  }
  int threads() const { return host.liveThreads("preview decode"); }
  std::int64_t polledTime() {
    const auto picture = loop->getNextMediaPixelBuffer();
    return picture ? picture->timestamp : -1;
  }

  platform::SimulatedPlatform host;
  platform::ScriptedVideoDecoders decoders;
  std::shared_ptr<DecodedPictures> log = std::make_shared<DecodedPictures>();
  std::shared_ptr<ZELDecodeRunLoop> loop;
};

TEST_F(ZELDecodeRunLoopTest, HandsPicturesToTheDelegateWithTheirTimes) {
  start();
  append(0x65, 40);
  append(0x41, 80);
  EXPECT_THAT(log->times, IsEmpty());  // decoding is the thread's business
  host.runUntilIdle();
  EXPECT_THAT(log->times, ElementsAre(40, 80));
  EXPECT_THAT(log->lumas, ElementsAre(1, 2));
}

TEST_F(ZELDecodeRunLoopTest, GivesPicturesToWhoeverPolls) {
  start();
  append(0x65, 40);
  append(0x41, 80);
  host.runUntilIdle();
  EXPECT_EQ(polledTime(), 40);
  EXPECT_EQ(polledTime(), 80);
  EXPECT_EQ(polledTime(), -1);
}

TEST_F(ZELDecodeRunLoopTest, KeepsTheLatestFivePictures) {
  start();
  append(0x65, 0);
  for (std::uint64_t time = 1; time <= 6; ++time) {
    append(0x41, time);
    host.runUntilIdle();
  }
  for (std::int64_t time = 2; time <= 6; ++time) EXPECT_EQ(polledTime(), time);
  EXPECT_EQ(polledTime(), -1);
}

TEST_F(ZELDecodeRunLoopTest, DecodesWithoutADelegate) {
  start();
  log.reset();
  append(0x65, 40);
  host.runUntilIdle();
  EXPECT_EQ(polledTime(), 40);
}

TEST_F(ZELDecodeRunLoopTest, DecodesOneUnitACall) {
  start();
  append(0x65, 1);
  append(0x41, 2);
  append(0x41, 3);
  std::vector<std::size_t> decodedAtPicture;
  log->onPicture = [&] { decodedAtPicture.push_back(decoders.units().size()); };
  host.runUntilIdle();
  EXPECT_THAT(decodedAtPicture, ElementsAre(1, 2, 3));
}

TEST_F(ZELDecodeRunLoopTest, LetsUnitsBeforeTheLoopRunsWaitForTheNext) {
  create();
  append(0x65, 1);
  append(0x41, 2);
  loop->start();
  host.runUntilIdle();
  EXPECT_THAT(log->times, IsEmpty());
  append(0x41, 3);
  host.runUntilIdle();
  EXPECT_THAT(log->times, ElementsAre(1, 2, 3));
}

TEST_F(ZELDecodeRunLoopTest, DropsTheHeadForTheSixteenthUnitUnlessItIsAKeyUnit) {
  create();
  append(0x65, 1);
  for (std::uint64_t time = 2; time <= 20; ++time) append(0x41, time);
  loop->start();
  host.runUntilIdle();
  append(0x41, 21);
  host.runUntilIdle();
  EXPECT_EQ(log->times.size(), 21u);

  create();
  for (std::uint64_t time = 1; time <= 16; ++time) append(0x41, time);
  decoders.onDecode([] { ADD_FAILURE() << "no key unit came"; });
  loop->start();
  host.runUntilIdle();
  append(0x41, 17);
  host.runUntilIdle();
}

TEST_F(ZELDecodeRunLoopTest, DeliversNothingForUnitsWithoutAPicture) {
  start();
  decoders.script(DecodeStatus::picture);
  decoders.script(DecodeStatus::noPicture);
  append(0x65, 1);
  append(0x41, 2);
  append(0x41, 3);
  host.runUntilIdle();
  EXPECT_THAT(log->times, ElementsAre(1, 3));
  EXPECT_EQ(polledTime(), 1);
  EXPECT_EQ(polledTime(), 3);
}

TEST_F(ZELDecodeRunLoopTest, GivesALatePictureTheTimeOfItsOwnUnit) {
  start();
  decoders.holdBack();
  append(0x65, 1);
  append(0x41, 2);
  host.runUntilIdle();
  EXPECT_THAT(log->times, ElementsAre(1));
}

TEST_F(ZELDecodeRunLoopTest, ForgetsWhatTheDecoderHoldsBackWhenItIsStopped) {
  start();
  decoders.holdBack();
  append(0x65, 1);
  append(0x41, 2);
  host.runUntilIdle();
  loop->stop();
  host.runUntilIdle();
  EXPECT_THAT(log->times, ElementsAre(1));
}

TEST_F(ZELDecodeRunLoopTest, EndsItsThreadWhenItIsStopped) {
  start();
  EXPECT_EQ(threads(), 1);
  loop->stop();
  host.runUntilIdle();
  EXPECT_EQ(threads(), 0);
  append(0x65, 1);
  host.runUntilIdle();
  EXPECT_THAT(log->times, IsEmpty());
  loop->stop();
}

TEST_F(ZELDecodeRunLoopTest, IgnoresAStopBeforeTheThreadRunsItsLoop) {
  create();
  loop->start();
  loop->stop();
  host.runUntilIdle();
  EXPECT_EQ(threads(), 1);
  append(0x65, 1);
  host.runUntilIdle();
  EXPECT_THAT(log->times, ElementsAre(1));
}

TEST_F(ZELDecodeRunLoopTest, EndsItsThreadWhenItIsLetGoBeforeTheThreadRunsItsLoop) {
  create();
  loop->start();
  loop.reset();
  host.runUntilIdle();
  EXPECT_EQ(threads(), 0);
  EXPECT_EQ(decoders.live(), 0u);
}

TEST_F(ZELDecodeRunLoopTest, EndsItsThreadWhenItIsLetGo) {
  start();
  loop.reset();
  host.runUntilIdle();
  EXPECT_EQ(threads(), 0);
  EXPECT_EQ(decoders.live(), 0u);
}

TEST_F(ZELDecodeRunLoopTest, MayBeLetGoInsideItsOwnDelegate) {
  start();
  log->onPicture = [&] { loop.reset(); };
  append(0x65, 1);
  append(0x41, 2);
  host.runUntilIdle();
  EXPECT_THAT(log->times, ElementsAre(1));
  EXPECT_EQ(threads(), 0);
  EXPECT_EQ(decoders.live(), 0u);
}

TEST_F(ZELDecodeRunLoopTest, StartsOneThreadOnly) {
  start();
  loop->start();
  host.runUntilIdle();
  EXPECT_EQ(threads(), 1);
  loop->stop();
  host.runUntilIdle();
  loop->start();
  host.runUntilIdle();
  EXPECT_EQ(threads(), 0);
}

TEST_F(ZELDecodeRunLoopTest, GoesAwayWithoutHavingBeenStarted) {
  create();
  append(0x65, 1);
  loop.reset();
  EXPECT_EQ(decoders.live(), 0u);
}

TEST_F(ZELDecodeRunLoopTest, ForgetsUnitsAndPicturesWhenItIsCleared) {
  start();
  append(0x65, 1);
  host.runUntilIdle();
  append(0x41, 2);
  loop->clearData();
  host.runUntilIdle();
  EXPECT_THAT(log->times, ElementsAre(1));
  EXPECT_EQ(polledTime(), -1);
}

TEST_F(ZELDecodeRunLoopTest, IsNotMadeWithoutADecoder) {
  decoders.failCreations(1, platform::DecoderCreationStage::session, -1);
  testing::internal::CaptureStderr();
  create();
  EXPECT_EQ(loop, nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "create session err:-1\n");
}

// Whatever the order in which the threads take their turns.
class AnyOrder : public testing::TestWithParam<std::uint64_t> {};

TEST_P(AnyOrder, DecodesEveryUnitOnceAndInOrder) {
  platform::SimulatedPlatform host(GetParam());
  platform::ScriptedVideoDecoders decoders;
  const auto log = std::make_shared<DecodedPictures>();
  const auto loop = ZELDecodeRunLoop::initWidthSps(host.ports().threads, decoders, bytes({0x67}), bytes({0x68}), log);
  loop->start();
  const auto feeder = host.ports().threads.start("feeder", {});
  host.runUntilIdle();
  std::vector<std::int64_t> sent;
  for (int i = 0; i < 12; ++i) {
    sent.push_back(i);
    feeder->runLoop().perform([&loop, i] {
      const Bytes data = prefixed({i == 0 ? 0x65 : 0x41, 1});
      loop->appendDecodeData(std::make_shared<orq::MediaBuffer>(data.data(), static_cast<int>(data.size()), i));
    });
  }
  host.runUntilIdle();
  EXPECT_EQ(log->times, sent);
}

INSTANTIATE_TEST_SUITE_P(Seeds, AnyOrder, testing::Range<std::uint64_t>(1, 31));

}  // namespace
}  // namespace zel::test
