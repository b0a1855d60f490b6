#include "gateway/outputs/output_place.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "tests/platform/linux/temporary_folder.h"

namespace zel::gateway {
namespace {

using Reason = CameraError::Reason;

class OutputPlaceTest : public ::testing::Test {
 protected:
  Result<std::unique_ptr<OutputPlace>> find(const std::string& address) {
    return OutputPlace::find(folder_.path(), address);
  }
  test::TemporaryFolder folder_;
};

TEST_F(OutputPlaceTest, AFileIsInTheFolderAndItsNameIsTaken) {
  const auto place = find("film.mp4");
  ASSERT_TRUE(place);
  EXPECT_EQ((*place)->target(), folder_.file("film.mp4"));
  EXPECT_EQ((*place)->shown(), "film.mp4");
  EXPECT_EQ(find("film.mp4").error().message, "there is a file \"film.mp4\" already");
}

TEST_F(OutputPlaceTest, AFileThatNothingWasWrittenToIsGoneWithItsPlace) {
  { const auto place = find("empty.ts"); }
  EXPECT_FALSE(std::filesystem::exists(folder_.file("empty.ts")));
  {
    const auto place = find("full.ts");
    folder_.write("full.ts", "pictures");
  }
  EXPECT_TRUE(std::filesystem::exists(folder_.file("full.ts")));
}

TEST_F(OutputPlaceTest, NamesThatAreNotPlainAreRefused) {
  std::filesystem::create_directory(folder_.file("in"));
  for (const std::string name :
       {"../film.mp4", "/tmp/film.mp4", "in/film.mp4", "in\\film.mp4", ".film.mp4", ".mp4", "..mp4", "a\nb.mp4",
        "\xC3(.mp4", "-", "", "film", "film.exe", "file:///tmp/film.mp4", "http://server/film.mp4", "film.mp4/"}) {
    const auto place = find(name);
    ASSERT_FALSE(place) << name;
    EXPECT_EQ(place.error().reason, Reason::invalid) << name;
  }
  EXPECT_FALSE(find(std::string("a\0b.mp4", 7)));
  EXPECT_TRUE(find(std::string(196, 'a') + ".mp4"));
  EXPECT_FALSE(find(std::string(197, 'a') + ".mp4"));
}

TEST_F(OutputPlaceTest, ALinkIsATakenName) {
  std::filesystem::create_symlink("/nowhere/film.mp4", folder_.file("link.mp4"));
  EXPECT_FALSE(find("link.mp4"));
}

TEST_F(OutputPlaceTest, OfAServerTheHostAloneIsShown) {
  const auto place = find("rtmp://server:1935/live/secret");
  ASSERT_TRUE(place);
  EXPECT_EQ((*place)->target(), "rtmp://server:1935/live/secret");
  EXPECT_EQ((*place)->shown(), "rtmp://server:1935");
  EXPECT_TRUE(find("srt://server:9000?passphrase=secret"));
}

TEST_F(OutputPlaceTest, AFolderThatCannotBeWrittenIsTheSystemsFault) {
  const auto place = OutputPlace::find(folder_.file("nowhere"), "film.mp4");
  ASSERT_FALSE(place);
  EXPECT_EQ(place.error().reason, Reason::platform);
}

}  // namespace
}  // namespace zel::gateway
