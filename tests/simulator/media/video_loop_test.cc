#include "simulator/media/video_loop.h"

#include <gtest/gtest.h>

#include <thread>

namespace zel::simulator {
namespace {

VideoPicture numbered(std::uint8_t number) { return {{number}, false}; }

std::uint8_t numberOf(const VideoLoop::PicturePtr& picture) { return picture->bytes[0]; }

TEST(VideoLoopTest, GoesRound) {
  VideoLoop loop(2);
  loop.add(numbered(10));
  loop.add(numbered(11));
  loop.add(numbered(12));  // too many
  for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(numberOf(loop.picture(i)), 10 + i % 2);
}

TEST(VideoLoopTest, GivesWhatIsThereAlready) {
  VideoLoop loop(3);
  EXPECT_EQ(loop.picture(0), nullptr);
  loop.add(numbered(10));
  EXPECT_EQ(numberOf(loop.picture(0)), 10);
  EXPECT_EQ(loop.picture(1), nullptr);
  EXPECT_EQ(numberOf(loop.picture(3)), 10);
}

TEST(VideoLoopTest, IsAShorterRoundWhenItEndsEarly) {
  VideoLoop loop(3);
  loop.add(numbered(10));
  loop.end();
  EXPECT_EQ(numberOf(loop.picture(1)), 10);
  VideoLoop empty(3);
  empty.end();
  EXPECT_EQ(empty.picture(0), nullptr);
  EXPECT_EQ(empty.waitFor(1), 0u);
}

TEST(VideoLoopTest, WakesWhoWaitsForPictures) {
  VideoLoop loop(2);
  std::thread maker([&loop] {
    loop.add(numbered(1));
    loop.add(numbered(2));
  });
  EXPECT_EQ(loop.waitFor(5), 2u);  // no more than the length will come
  maker.join();
}

}  // namespace
}  // namespace zel::simulator
