#include "apps/zelcam/commands/file_summary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "outputs/libav.h"
#include "tests/outputs/test_film.h"
#include "tests/zelcam/process.h"

namespace zel::app {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

class FileSummaryTest : public testing::Test {
 protected:
  FileSummaryTest() { av_log_set_level(AV_LOG_QUIET); }

  std::string write(const std::string& name, const std::vector<std::uint8_t>& bytes) const {
    const std::string path = folder_.path() + "/" + name;
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return path;
  }

  // H.264 with start codes: the parameter sets and as many pictures.
  static std::vector<std::uint8_t> film(int pictures) {
    const TestFilm made(pictures);
    std::vector<std::uint8_t> stream;
    const auto add = [&stream](const ZELData& data) {
      stream.insert(stream.end(), data.bytes().begin(), data.bytes().end());
    };
    for (const ZELData& set : {made.headers.sps, made.headers.pps}) {
      stream.insert(stream.end(), {0, 0, 0, 1});
      add(set);
    }
    for (const MediaPacket& packet : made.packets) {
      if (packet.track == Track::video) add(packet.data);
    }
    return stream;
  }

 private:
  const test::TemporaryFolder folder_;
};

TEST_F(FileSummaryTest, CountsThePicturesOfAFilm) {
  EXPECT_EQ(textOf(fileSummary(write("film.h264", film(7)))), "h264,64,32,7");
}

TEST_F(FileSummaryTest, FindsNothingInAFilmWhoseKeyPictureIsDamaged) {
  std::vector<std::uint8_t> stream = film(7);
  const std::vector<std::uint8_t> keyUnit = {0, 0, 0, 1, 0x65};
  const auto key = std::search(stream.begin(), stream.end(), keyUnit.begin(), keyUnit.end());
  ASSERT_GT(stream.end() - key, 30);
  std::fill(key + 8, key + 30, std::uint8_t{0xA5});
  EXPECT_THAT(fileSummary(write("film.h264", stream)), IsEmpty());
}

TEST_F(FileSummaryTest, FindsNothingInWhatIsNoMediaFile) {
  EXPECT_THAT(fileSummary(write("empty.mp4", {})), IsEmpty());
  EXPECT_THAT(fileSummary(write("text.jpg", {'h', 'e', 'l', 'l', 'o'})), IsEmpty());
  EXPECT_THAT(fileSummary("/no/such/file.mp4"), IsEmpty());
}

TEST_F(FileSummaryTest, TellsSoundByItsFramesAlone) {
  EXPECT_EQ(textOf({{"h264", 1920, 960, 284}, {"aac", 0, 0, 453}}), "h264,1920,960,284 aac,453");
  EXPECT_EQ(textOf({}), "");
}

}  // namespace
}  // namespace zel::app
