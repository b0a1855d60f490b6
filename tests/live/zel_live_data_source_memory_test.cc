// What comes of a live run where memory ends: each of its allocations fails, one a run. A program of its own, because
// that replaces the allocator.

#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <optional>
#include <random>

#include "tests/allocation_fault.h"
#include "tests/live/faulty_ports.h"
#include "tests/live/live_test.h"
#include "tests/sanitizers.h"

namespace zel::test {
namespace {

constexpr int kShort = 16, kLong = 150;                       // pictures that the camera shows
constexpr int kGroup = 4;                                     // pictures from one key picture to the next
constexpr int kSeeded = kSanitized || kImitated ? 100 : 500;  // allocations of a long run, drawn by the seed

// Counts what reaches it, without memory.
class Delegate final : public ZELLiveDataSourceProtocol {
 public:
  void sourceOnError(const ZELError&) override { ++errors; }
  void sourceOnH264Header(Bytes, Bytes) override { ++headers; }
  void sourceOnH264Nalu(Bytes, bool, std::int64_t) override { ++units; }
  void sourceOnAACHeader(Bytes) override { ++headers; }
  void sourceOnAACData(Bytes, std::int64_t) override { ++sounds; }
  int errors = 0, headers = 0, units = 0, sounds = 0;
};

Bytes frame(std::uint8_t type, const Bytes& payload) {
  Bytes whole;
  appendLittleEndian(whole, static_cast<std::uint32_t>(6 + payload.size()));
  return join(whole, bytes({type, 0}), payload);
}

Bytes timeFrame(bool sound, std::uint64_t time) {
  Bytes payload{static_cast<std::uint8_t>(sound)};
  appendLittleEndian(payload, time);
  return frame(8, payload);
}

// AAC-LC, 48 kHz, stereo, of 10 bytes.
const Bytes kSound = frame(2, hex("FFF14C80015FFC AABBCC"));
const Bytes kSets = frame(1, hex("00000001 6742001E 00000001 68CE3880"));

Bytes pictureFrame(int number) {
  return frame(1, join(hex("00000001"), bytes({number % kGroup == 0 ? 0x65 : 0x41, 0x88, number % 256, 1, 2, 3})));
}

// What is left of a run.
struct Outcome {
  int units = 0;
  bool isTold = false;  // by an error, a count or a link that is closed
  int escaped = 0;
  int threads = 0;
  std::size_t tasks = 0;
};

// One life of a host, from the first call on: it opens a camera, streams live, stops and closes.
class LiveRun {
 public:
  explicit LiveRun(int pictures) : pictures_(pictures) {}

  Outcome run() {
    openAndStart();
    show();
    stop();
    Outcome outcome;
    outcome.units = delegate_->units;
    outcome.isTold = isTold_;
    end();
    outcome.escaped = faulty_.escaped();
    outcome.threads = host_.liveThreads("session thread") + host_.liveThreads("preview decode");
    outcome.tasks = host_.liveTasks();
    return outcome;
  }

 private:
  static platform::Ports withCodecs(platform::Ports ports, LiveRun& run) {
    ports.videoDecoders = &run.decoders_;
    ports.mediaLibrary = &run.mediaLibrary_;
    ports.videoEncoders = &run.encoders_;
    return ports;
  }

  // A call of the host's into the core, which lets no exception out.
  template <class Call>
  static void call(Call make) {
    const FaultyCode core;
    make();
  }

  void send(const Bytes& bytes) {
    if (camera_->current() != nullptr) camera_->current()->send(bytes);
    host_.runUntilIdle();
  }

  void openAndStart() {
    camera_ = host_.plug(cameraDescription());
    call([this] { stack_->accessory().openCamera(); });
    host_.runUntilIdle();
    send(join(kMarker, bytes({7, 0, 0, 0, 2, 0, 5})));
    send(bytes({7, 0, 0, 0, 2, 0, 5}));
    source_ = ZELLiveDataSource::initWitCameraResolution(*stack_, 6, 16, 8, 8'000'000);
    source_->setDataSourceDelegate(delegate_);
    call([this] { source_->startLiveData(); });
    host_.runUntilIdle();
    for (const std::string_view answer : std::initializer_list<std::string_view>{"0480 01 06", "0E80 01", kOffset}) {
      send(frame(4, hex(answer)));
    }
    host_.advance(0.05);
  }

  void show() {
    send(join(timeFrame(true, 1000), kSound));
    for (int number = 0; number < pictures_; ++number) {
      const auto time = static_cast<std::uint64_t>(1010 + 33 * number);
      const Bytes sets = number % kGroup == 0 ? kSets : Bytes();
      send(join(timeFrame(false, time), sets, pictureFrame(number), timeFrame(true, time), kSound));
      // The stages look for pictures every 10 ms, and hold five.
      if (number % 4 == 3) host_.advance(0.02);
    }
    send(kSets);
    host_.advance(0.05);
  }

  void stop() {
    const LinkStatistics link = stack_->statistics();
    const LiveStatistics live = source_->statistics();
    const auto player = source_->player();
    const PreviewStatistics preview = player ? player->statistics() : PreviewStatistics();
    isTold_ = delegate_->errors != 0 || !player || stack_->accessory().status() != 2 || link.dropped.noMemory != 0 ||
              link.streamErrors + link.positionsLost != 0 || preview.dropped + preview.withoutPicture != 0 ||
              live.notStitched + live.notEncoded + live.droppedBeforeStitching + live.droppedBeforeEncoding != 0 ||
              live.droppedUnits != 0;
    call([this] { source_->stopLiveData(); });
    host_.runUntilIdle();
    host_.advance(0.05);
  }

  void end() {
    source_.reset();
    call([this] { stack_->accessory().closeCamera(); });
    host_.runUntilIdle();
    call([this] { stack_.reset(); });
    host_.runUntilIdle();
  }

  static constexpr std::string_view kOffset =
      "0FC0 01  0A00 1400 1E000000 01 00000000000000"
      "01000000 02000000 03000000 04000000 05000000 06000000 0000000000000000"
      "00000000 00000000 00000000 00000000 00000000 00000000 0000000000000000";

  platform::ScriptedVideoDecoders decoders_;
  platform::ScriptedMediaLibrary mediaLibrary_;
  platform::ScriptedVideoEncoders encoders_;
  platform::SimulatedPlatform host_;
  FaultyPorts faulty_{host_.ports()};
  std::shared_ptr<Delegate> delegate_ = std::make_shared<Delegate>();
  std::shared_ptr<platform::ScriptedAccessory> camera_;
  std::unique_ptr<CameraStack> stack_ = std::make_unique<CameraStack>(withCodecs(faulty_.ports(), *this));
  std::shared_ptr<ZELLiveDataSource> source_;
  const int pictures_;
  bool isTold_ = false;
};

// A run of which the allocation of that number fails; nothing where there were fewer.
std::optional<Outcome> runFailing(long number, int pictures) {
  const long before = heldBytes();
  std::optional<Outcome> outcome;
  bool struck = false;
  {
    const AllocationFault fault(number);
    outcome = LiveRun(pictures).run();
    struck = fault.hasStruck();
  }
  EXPECT_EQ(heldBytes(), before) << "allocation " << number;
  if (!struck) return std::nullopt;
  return outcome;
}

void expectAGoodEnd(const Outcome& outcome, int unitsOfAWholeRun, long number) {
  EXPECT_TRUE(outcome.units == unitsOfAWholeRun || outcome.isTold) << outcome.units << " units, allocation " << number;
  EXPECT_EQ(outcome.escaped, 0) << "allocation " << number;
  EXPECT_EQ(outcome.threads, 0) << "allocation " << number;
  EXPECT_EQ(outcome.tasks, 0u) << "allocation " << number;
}

long allocationsOfARun(int pictures) {
  const AllocationFault none(0);
  const Outcome whole = LiveRun(pictures).run();
  EXPECT_EQ(whole.units, pictures);
  EXPECT_FALSE(whole.isTold);
  return AllocationFault::counted();
}

// So many of a short run's allocations, from the one of that number on.
class ZELLiveDataSourceMemoryTest : public testing::TestWithParam<long> {
 protected:
  static constexpr long kBlock = 50;

  static void SetUpTestSuite() {
    LiveRun(kShort).run();  // takes what is taken once and for all
    LiveRun(kLong).run();
  }
};

TEST_P(ZELLiveDataSourceMemoryTest, EachAllocationThatFailsIsToldOrCountedAndLeavesNothingBehind) {
  const long end = std::min(GetParam() + kBlock, allocationsOfARun(kShort) + 1);
  for (long number = GetParam(); number < end && !HasFailure(); ++number) {
    const auto outcome = runFailing(number, kShort);
    if (outcome) expectAGoodEnd(*outcome, kShort, number);
  }
}

INSTANTIATE_TEST_SUITE_P(From, ZELLiveDataSourceMemoryTest, testing::Range(1L, 1001L, 50L));

TEST_F(ZELLiveDataSourceMemoryTest, AShortRunHasNoMoreAllocationsThanAreMadeToFail) {
  const long allocations = allocationsOfARun(kShort);
  EXPECT_GT(allocations, 400);
  EXPECT_LE(allocations, 1000);
}

TEST_F(ZELLiveDataSourceMemoryTest, AnyAllocationOfALongRunThatFailsIsToldOrCountedAndLeavesNothingBehind) {
  const long allocations = allocationsOfARun(kLong);
  ASSERT_GT(allocations, 2000);
  std::minstd_rand random(1);
  for (int one = 0; one < kSeeded && !HasFailure(); ++one) {
    const long number = std::uniform_int_distribution<long>(1, allocations)(random);
    const auto outcome = runFailing(number, kLong);
    if (outcome) expectAGoodEnd(*outcome, kLong, number);
  }
}

}  // namespace
}  // namespace zel::test
