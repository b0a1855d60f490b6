#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <vector>

#include "tests/outputs/film_folder.h"
#include "tests/outputs/read_back.h"

namespace zel {
namespace {

// A camera may send anything; MPEG-TS takes no AAC frame of a single byte, and no picture without a start code.
class RefusedPacketsTest : public FilmFolderTest {
 protected:
  static void shorten(MediaPacket& packet) { packet.data = ZELData(std::vector<std::uint8_t>{0x21}); }

  TestFilm film{25};  // 25 pictures and 100 frames of sound
};

TEST_F(RefusedPacketsTest, AShortFrameOfSoundIsLeftOutAndTheRestIsWritten) {
  const auto sound = std::ranges::find_if(
      film.packets, [](const MediaPacket& packet) { return packet.track == Track::audio && packet.time > 1'000'000; });
  ASSERT_NE(sound, film.packets.end());
  shorten(*sound);
  for (const char* name : {"a.ts", "a.m3u8"}) {
    LibavSink sink(address(name));
    ASSERT_EQ(writeAll(sink, film), std::nullopt) << name;
    ASSERT_EQ(sink.finish(), std::nullopt) << name;
    EXPECT_EQ(sink.leftOut().pictures, 0u) << name;
    EXPECT_EQ(sink.leftOut().audioFrames, 1u) << name;
    const ReadBack read = readBack(path(name));
    EXPECT_EQ(read.pictures, 25) << name;
    EXPECT_EQ(read.audioFrames, 99) << name;
    EXPECT_TRUE(read.ordered) << name;
  }
}

TEST_F(RefusedPacketsTest, TheLastOneMayBeAShortOne) {
  const auto sound = std::find_if(film.packets.rbegin(), film.packets.rend(),
                                  [](const MediaPacket& packet) { return packet.track == Track::audio; });
  shorten(*sound);
  LibavSink sink(address("a.ts"));
  ASSERT_EQ(writeAll(sink, film), std::nullopt);
  ASSERT_EQ(sink.finish(), std::nullopt);
  EXPECT_EQ(sink.leftOut().audioFrames, 1u);
  EXPECT_EQ(readBack(path("a.ts")).audioFrames, 99);
}

TEST_F(RefusedPacketsTest, AFileWithoutAnyPictureIsAFault) {
  for (MediaPacket& packet : film.packets) {
    if (packet.track == Track::video) shorten(packet);
  }
  LibavSink sink(address("a.ts"));
  ASSERT_EQ(writeAll(sink, film), std::nullopt);
  EXPECT_EQ(sink.finish(), "cannot write " + path("a.ts") + ": no picture fits its format");
  EXPECT_EQ(sink.leftOut().pictures, 25u);
}

}  // namespace
}  // namespace zel
