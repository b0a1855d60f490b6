#include "gateway/media/media_folder.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "tests/platform/linux/temporary_folder.h"

namespace zel::gateway {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class MediaFolderTest : public testing::Test {
 protected:
  void SetUp() override {
    folder = MediaFolder::open(outer.file("media"), error);
    ASSERT_TRUE(folder) << error;
  }
  std::vector<std::string> names() const {
    std::vector<std::string> all;
    for (const MediaFile& file : folder->files()) all.push_back(file.name);
    return all;
  }
  std::string stored(const std::string& name) {
    const auto file = folder->store(name, std::vector<std::uint8_t>{1, 2, 3}, error);
    return file ? file->name : error;
  }

  test::TemporaryFolder outer;
  std::string error;
  std::unique_ptr<MediaFolder> folder;
};

TEST_F(MediaFolderTest, ListsPlainFilesByName) {
  stored("b.jpg");
  stored("a.jpg");
  std::filesystem::create_directory(folder->path() + "/folder.jpg");
  std::filesystem::create_symlink("/etc/passwd", folder->path() + "/link.jpg");
  std::ofstream(folder->path() + "/.hidden.jpg") << "x";
  EXPECT_THAT(names(), ElementsAre("a.jpg", "b.jpg"));
}

TEST_F(MediaFolderTest, NeverStoresOverAFile) {
  EXPECT_EQ(stored("DCIM/a.jpg"), "a.jpg");
  EXPECT_EQ(stored("a.jpg"), "a-2.jpg");
}

TEST_F(MediaFolderTest, KnowsPanoramasByTheirNames) {
  EXPECT_EQ(folder->storePanorama("a.jpg", std::vector<std::uint8_t>{1}, error)->name, "a-360.jpg");
  EXPECT_EQ(folder->storePanorama("a.jpg", std::vector<std::uint8_t>{1}, error)->name, "a-360-2.jpg");
  stored("a-36.jpg");
  stored("a-360-x.jpg");
  std::vector<bool> panoramas;
  for (const MediaFile& file : folder->files()) panoramas.push_back(file.isPanorama);
  EXPECT_THAT(names(), ElementsAre("a-36.jpg", "a-360-2.jpg", "a-360-x.jpg", "a-360.jpg"));
  EXPECT_THAT(panoramas, ElementsAre(false, true, false, true));
}

TEST_F(MediaFolderTest, FindsNothingOutsideAndNothingHidden) {
  outer.write("secret", "x");
  std::ofstream(folder->path() + "/.hidden") << "x";
  std::filesystem::create_symlink("/etc/passwd", folder->path() + "/link");
  for (const char* name :
       {"", ".", "..", "../secret", "/etc/passwd", ".hidden", "link", "none", "a\nb", "a\xFF", "a/b"}) {
    EXPECT_FALSE(folder->find(name)) << name;
    EXPECT_FALSE(folder->remove(name)) << name;
  }
  EXPECT_TRUE(std::filesystem::exists(outer.file("secret")));
  EXPECT_TRUE(std::filesystem::is_symlink(folder->path() + "/link"));
}

TEST_F(MediaFolderTest, DoesNotWaitForAPipe) {
  ASSERT_EQ(::mkfifo((folder->path() + "/pipe").c_str(), 0600), 0);
  EXPECT_FALSE(folder->find("pipe"));
}

TEST_F(MediaFolderTest, RemovesAFile) {
  stored("a.jpg");
  EXPECT_TRUE(folder->remove("a.jpg"));
  EXPECT_FALSE(folder->remove("a.jpg"));
  EXPECT_EQ(errno, ENOENT);
}

TEST_F(MediaFolderTest, TellsAFilesContentsApartByItsTag) {
  stored("a.jpg");
  const std::string before = folder->find("a.jpg")->file.tag();
  EXPECT_EQ(folder->find("a.jpg")->file.tag(), before);
  std::ofstream(folder->path() + "/a.jpg") << "longer";
  EXPECT_NE(folder->find("a.jpg")->file.tag(), before);
}

TEST_F(MediaFolderTest, ThatCannotBeMadeIsNamed) {
  outer.write("file", "x");
  EXPECT_FALSE(MediaFolder::open(outer.file("file") + "/media", error));
  EXPECT_THAT(error, HasSubstr(outer.file("file") + "/media"));
}

TEST(MediaTypeTest, IsThatOfTheExtension) {
  EXPECT_EQ(mediaTypeOf("A.JPG"), "image/jpeg");
  EXPECT_EQ(mediaTypeOf("a.mp4"), "video/mp4");
  EXPECT_EQ(mediaTypeOf("a.html"), "application/octet-stream");
  EXPECT_EQ(mediaTypeOf("a.svg"), "application/octet-stream");
}

}  // namespace
}  // namespace zel::gateway
