#include "link/camera_data_parser.h"

#include <gtest/gtest.h>

#include <atomic>
#include <semaphore>
#include <thread>
#include <vector>

#include "tests/link/long_stream.h"

namespace zel::test {
namespace {

// Where a session is closed by another thread while a frame is on its way.
TEST(CameraDataParserThread, LetsTheFrameInProgressFinishAndDropsTheRestOfALongRead) {
  LongReader reader;
  std::binary_semaphore inFrame(0), cleared(0);
  reader.onFrame = [&] {
    if (reader.delivered.size() != 2) return;
    inFrame.release();
    cleared.acquire();
  };
  std::thread closing([&] {
    inFrame.acquire();
    reader.parser.clearData();
    cleared.release();
  });
  const Bytes one = videoFrame(5000, 1), two = videoFrame(5000, 2), three = videoFrame(5000, 3);
  reader.read(join(one, two, three, bytes({9, 9})));
  closing.join();
  EXPECT_EQ(reader.delivered.size(), 2u);
  EXPECT_TRUE(reader.held().empty());
  reader.read(three);
  ASSERT_EQ(reader.delivered.size(), 3u);
  EXPECT_EQ(frameOf(1, reader.delivered[2].payload), three);
}

// Whatever moment the other thread chooses: each frame that comes is whole, and what is lost is lost from its
// beginning.
TEST(CameraDataParserThread, DeliversOnlyWholeFramesHoweverOftenItIsCleared) {
  constexpr int kReads = 300;
  LongReader reader;
  std::vector<Bytes> frames;
  for (std::uint32_t seed = 0; seed < 6; ++seed) frames.push_back(videoFrame(1000 * (seed + 1), seed));
  const Bytes whole = join(frames[0], frames[1], frames[2], frames[3], frames[4], frames[5]);
  std::atomic<bool> done = false;
  std::thread closing([&] {
    while (!done.load()) {
      reader.parser.clearData();
      std::this_thread::yield();
    }
  });
  std::size_t wrong = 0;
  for (int read = 0; read < kReads; ++read) {
    // A read begins with a frame; what a clearing left of the one before would otherwise be taken for the beginning.
    reader.parser.clearData();
    const std::size_t before = reader.delivered.size();
    reader.read(whole);
    for (std::size_t i = before; i < reader.delivered.size(); ++i) {
      if (frameOf(1, reader.delivered[i].payload) != frames[i - before]) ++wrong;
    }
  }
  done.store(true);
  closing.join();
  EXPECT_EQ(wrong, 0u);
  EXPECT_EQ(reader.link.positionsLost, 0);
}

}  // namespace
}  // namespace zel::test
