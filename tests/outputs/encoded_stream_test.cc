#include <ZELTarkaSDK/EncodedStream.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <vector>

#include "base/mutex.h"
#include "tests/stack/simulator_fixture.h"

namespace zel::test {
namespace {

// What a stream has given so far.
class Receiver final : public EncodedStreamReceiver {
 public:
  void onHeaders(const StreamHeaders& headers) override {
    const MutexLock lock(mutex_);
    headers_.push_back(headers);
  }
  void onPacket(const MediaPacket& packet) override {
    const MutexLock lock(mutex_);
    packets_.push_back(packet);
  }

  std::vector<StreamHeaders> headers() const {
    const MutexLock lock(mutex_);
    return headers_;
  }
  std::vector<MediaPacket> of(Track track) const {
    const MutexLock lock(mutex_);
    std::vector<MediaPacket> found;
    std::ranges::copy_if(packets_, std::back_inserter(found), [&](const auto& one) { return one.track == track; });
    return found;
  }

 private:
  mutable Mutex mutex_;
  std::vector<StreamHeaders> headers_ ZEL_GUARDED_BY(mutex_);
  std::vector<MediaPacket> packets_ ZEL_GUARDED_BY(mutex_);
};

std::ptrdiff_t slicesIn(const MediaPacket& picture) {
  const auto bytes = picture.data.bytes();
  std::ptrdiff_t slices = 0;
  for (std::size_t at = 0; at + 4 < bytes.size(); ++at) {
    const int type = bytes[at + 4] & 0x1F;
    const bool starts = bytes[at] == 0 && bytes[at + 1] == 0 && bytes[at + 2] == 0 && bytes[at + 3] == 1;
    if (starts && (type == 1 || type == 5)) ++slices;
  }
  return slices;
}

class EncodedStreamTest : public SimulatorFixture {
 protected:
  void attach(int slices, simulator::Faults faults = {}) {
    simulator::SimulatorOptions options;
    options.accessoriesFolder = folder_.path();
    options.slices = slices;
    options.faults = std::move(faults);
    options.warn = [](const std::string&) {};
    camera_ = std::make_unique<simulator::CameraSimulator>(std::move(options));
    std::string error;
    ASSERT_TRUE(camera_->start(error)) << error;
    stack_ = std::make_unique<CameraStack>(ports());
    ASSERT_TRUE(runUntil([&] { return stack_->accessory().openCamera() != nullptr; }));
    ASSERT_TRUE(framesArrive(*stack_));
  }

  bool hasPictures(std::size_t count) {
    return runUntil([&] { return receiver_.of(Track::video).size() >= count; });
  }

  Receiver receiver_;
  std::unique_ptr<simulator::CameraSimulator> camera_;
  std::unique_ptr<CameraStack> stack_;
};

TEST_F(EncodedStreamTest, GivesWholePicturesOnATimelineThatBeginsWithAKeyPicture) {
  ASSERT_NO_FATAL_FAILURE(attach(4));
  EncodedStream stream(receiver_);
  stream.startCamera(*stack_, 3);
  ASSERT_TRUE(hasPictures(10));
  stream.stop();
  const auto pictures = receiver_.of(Track::video);
  EXPECT_TRUE(pictures.front().key);
  EXPECT_EQ(pictures.front().time, 0);
  for (const MediaPacket& picture : pictures) {
    EXPECT_EQ(slicesIn(picture), 4);
    EXPECT_FALSE(picture.discontinuity);
  }
  ASSERT_EQ(receiver_.headers().size(), 1u);
  EXPECT_EQ(receiver_.headers()[0].width, 1440);
  EXPECT_EQ(receiver_.headers()[0].height, 720);
  EXPECT_FALSE(receiver_.headers()[0].spherical);
  EXPECT_EQ(receiver_.headers()[0].audioConfig.size(), 2u);
  EXPECT_EQ(stream.statistics().pictures, pictures.size());
  EXPECT_GE(stream.statistics().preview.units, 4 * pictures.size());
}

TEST_F(EncodedStreamTest, AnotherRunGoesOnAndIsMarked) {
  ASSERT_NO_FATAL_FAILURE(attach(1));
  EncodedStream stream(receiver_);
  stream.startCamera(*stack_, 3);
  ASSERT_TRUE(hasPictures(3));
  stream.stop();
  const std::size_t first = receiver_.of(Track::video).size();
  stream.startCamera(*stack_, 3);
  ASSERT_TRUE(hasPictures(first + 3));
  stream.stop();
  const auto pictures = receiver_.of(Track::video);
  EXPECT_TRUE(pictures[first].key);
  EXPECT_TRUE(pictures[first].discontinuity);
  EXPECT_FALSE(pictures[first + 1].discontinuity);
  EXPECT_GT(pictures[first].time, pictures[first - 1].time);
  EXPECT_LT(pictures[first].time - pictures[first - 1].time, 1'000'000);
  EXPECT_EQ(receiver_.headers().size(), 1u);
}

TEST_F(EncodedStreamTest, NothingComesOnceItIsStopped) {
  ASSERT_NO_FATAL_FAILURE(attach(1));
  EncodedStream stream(receiver_);
  stream.startCamera(*stack_, 3);
  ASSERT_TRUE(hasPictures(3));
  stream.stop();
  const std::size_t pictures = receiver_.of(Track::video).size(), sound = receiver_.of(Track::audio).size();
  stack_->ucd().msgCmdStartVideoWithVideoRes(3, [](const auto&, const auto&) {});
  const auto videoFrames = [&] {
    return stack_->statistics().frames[static_cast<std::size_t>(FrameType::previewVideo)];
  };
  const auto before = videoFrames();
  EXPECT_TRUE(runUntil([&] { return videoFrames() > before + 10; }));
  EXPECT_EQ(receiver_.of(Track::video).size(), pictures);
  EXPECT_EQ(receiver_.of(Track::audio).size(), sound);
}

TEST_F(EncodedStreamTest, IsCompleteAtItsLengthAndTells) {
  ASSERT_NO_FATAL_FAILURE(attach(1));
  std::atomic<int> changes = 0;
  EncodedStream stream(receiver_, {.length = 300'000, .changed = [&] { ++changes; }});
  stream.startCamera(*stack_, 3);
  EXPECT_TRUE(runUntil([&] { return changes.load() > 0; }));
  EXPECT_TRUE(stream.statistics().complete);
  EXPECT_FALSE(stream.failure());
  stream.stop();
  EXPECT_LT(receiver_.of(Track::video).back().time, 300'000);
}

TEST_F(EncodedStreamTest, FailsWhereTheCameraRefusesItsPreview) {
  simulator::Faults refusing;
  refusing.refuse = {0x0004};  // to start the preview
  ASSERT_NO_FATAL_FAILURE(attach(1, refusing));
  std::atomic<int> changes = 0;
  EncodedStream stream(receiver_, {.changed = [&] { ++changes; }});
  stream.startCamera(*stack_, 3);
  EXPECT_TRUE(runUntil([&] { return changes.load() > 0; }));
  EXPECT_EQ(stream.failure(), "failed to open camera video stream");
}

}  // namespace
}  // namespace zel::test
