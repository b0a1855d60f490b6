// Real threads, and a simulated camera at the other end of a socket.

#include <ZELTarkaSDK/ZELLiveDataSource.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <random>
#include <thread>

#include <ZELTarkaSDK/platform/application_events.h>

#include "tests/live/live_test.h"
#include "tests/sanitizers.h"
#include "tests/stack/simulator_fixture.h"

namespace zel::test {
namespace {

void store(const std::string& path, const Bytes& content) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
}

// A camera that shows a short stream, which only scripted decoders understand, and a source that streams from it.
class LiveThreads : public SimulatorFixture {
 protected:
  LiveThreads() {
    connect();
    ports_.videoDecoders = &decoders;
    ports_.mediaLibrary = &library;
    ports_.videoEncoders = &encoders;
    stack = std::make_unique<CameraStack>(ports_);
    stack->accessory().openCamera();
    EXPECT_TRUE(framesArrive(*stack));
    source = ZELLiveDataSource::initWitCameraResolution(*stack, 3, 16, 8, 1'000'000);
    source->setDataSourceDelegate(log);
  }

  void connect() {
    const auto unit = [](int header) { return bytes({0, 0, 0, 1, header, 0x88, 1}); };
    Bytes video = join(unit(0x67), unit(0x68), unit(0x65));
    for (int i = 0; i < 29; ++i) video = join(video, unit(0x41));
    Bytes audio;
    for (int i = 0; i < 50; ++i) audio = join(audio, bytes({0xFF, 0xF1, 0x4C, 0x80, 0x01, 0x3F, 0xFC, 7, 8}));
    simulator::SimulatorOptions options;
    options.accessoriesFolder = folder_.path();
    options.identity.serial = "E1A0001";
    options.video = folder_.file("stream.h264");
    options.audio = folder_.file("stream.aac");
    store(options.video, video);
    store(options.audio, audio);
    options.warn = [](const std::string&) {};
    camera = std::make_unique<simulator::CameraSimulator>(std::move(options));
    std::string error;
    EXPECT_TRUE(camera->start(error)) << error;
  }

  std::size_t units() const { return log->count("unit") + log->count("key unit"); }
  bool streams(std::size_t count = 1) {
    return runUntil([&] { return units() >= count; });
  }
  // A stop by a thread that may have to wait.
  void stop() {
    std::thread([kept = source] { kept->stopLiveData(); }).join();
  }
  void expectNothingRuns() {
    EXPECT_EQ(encoders.live(), 0u);
    EXPECT_TRUE(eventually([&] { return library.live == 0; }));
    EXPECT_FALSE(source->isLive());
  }

  platform::ScriptedVideoDecoders decoders;
  platform::ScriptedMediaLibrary library;
  platform::ScriptedVideoEncoders encoders;
  platform::Ports ports_ = ports();
  std::unique_ptr<simulator::CameraSimulator> camera;
  std::unique_ptr<CameraStack> stack;
  std::shared_ptr<LiveLog> log = std::make_shared<LiveLog>();
  std::shared_ptr<ZELLiveDataSource> source;
};

TEST_F(LiveThreads, StreamsACamerasPicturesAndSound) {
  source->startLiveData();
  ASSERT_TRUE(streams(10));
  ASSERT_TRUE(runUntil([&] { return log->count("sound ") >= 3; }));
  stop();
  expectNothingRuns();
  const auto lines = log->take();
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines.front(), "sound header 1190");
  EXPECT_THAT(lines, testing::Contains("video header 6701 6802").Times(1));
  EXPECT_THAT(lines, testing::Each(testing::Not(testing::StartsWith("error"))));
  const std::string someOffset = source->offset().value_or("");
  EXPECT_TRUE(someOffset.starts_with("2_")) << someOffset;
}

TEST_F(LiveThreads, SurvivesBackgroundAndUnplugging) {
  source->startLiveData();
  ASSERT_TRUE(streams());
  ports().notifications.post({std::string(platform::kApplicationDidEnterBackgroundNotification), {}});
  ports().notifications.post({std::string(platform::kApplicationDidBecomeActiveNotification), {}});
  log->take();
  ASSERT_TRUE(streams());
  camera->unplug();
  ASSERT_TRUE(reaches(*stack, 0));
  stop();
  expectNothingRuns();
  camera->plug();
  ASSERT_TRUE(framesArrive(*stack));
  log->take();
  source->startLiveData();
  EXPECT_TRUE(streams());
  stop();
}

TEST_F(LiveThreads, GivesBackEverythingOverThreeHundredRuns) {
  std::size_t memory = 0, descriptors = 0, threads = 0;
  for (int cycle = 0; cycle < 300; ++cycle) {
    source->startLiveData();
    ASSERT_TRUE(runUntil([&] { return encoders.live() == 1; })) << "cycle " << cycle;
    if (cycle % 20 == 19) {
      ASSERT_TRUE(streams()) << "cycle " << cycle;
    }
    source->stopLiveData();
    // The stop does not wait for an encoder that was only getting ready.
    ASSERT_TRUE(runUntil([&] { return encoders.live() == 0; })) << "cycle " << cycle;
    log->take();
    library.takeCalls();
    if (cycle == 99) {  // everything that is made once has been made
      memory = residentKilobytes();
      descriptors = descriptorCount();
      threads = threadCount();
    }
  }
  expectNothingRuns();
  EXPECT_TRUE(runUntil([&] { return source.use_count() == 1; }));
  EXPECT_TRUE(runUntil([&] { return descriptorCount() <= descriptors && threadCount() <= threads; }));
  if (!kKeepsFreedMemory) {
    EXPECT_LT(residentKilobytes(), memory + 2048);
  }
}

// Stopped when the seed says so: in the middle of the start as well as of the run.
class StoppedAnywhere : public LiveThreads, public testing::WithParamInterface<unsigned> {};

TEST_P(StoppedAnywhere, LeavesNothingRunning) {
  std::mt19937 random(GetParam());
  for (int round = 0; round < 25; ++round) {
    const int requests = camera->requests() + static_cast<int>(random() % 4);
    const bool untilUnits = random() % 3 == 0;
    source->startLiveData();
    ASSERT_TRUE(runUntil([&] { return untilUnits ? units() > 0 : camera->requests() >= requests; }));
    stop();
    // A stop does not wait for an encoder that is only getting ready. One that has made a unit was ready, and is gone.
    if (!untilUnits) {
      EXPECT_TRUE(eventually([&] { return encoders.live() == 0; }));
    }
    expectNothingRuns();
    log->take();
  }
  EXPECT_TRUE(runUntil([&] { return source.use_count() == 1; }));
}

INSTANTIATE_TEST_SUITE_P(Seeds, StoppedAnywhere, testing::Values(1u, 2u, 3u));

TEST_F(LiveThreads, TakesCallsFromEverywhereWhileItRuns) {
  encoders.failPictures(3);
  source->startLiveData();
  ASSERT_TRUE(streams());
  std::atomic<bool> over = false;
  const auto repeat = [&](const std::function<void(int)>& call) {
    return std::thread([&over, call] {
      for (int i = 0; !over; ++i) {
        call(i);
        std::this_thread::yield();
      }
    });
  };
  std::thread threads[] = {
      repeat([&](int i) { source->setRemovePurple(i % 2 == 0); }),
      repeat([&](int i) { source->setDataSourceDelegate(i % 2 == 0 ? log : std::make_shared<LiveLog>()); }),
      repeat([&](int i) { source->setLogoAngle(static_cast<float>(i)); }),
      repeat([&](int) { EXPECT_LE(source->statistics().stitched, source->statistics().pictures); }),
      repeat([&](int) { EXPECT_GE(source->bufferTimestamp(), 0); }),
  };
  const auto before = source->statistics().encoded;
  EXPECT_TRUE(runUntil([&] { return source->statistics().encoded >= before + 5; }));
  stop();
  over = true;
  for (std::thread& thread : threads) thread.join();
  expectNothingRuns();
}

// A program whose encode thread waits for good: everything else goes, and then the process.
class Stalled final : public LiveThreads {
 public:
  void TestBody() override {}

  bool stall() {
    encoders.failPictures(1'000'000);
    source->startLiveData();
    const bool failed = runUntil([&] { return log->count("error zelcam.liveSource 7 encode image error") == 1; });
    const bool rendererGone = eventually([&] { return library.live == 0; });
    source->stopLiveData();  // returns at once
    return failed && rendererGone && source->cancelled() && source->isLive() && encoders.live() == 1;
  }
};

TEST(LiveThreadsDeathTest, ProcessExitsWhileAnEncodeThreadWaitsForGood) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        bool stalled = false;
        {
          Stalled program;
          stalled = program.stall();
        }
        std::exit(stalled ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace zel::test
