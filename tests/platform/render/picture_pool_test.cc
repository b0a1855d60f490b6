#include "platform/render/picture_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <set>
#include <thread>
#include <utility>
#include <vector>

#include "base/mutex.h"

namespace zel::render {
namespace {

using Picture = std::shared_ptr<const platform::MemoryPixelBuffer>;

TEST(PicturePoolTest, GivesAPictureAgainWhenItsLastReferenceHasGone) {
  PicturePool pool({8, 4}, 3);
  auto first = pool.take();
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->width(), 8);
  EXPECT_EQ(first->height(), 4);
  const auto* const place = first.get();
  const Picture second = first;
  first.reset();
  EXPECT_NE(pool.take().get(), place);  // it is still in use
  EXPECT_EQ(pool.made(), 2u);
}

TEST(PicturePoolTest, MakesNoMoreThanItNeeds) {
  PicturePool pool({8, 4}, 3);
  EXPECT_EQ(pool.made(), 0u);
  std::set<const void*> places;
  for (int count = 0; count < 100; ++count) places.insert(pool.take().get());
  EXPECT_EQ(places.size(), 1u);
  EXPECT_EQ(pool.made(), 1u);
}

TEST(PicturePoolTest, HasNoneWhileAllAreInUse) {
  PicturePool pool({8, 4}, 2);
  auto first = pool.take();
  const auto second = pool.take();
  EXPECT_NE(second, nullptr);
  EXPECT_EQ(pool.take(), nullptr);
  first.reset();
  EXPECT_NE(pool.take(), nullptr);
}

TEST(PicturePoolTest, PicturesOutliveThePool) {
  std::shared_ptr<platform::MemoryPixelBuffer> kept;
  {
    PicturePool pool({8, 4}, 2);
    kept = pool.take();
  }
  kept->lumaRow(3)[7] = 200;
  EXPECT_EQ(kept->luma().data[3 * kept->luma().stride + 7], 200);
}

// As long as somebody may still ask whether the picture lives, its place is not given to another one.
TEST(PicturePoolTest, AWeakReferenceKeepsThePlaceTaken) {
  PicturePool pool({8, 4}, 1);
  std::weak_ptr<platform::MemoryPixelBuffer> weak = pool.take();
  EXPECT_TRUE(weak.expired());
  EXPECT_EQ(pool.take(), nullptr);
  weak.reset();
  EXPECT_NE(pool.take(), nullptr);
}

TEST(PicturePoolTest, HasNoneOfASizeThatThereIsNot) {
  EXPECT_EQ(PicturePool({0, 4}, 2).take(), nullptr);
  EXPECT_EQ(PicturePool({8, 16385}, 2).take(), nullptr);
}

// One thread fills pictures and hands them to others, which read them and let go.
TEST(PicturePoolTest, ThreadsGiveBackWhatTheyGot) {
  PicturePool pool({16, 16}, 4);
  constexpr int kReaders = 3, kRounds = 2000;
  std::vector<std::thread> readers;
  Mutex mutex;
  std::vector<std::pair<Picture, int>> handed;
  std::atomic<bool> over = false;
  std::atomic<int> wrong = 0, read = 0;
  for (int i = 0; i < kReaders; ++i) {
    readers.emplace_back([&] {
      while (!over || read < kRounds) {
        std::pair<Picture, int> mine;
        {
          const MutexLock lock(mutex);
          if (!handed.empty()) mine = std::move(handed.back()), handed.pop_back();
        }
        if (!mine.first) {
          std::this_thread::yield();
          continue;
        }
        if (mine.first->luma().data[5] != mine.second % 251) ++wrong;
        ++read;
      }
    });
  }
  for (int round = 0; round < kRounds;) {
    const auto picture = pool.take();
    if (!picture) {
      std::this_thread::yield();
      continue;
    }
    picture->lumaRow(0)[5] = static_cast<std::uint8_t>(round % 251);
    const MutexLock lock(mutex);
    handed.emplace_back(picture, round++);
  }
  over = true;
  for (std::thread& reader : readers) reader.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(read, kRounds);
  EXPECT_LE(pool.made(), 4u);
}

}  // namespace
}  // namespace zel::render
