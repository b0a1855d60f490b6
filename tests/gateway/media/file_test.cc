#include "gateway/media/file.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "tests/platform/linux/temporary_folder.h"

namespace zel::test {
namespace {

namespace fs = std::filesystem;
using gateway::fileNameWith;
using gateway::photoFileName;
using gateway::readFile;
using gateway::saveFile;
using testing::HasSubstr;

class FileTest : public testing::Test {
 protected:
  std::string saved(const std::string& name) {
    const std::vector<std::uint8_t> bytes = {1, 2, 3};
    const auto path = saveFile(folder.path(), name, bytes, error);
    return path ? fs::path(*path).filename().string() : "";
  }

  TemporaryFolder folder;
  std::string error;
};

TEST(PhotoFileNameTest, IsTheCamerasWhereThatIsAPicturesPlainName) {
  for (const char* name : {"IMG_1.jpg", "IMG_1.JPG", "a b.jpeg", "raw.dng", "\xC3\xA9.heic"})
    EXPECT_EQ(photoFileName(name), name);
}

TEST(PhotoFileNameTest, HasNoFolders) {
  EXPECT_EQ(photoFileName("DCIM/Camera/IMG_1.jpg"), "IMG_1.jpg");
  EXPECT_EQ(photoFileName("..\\..\\IMG_1.jpg"), "IMG_1.jpg");
}

TEST(PhotoFileNameTest, IsNoHiddenFileAndNothingThatIsRun) {
  EXPECT_EQ(photoFileName(".bash_profile"), "bash_profile.jpg");
  EXPECT_EQ(photoFileName("../.ssh/authorized_keys"), "authorized_keys.jpg");
  EXPECT_EQ(photoFileName("...IMG_1.jpg"), "IMG_1.jpg");
  EXPECT_EQ(photoFileName("setup.exe"), "setup.exe.jpg");
  EXPECT_EQ(photoFileName("Makefile"), "Makefile.jpg");
  EXPECT_EQ(photoFileName(".jpg"), "jpg.jpg");
}

TEST(PhotoFileNameTest, HasNothingThatDoesNotPrint) {
  EXPECT_EQ(photoFileName("\x1b[2J\xC2\x9B"
                          "31m\xE2\x80\xAEgpj.exe\n"),
            "[2J31mgpj.exe.jpg");
  EXPECT_EQ(photoFileName("\xE2\x80\xAE.bashrc"), "bashrc.jpg");  // the dot is in front once that has gone
}

TEST(PhotoFileNameTest, IsAPhotosWhereNothingIsLeft) {
  for (const char* name : {"", ".", "..", "/", "a/", "\x1b", "..."})
    EXPECT_EQ(photoFileName(name), "photo.jpg") << name;
}

TEST(FileNameWithTest, CutsTheStemWhereALetterEnds) {
  EXPECT_EQ(fileNameWith("IMG_1.jpg", "-2", 255), "IMG_1-2.jpg");
  EXPECT_EQ(fileNameWith("IMG_1.jpg", "-2", 11), "IMG_1-2.jpg");
  EXPECT_EQ(fileNameWith("IMG_1.jpg", "-2", 10), "IMG_-2.jpg");
  EXPECT_EQ(fileNameWith("ab\xC3\xA9.jpg", "", 8), "ab\xC3\xA9.jpg");
  EXPECT_EQ(fileNameWith("ab\xC3\xA9.jpg", "", 7), "ab.jpg");
}

TEST_F(FileTest, ANameThatIsTooLongIsCutAndNotLost) {
  const std::string name = std::string(300, 'a') + ".jpg";
  EXPECT_EQ(saved(name), std::string(251, 'a') + ".jpg") << error;
  EXPECT_EQ(saved(name), std::string(249, 'a') + "-2.jpg") << error;
}

TEST_F(FileTest, ANameThatIsTakenGetsANumber) {
  EXPECT_EQ(saved("a.jpg"), "a.jpg");
  EXPECT_EQ(saved("a.jpg"), "a-2.jpg");
  EXPECT_EQ(saved("a.jpg"), "a-3.jpg");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()), 3);
}

TEST_F(FileTest, WhatASavedFileMayBeIsTheUsersToSay) {
  const mode_t before = ::umask(027);
  const std::string name = saved("a.jpg");
  ::umask(before);
  EXPECT_EQ(fs::status(folder.path() + "/" + name).permissions(), static_cast<fs::perms>(0640));
}

TEST_F(FileTest, AFileThatIsTooLargeIsNotRead) {
  const std::string path = folder.path() + "/large";
  std::ofstream(path) << "12345";
  EXPECT_TRUE(readFile(path, error, 5));
  EXPECT_FALSE(readFile(path, error, 4));
  EXPECT_EQ(error, path + " has 5 bytes; one frame to the camera carries 4 of them at most");
}

TEST_F(FileTest, AFileWhoseSizeIsNotToldIsReadToItsEnd) {
  const auto read = readFile("/proc/self/status", error);  // a file of 0 bytes, for whom it asks
  ASSERT_TRUE(read) << error;
  const std::string text(read->bytes().begin(), read->bytes().end());
  EXPECT_EQ(text.substr(0, 5), "Name:");
  EXPECT_EQ(text.back(), '\n');
  EXPECT_FALSE(readFile("/proc/self/status", error, 10));
  EXPECT_NE(error.find("one frame to the camera carries 10"), std::string::npos) << error;
}

}  // namespace
}  // namespace zel::test
