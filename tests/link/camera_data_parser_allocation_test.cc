// Counts what the de-multiplexer takes from the heap. A program of its own, because that replaces the global allocator.

#include <gtest/gtest.h>

#include <memory>

#include <ZELTarkaSDK/platform/clock.h>

#include "link/camera_data_parser.h"
#include "protocol/frame.h"
#include "tests/allocation_count.h"
#include "tests/link/bytes.h"

namespace zel::test {
namespace {

class SilentPlayer final : public PreviewConsumer {
 public:
  void appendVideoBytes(ByteView) override { ++frames; }
  void appendAudioBytes(ByteView) override { ++frames; }
  void setNextVideoTimestamp(std::int64_t) override { ++frames; }
  void setNextAudioTimestamp(std::int64_t) override { ++frames; }
  void setImageWidth(std::int32_t) override {}
  void setImageHeight(std::int32_t) override {}
  void setFps(std::int32_t) override {}
  void resetPlayer() override {}
  int frames = 0;
};

class SilentPhoto final : public PhotoConsumer {
 public:
  void parserData(ByteView) override { ++frames; }
  void replyBlockWithError(const ZELError&) override {}
  int frames = 0;
};

class SilentFile final : public FileReplyConsumer {
 public:
  void parserUCD(ByteView) override { ++frames; }
  int frames = 0;
};

class SilentLink final : public AccessoryLink {
 public:
  void successCreateSession() override {}
  void receivedData() override {}
  std::int64_t firewareVersion() const override { return 192; }
  std::int64_t timeOffset() const override { return 0; }
  double absoluteTime() const override { return 0; }
  void sendSyncTimeCmd() override {}
  void updateReceiveSyncTimeCmdTimestamp(std::int64_t) override {}
  void streamPositionLost() override {}
};

// One frame of each type that needs no message body: video, audio, photo, timestamp, file reply.
const Bytes kFrames = join(bytes({8, 0, 0, 0, 1, 0, 7, 9}), bytes({7, 0, 0, 0, 2, 0, 5}), bytes({7, 0, 0, 0, 3, 0, 4}),
                           bytes({15, 0, 0, 0, 8, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0}), bytes({8, 0, 0, 0, 9, 0, 1, 2}));

TEST(FrameAllocationTest, TakesNothingFromTheHeapForAFrameOfMediaPhotoTimeOrFile) {
  SilentLink link;
  CameraDataParser parser;
  const auto player = std::make_shared<SilentPlayer>();
  const auto photo = std::make_shared<SilentPhoto>();
  const auto file = std::make_shared<SilentFile>();
  parser.setAccessory(&link);
  parser.setPreviewPlayer(player);
  parser.setPhotoParser(photo);
  parser.setUcdFile(file);
  parser.appendBytes(kFrames.data(), kFrames.size());  // the buffer's own memory
  parser.parserData();
  const long before = allocationCount();
  for (int round = 0; round < 1000; ++round) {
    parser.appendBytes(kFrames.data(), 20);  // cut inside the third frame
    parser.parserData();
    parser.parserData(ByteView(kFrames).subspan(20));
  }
  EXPECT_EQ(allocationCount() - before, 0);
  EXPECT_EQ(player->frames + photo->frames + file->frames, 5005);
}

}  // namespace
}  // namespace zel::test
