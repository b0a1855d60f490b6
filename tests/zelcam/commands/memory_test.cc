// What zelcam holds, whatever the camera sends, and what it says where there is no memory.

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <future>
#include <semaphore>
#include <thread>

#include "tests/sanitizers.h"
#include "tests/zelcam/greedy_camera.h"
#include "tests/zelcam/vast_video.h"
#include "tests/zelcam/zelcam_test.h"

namespace zel::test {
namespace {

using testing::AnyOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr std::int64_t kMiB = 1 << 20;

class MemoryTest : public ZelcamTest {
 protected:
  void SetUp() override {
    if (kKeepsFreedMemory) GTEST_SKIP() << "a sanitizer takes many times the memory";
  }

  // Units: MiB. The report of the tests bears the peak.
  static void expectPeakBelow(int most, const Process& host) {
    RecordProperty("peakMiB", static_cast<int>(host.peakMemory() / kMiB));
    EXPECT_LT(host.peakMemory(), most * kMiB);
  }
};

TEST_F(MemoryTest, AFloodOfEventsIsDroppedAndCounted) {
  constexpr int kEvents = 1'000'000;
  std::promise<void> isSent;
  // A battery event each, in blocks.
  GreedyCamera camera(bus(), {{0x402E, [&isSent](GreedyCamera& self) {
                                 GreedyCamera::Bytes block;
                                 for (int event = 0; event < 1000; ++event) {
                                   for (const int byte : {10, 0, 0, 0, 4, 0, 0x03, 0x60, 1, 40})
                                     block.push_back(static_cast<std::uint8_t>(byte));
                                 }
                                 for (int sent = 0; sent < kEvents && self.send(block); sent += 1000) continue;
                                 isSent.set_value();
                               }}});
  const auto host = zelcam({"--json", "events"});
  ASSERT_TRUE(host->waitForOutput("batteryUpdate")) << host->errors();
  ASSERT_TRUE(isSent.get_future().wait_for(std::chrono::minutes(1)) == std::future_status::ready);
  host->signal(SIGINT);
  EXPECT_EQ(host->wait(), 0) << host->errors();
  EXPECT_THAT(host->errors(), HasSubstr("were dropped, since they came faster than they could be shown"));
  expectPeakBelow(256, *host);
}

TEST_F(MemoryTest, AnAnswerOfHundredsOfMegabytesIsNotTaken) {
  GreedyCamera camera(bus(),
                      {{0x4035, [](GreedyCamera& self) { self.sendMessage(0xC035, {1}, std::size_t{250} << 20); }}});
  const auto host = zelcam({"--timeout", "4", "--json", "call", "msgReqGetVideoExtraInfoWithFileName", "VID_1.mp4"});
  EXPECT_EQ(host->wait(), 3);
  EXPECT_THAT(host->errors(), AnyOf(HasSubstr("the camera was lost"), HasSubstr("the camera did not answer")));
  expectPeakBelow(256, *host);
}

TEST_F(MemoryTest, VideoOfMillionsOfTinyUnitsTakesNoMoreThanOthers) {
  GreedyCamera camera(bus(), {{0x0004, [](GreedyCamera& self) {
                                 self.sendMessage(0x8004, {1}, 200);
                                 GreedyCamera::Bytes units;
                                 while (units.size() < std::size_t{7} << 20) {
                                   for (const int byte : {0, 0, 0, 1, 0x65, 1, 2})
                                     units.push_back(static_cast<std::uint8_t>(byte));
                                 }
                                 for (int frame = 0; frame < 20; ++frame) {
                                   if (!self.sendFrame(1, units, units.size())) return;
                                 }
                               }}});
  const auto host = zelcam({"--timeout", "4", "preview", "--frames", "1"});
  EXPECT_EQ(host->wait(), 3) << host->errors();
  expectPeakBelow(256, *host);
}

TEST_F(MemoryTest, VideoOfVastPicturesIsDecodedNoFurtherThanThereIsRoom) {
  const auto answer = [](GreedyCamera& self) {
    self.sendMessage(0x8004, {1}, 200);
    GreedyCamera::Bytes video = vastParameterSets();
    const GreedyCamera::Bytes key = vastKeyPicture();
    video.insert(video.end(), key.begin(), key.end());
    // Again and again, since what comes before the host has seen the answer counts for nothing.
    for (bool isThere = true; isThere;) {
      isThere = self.sendFrame(1, video, video.size());
      for (int picture = 1; picture <= 24 && isThere; ++picture) {
        const GreedyCamera::Bytes next = vastPicture(picture);
        isThere = self.sendFrame(1, next, next.size());
        std::this_thread::sleep_for(std::chrono::milliseconds(20));  // a camera's pace
      }
    }
  };
  GreedyCamera camera(bus(), {{0x0004, answer}});
  const auto host = zelcam({"--timeout", "10", "--verbose", "preview", "--frames", "20"});
  EXPECT_THAT(host->wait(), AnyOf(0, 1, 3)) << host->errors();
  EXPECT_THAT(host->errors(), HasSubstr("the first picture is here"));
  expectPeakBelow(1024, *host);
}

TEST_F(MemoryTest, APhotoThatNobodyHasAskedForIsNotTaken) {
  std::counting_semaphore<1000> sent{0};  // or refused
  GreedyCamera camera(bus(), {{0x402E, [&sent](GreedyCamera& self) {
                                 self.sendFrame(3, {}, std::size_t{250} << 20);
                                 sent.release();
                               }}});
  const auto host = zelcam({"--timeout", "20", "events"});
  ASSERT_TRUE(sent.try_acquire_for(std::chrono::minutes(1)));
  host->signal(SIGINT);
  EXPECT_NE(host->wait(), -1) << host->errors();
  expectPeakBelow(256, *host);
}

TEST_F(MemoryTest, ABracketOfMoreThanItHoldsEndsWithAnError) {
  GreedyCamera camera(bus(), {{0x000F, [](GreedyCamera& self) {
                                 // File time, size and a name: the capture is done.
                                 self.sendMessage(0x800F, GreedyCamera::Bytes(12), 20);
                                 GreedyCamera::Bytes name{'A', '.', 'J', 'P', 'G'};
                                 for (int picture = 0; picture < 9; ++picture) {
                                   if (!self.sendFrame(3, name, std::size_t{200} << 20)) return;
                                 }
                               }}});
  std::unique_ptr<Process> host;
  // A machine that takes longer than 3 s for one picture takes the camera for lost.
  for (int attempt = 0, status = 3; attempt < 5 && status == 3; ++attempt) {
    host = zelcam({"--timeout", "30", "photo", "-o", folder.path(), "--bracket", "-4,-3,-2,-1,0,1,2,3,4"});
    status = host->wait();
  }
  EXPECT_THAT(host->errors(), HasSubstr("the pictures of the bracket come to more than 384 MiB"));
  expectPeakBelow(1024, *host);
}

TEST_F(MemoryTest, ALiveStreamWithTooLittleMemoryEndsInWords) {
  const auto camera = simulator();
  for (const int megabytes : {300, 350, 400, 450, 500}) {
    Process host(
        "/bin/sh",
        {"-c", "ulimit -v $0; exec \"$@\"", std::to_string(megabytes * 1000), zelcamProgram(), "--accessories", bus(),
         "--timeout", "5", "live", "-o", folder.path() + "/a.mp4", "--size", "960x480", "--duration", "1"},
        folder.path());
    const int status = host.wait();
    EXPECT_THAT(status, AnyOf(0, 1, 3)) << megabytes << " MB: " << host.errors();
    if (status == 0) continue;
    EXPECT_THAT(host.errors(), Not(IsEmpty())) << megabytes << " MB";
  }
}

}  // namespace
}  // namespace zel::test
