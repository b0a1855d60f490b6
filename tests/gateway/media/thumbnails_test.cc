#include "gateway/media/thumbnails.h"

#include <ZELTarkaSDK/PictureFile.h>

#include <gtest/gtest.h>

#include <semaphore>
#include <vector>

#include "tests/platform/linux/temporary_folder.h"

namespace zel::gateway {
namespace {

class Grey final : public platform::PixelBuffer {
 public:
  Grey(int width, int height) : width_(width), height_(height), bytes_(static_cast<std::size_t>(width * height), 128) {}
  std::int32_t width() const override { return width_; }
  std::int32_t height() const override { return height_; }
  platform::PixelPlane luma() const override { return plane(height_); }
  platform::PixelPlane chroma() const override { return plane(height_ / 2); }

 private:
  platform::PixelPlane plane(int rows) const {
    const auto stride = static_cast<std::size_t>(width_);
    return {bytes_.data(), stride, stride, static_cast<std::size_t>(rows)};
  }
  const int width_, height_;
  const std::vector<std::uint8_t> bytes_;
};

std::vector<std::uint8_t> jpeg(int width, int height) { return *jpegOf(Grey(width, height), 80); }

platform::PixelBufferRef shown(const std::string& file) {
  std::string error;
  return pictureOfJpeg({reinterpret_cast<const std::uint8_t*>(file.data()), file.size()}, error);
}

TEST(ThumbnailTest, HasTheAskedWidthAndThePicturesShape) {
  const auto small = thumbnailOf(jpeg(640, 320), 200);
  ASSERT_TRUE(small);
  EXPECT_EQ(shown(*small)->width(), 200);
  EXPECT_EQ(shown(*small)->height(), 100);
}

TEST(ThumbnailTest, IsNotLargerThanThePicture) { EXPECT_EQ(shown(*thumbnailOf(jpeg(64, 32), 200))->width(), 64); }

TEST(ThumbnailTest, OfASliverHasARow) { EXPECT_EQ(shown(*thumbnailOf(jpeg(640, 2), 16))->height(), 2); }

TEST(ThumbnailTest, OfWhatIsNoPictureIsNone) {
  EXPECT_FALSE(thumbnailOf(std::vector<std::uint8_t>{1, 2, 3}, 200));
  auto cut = jpeg(64, 32);
  cut.resize(20);
  EXPECT_FALSE(thumbnailOf(cut, 16));
}

class ThumbnailsTest : public testing::Test {
 protected:
  Thumbnails::Picture asked(int width) {
    Thumbnails::Picture result;
    std::binary_semaphore done{0};
    EXPECT_TRUE(thumbnails.ask(*folder->find("a.jpg"), width, [&](Thumbnails::Picture picture) {
      result = std::move(picture);
      done.release();
    }));
    done.acquire();
    return result;
  }

  test::TemporaryFolder outer;
  std::string error;
  std::unique_ptr<MediaFolder> folder = MediaFolder::open(outer.path(), error);
  Worker worker;
  Thumbnails thumbnails{worker};
};

TEST_F(ThumbnailsTest, AreMadeOnce) {
  folder->store("a.jpg", jpeg(64, 32), error);
  const auto first = asked(16);
  ASSERT_TRUE(first);
  EXPECT_EQ(asked(16), first);
  EXPECT_NE(asked(32), first);
}

TEST_F(ThumbnailsTest, AreMadeAgainOfAnotherContent) {
  folder->store("a.jpg", jpeg(64, 32), error);
  const auto first = asked(16);
  folder->remove("a.jpg");
  folder->store("a.jpg", jpeg(128, 32), error);
  EXPECT_NE(*asked(16), *first);
}

TEST_F(ThumbnailsTest, OfWhatIsNoPictureAreNone) {
  folder->store("a.jpg", std::vector<std::uint8_t>{1, 2, 3}, error);
  EXPECT_FALSE(asked(16));
}

}  // namespace
}  // namespace zel::gateway
