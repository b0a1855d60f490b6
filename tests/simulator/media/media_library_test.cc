#include "simulator/media/media_library.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>

namespace zel::simulator {
namespace {

constexpr PreviewFormat kTiny{96, 48, 1};  // a loop of eight pictures

class MediaLibraryTest : public testing::Test {
 protected:
  MediaLibraryTest() {
    std::string pattern = testing::TempDir() + "zel-media-XXXXXX";
    folder_ = mkdtemp(pattern.data());
  }
  ~MediaLibraryTest() override { std::filesystem::remove_all(folder_); }

  std::string write(const std::string& name, const Bytes& bytes) const {
    std::ofstream file(folder_ + "/" + name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return folder_ + "/" + name;
  }

  std::string kept() const { return folder_ + "/cache/scene-96x48-1-v2.h264"; }

  // The whole loop, made by a library that has gone since.
  std::vector<Bytes> made() const {
    MediaLibrary library{LoopCache(folder_ + "/cache")};
    const auto loop = library.video(kTiny);
    std::vector<Bytes> pictures;
    for (std::size_t i = 0; i < loop->waitFor(loop->length()); ++i) pictures.push_back(loop->picture(i)->bytes);
    return pictures;
  }

  std::string folder_;
};

TEST_F(MediaLibraryTest, MakesALoopOfEightSecondsAndKeepsIt) {
  const auto pictures = made();
  ASSERT_EQ(pictures.size(), 8u);
  std::uintmax_t sum = 0;
  for (const Bytes& picture : pictures) sum += picture.size();
  EXPECT_EQ(std::filesystem::file_size(kept()), sum);
  EXPECT_EQ(made(), pictures);
}

TEST_F(MediaLibraryTest, TakesTheKeptLoop) {
  const auto pictures = made();
  // The last picture is replaced by one that no encoder makes, to see where it came from.
  std::filesystem::resize_file(kept(), std::filesystem::file_size(kept()) - pictures.back().size());
  std::ofstream(kept(), std::ios::binary | std::ios::app).write("\0\0\0\1\x41\x9A\x77", 7);
  EXPECT_EQ(made().back(), (Bytes{0, 0, 0, 1, 0x41, 0x9A, 0x77}));
}

TEST_F(MediaLibraryTest, MakesALoopAnewWhenTheKeptOneIsNotWhole) {
  const auto pictures = made();
  std::filesystem::resize_file(kept(), std::filesystem::file_size(kept()) - pictures.back().size());
  EXPECT_EQ(made(), pictures);
  write("cache/scene-96x48-1-v2.h264", {});
  EXPECT_EQ(made(), pictures);
}

TEST_F(MediaLibraryTest, KeepsItsSound) {
  const LoopCache cache(folder_ + "/cache");
  const auto beeps = MediaLibrary(cache).audio().get();
  ASSERT_EQ(beeps->frames.size(), 375u);
  const std::string file = folder_ + "/cache/beeps-v2.aac";
  // The last byte is replaced, to see where the sound comes from.
  const auto size = static_cast<std::streamoff>(std::filesystem::file_size(file));
  std::fstream(file, std::ios::binary | std::ios::in | std::ios::out).seekp(size - 1).put('\x55');
  EXPECT_EQ(MediaLibrary(cache).audio().get()->frames.back().back(), 0x55);
  std::filesystem::resize_file(file, 1000);
  EXPECT_EQ(MediaLibrary(cache).audio().get()->frames, beeps->frames);
}

TEST_F(MediaLibraryTest, WorksWithoutAPlaceToKeepThings) {
  MediaLibrary library{LoopCache("")};
  EXPECT_EQ(library.video(kTiny)->waitFor(8), 8u);
  MediaLibrary elsewhere{LoopCache("/proc/no/such/folder")};
  EXPECT_EQ(elsewhere.video(kTiny)->waitFor(8), 8u);
}

TEST_F(MediaLibraryTest, MakesALoopOncePerFormat) {
  MediaLibrary library{LoopCache("")};
  const auto loop = library.video(kTiny);
  EXPECT_EQ(library.video(kTiny), loop);
  EXPECT_NE(library.video({48, 24, 1}), loop);
}

TEST_F(MediaLibraryTest, KeepsAGrainyLoopBesideThePlainOne) {
  const auto plain = made();
  MediaLibrary library{LoopCache(folder_ + "/cache")};
  const auto grainy = library.video({96, 48, 1, 200'000});
  ASSERT_EQ(grainy->waitFor(8), 8u);
  EXPECT_NE(grainy->picture(0)->bytes, plain[0]);
  EXPECT_EQ(made(), plain);
}

TEST_F(MediaLibraryTest, KeepsALoopOfSlicesBesideThePlainOne) {
  const auto plain = made();
  MediaLibrary library{LoopCache(folder_ + "/cache")};
  const auto sliced = library.video({.width = 96, .height = 48, .rate = 1, .slices = 3});
  ASSERT_EQ(sliced->waitFor(8), 8u);
  EXPECT_NE(sliced->picture(0)->bytes, plain[0]);
  EXPECT_EQ(made(), plain);
}

TEST_F(MediaLibraryTest, ShowsAFileInsteadOfTheScene) {
  const Bytes stream{0, 0, 0, 1, 0x65, 0x88, 0, 0, 0, 1, 0x41, 0x9A};
  MediaLibrary library{LoopCache("")};
  std::string error;
  ASSERT_TRUE(library.useVideo(write("a.h264", stream), error)) << error;
  const auto loop = library.video(kTiny);
  EXPECT_EQ(loop->length(), 2u);
  EXPECT_EQ(loop->picture(3)->bytes, (Bytes{0, 0, 0, 1, 0x41, 0x9A}));
}

TEST_F(MediaLibraryTest, LetsAFileSoundInsteadOfTheBeeps) {
  MediaLibrary library{LoopCache("")};
  std::string error;
  ASSERT_TRUE(library.useAudio(write("a.aac", {0xFF, 0xF1, 0x60, 0x40, 0x01, 0x1F, 0xFC, 0xCC}), error)) << error;
  EXPECT_EQ(library.audio().get()->frames.size(), 1u);
}

TEST_F(MediaLibraryTest, SaysWhatIsWrongWithAFile) {
  MediaLibrary library{LoopCache("")};
  std::string error;
  EXPECT_FALSE(library.useVideo(folder_ + "/none", error));
  EXPECT_EQ(error, folder_ + "/none cannot be read");
  error.clear();
  EXPECT_FALSE(library.useVideo(folder_, error));
  EXPECT_EQ(error, folder_ + " cannot be read");
  error.clear();
  EXPECT_FALSE(library.useVideo(write("b", Bytes(100, 7)), error));
  EXPECT_EQ(error, folder_ + "/b is no H.264 stream with start codes");
  error.clear();
  EXPECT_FALSE(library.useAudio(write("c", Bytes(100, 7)), error));
  EXPECT_EQ(error, folder_ + "/c is no ADTS stream");
}

}  // namespace
}  // namespace zel::simulator
