#include <ZELTarkaSDK/PictureFile.h>
#include <ZELTarkaSDK/platform/memory_pixel_buffer.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/platform/linux/temporary_folder.h"

namespace zel {
namespace {

using testing::ElementsAre;

// Blue 100 + 72 * 1.772 = 227.6, green 100 - 72 * 0.344 + 28 * 0.714 = 95.2, red 100 - 28 * 1.402 = 60.7.
platform::PixelBufferRef bluish() { return platform::MemoryPixelBuffer::filled(16, 8, 100, 200, 100); }

std::vector<std::uint8_t> contents(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

class PictureFileTest : public testing::Test {
 protected:
  const test::TemporaryFolder folder;
  std::string error;
};

TEST_F(PictureFileTest, TheExtensionTellsTheForm) {
  EXPECT_EQ(pictureFormOf("a.png"), PictureForm::png);
  EXPECT_EQ(pictureFormOf("a.b/c.JPG"), PictureForm::jpeg);
  EXPECT_EQ(pictureFormOf("a.jpeg"), PictureForm::jpeg);
  EXPECT_EQ(pictureFormOf("a.tif"), std::nullopt);
  EXPECT_EQ(pictureFormOf("png"), std::nullopt);
}

TEST_F(PictureFileTest, APngHoldsThePicturesColours) {
  const auto file = pngOf(*bluish());
  ASSERT_TRUE(file);
  const auto image = imageOfPng(*file, error);
  ASSERT_TRUE(image) << error;
  EXPECT_EQ(image->width, 16);
  EXPECT_EQ(image->height, 8);
  EXPECT_THAT(std::vector(image->pixels.begin(), image->pixels.begin() + 4), ElementsAre(61, 95, 228, 255));
}

TEST_F(PictureFileTest, ReplacesAFileInTheFormOfItsExtension) {
  ASSERT_TRUE(savePicture(*bluish(), folder.file("a.jpg"), error)) << error;
  EXPECT_NE(pictureOfJpeg(contents(folder.file("a.jpg")), error), nullptr) << error;
  ASSERT_TRUE(savePicture(*bluish(), folder.file("a.png"), error));
  ASSERT_TRUE(savePicture(*bluish(), folder.file("a.png"), error));
  EXPECT_TRUE(imageOfPng(contents(folder.file("a.png")), error));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2);
}

TEST_F(PictureFileTest, TellsWhyAFileCannotBeWritten) {
  EXPECT_FALSE(savePicture(*bluish(), folder.file("no/a.png"), error));
  EXPECT_EQ(error, "cannot write " + folder.file("no/a.png") + ": No such file or directory");
}

TEST_F(PictureFileTest, TellsWhatAFileIsInsteadOfAPicture) {
  EXPECT_FALSE(imageOfPng({}, error));
  EXPECT_EQ(error, "no PNG picture");
  EXPECT_FALSE(imageOfPng(*pngOf(*platform::MemoryPixelBuffer::filled(8194, 2, 0, 128, 128)), error));
  EXPECT_EQ(error, "larger than 8192 x 8192 pixels");
}

}  // namespace
}  // namespace zel
