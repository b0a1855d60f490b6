#include "simulator/exif.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <initializer_list>
#include <limits>

namespace zel::simulator {
namespace {

Bytes joined(std::initializer_list<std::string> parts) {
  Bytes bytes;
  for (const std::string& part : parts) bytes.insert(bytes.end(), part.begin(), part.end());
  return bytes;
}

// A literal with zeros in it.
template <std::size_t size>
std::string text(const char (&literal)[size]) {
  return std::string(literal, size - 1);
}

Bytes record(double latitude, double longitude, double altitude) {
  Bytes bytes;
  for (const double value : {latitude, longitude, altitude}) put(bytes, std::bit_cast<std::uint64_t>(value));
  return bytes;
}

TEST(ExifTest, TellsTheTime) {
  EXPECT_EQ(exifSegment("2026:11:21 12:30:07", std::nullopt),
            joined({text("\xFF\xE1\x00\x74"  // length: its own two bytes, 6 and 108
                         "Exif\0\0"),
                    text("II\x2A\x00\x08\x00\x00\x00"),                                // first directory at 8
                    text("\x02\x00"),                                                  // entries
                    text("\x32\x01\x02\x00\x14\x00\x00\x00\x26\x00\x00\x00"),          // time: 20 bytes at 38
                    text("\x69\x87\x04\x00\x01\x00\x00\x00\x3A\x00\x00\x00\0\0\0\0"),  // details at 58; no next one
                    text("2026:11:21 12:30:07\0"), text("\x02\x00"),                   // entries
                    text("\x00\x90\x07\x00\x04\x00\x00\x00"
                         "0232"),                                                      // version
                    text("\x03\x90\x02\x00\x14\x00\x00\x00\x58\x00\x00\x00\0\0\0\0"),  // time: 20 bytes at 88
                    text("2026:11:21 12:30:07\0")}));
}

TEST(ExifTest, TellsThePlace) {
  const Bytes segment = exifSegment("2026:11:21 12:30:07", Position{48.5, -11.25, 519.5});
  // The directory of the place stands last: 2 + 7 * 12 + 4 bytes, and 24 + 24 + 8 for what does not fit. It begins at
  // 120, a directory entry of 12 bytes later than without, so its values begin at 210.
  const Bytes place = joined({
      text("\x07\x00"),
      text("\x00\x00\x01\x00\x04\x00\x00\x00\x02\x03\x00\x00"),  // version 2.3
      text("\x01\x00\x02\x00\x02\x00\x00\x00N\0\0\0"),           // north
      text("\x02\x00\x05\x00\x03\x00\x00\x00\xD2\x00\x00\x00"),  // at 210
      text("\x03\x00\x02\x00\x02\x00\x00\x00W\0\0\0"),           // west
      text("\x04\x00\x05\x00\x03\x00\x00\x00\xEA\x00\x00\x00"),  // at 234
      text("\x05\x00\x01\x00\x01\x00\x00\x00\0\0\0\0"),          // above the sea
      text("\x06\x00\x05\x00\x01\x00\x00\x00\x02\x01\x00\x00"),  // at 258
      text("\0\0\0\0"),
      text("\x30\x00\x00\x00\x01\x00\x00\x00\x1E\x00\x00\x00\x01\x00\x00\x00\0\0\0\0\x10\x27\x00\x00"),  // 48 30' 0"
      text("\x0B\x00\x00\x00\x01\x00\x00\x00\x0F\x00\x00\x00\x01\x00\x00\x00\0\0\0\0\x10\x27\x00\x00"),  // 11 15' 0"
      text("\x4C\xED\x07\x00\xE8\x03\x00\x00"),  // 519500 / 1000
  });
  ASSERT_EQ(segment.size(), 10u + 120 + place.size());
  EXPECT_EQ(Bytes(segment.end() - static_cast<std::ptrdiff_t>(place.size()), segment.end()), place);
  EXPECT_EQ(Bytes(segment.begin() + 44, segment.begin() + 56),  // the first directory's third entry: at 120
            joined({text("\x25\x88\x04\x00\x01\x00\x00\x00\x78\x00\x00\x00")}));
}

TEST(ExifTest, CarriesMinutesThatAreAlmostFull) {
  const Bytes segment = exifSegment("", Position{9.99999999999, 0, -1});
  const Bytes latitude(segment.end() - 56, segment.end() - 48);
  EXPECT_EQ(latitude, joined({text("\x0A\x00\x00\x00\x01\x00\x00\x00")}));  // ten degrees, not nine and sixty minutes
}

TEST(ExifTest, ReadsAPosition) {
  const auto position = positionIn(record(48.5, -11.25, 519.5));
  ASSERT_TRUE(position);
  EXPECT_EQ(position->latitude, 48.5);
  EXPECT_EQ(position->longitude, -11.25);
  EXPECT_EQ(position->altitude, 519.5);
}

TEST(ExifTest, ReadsNoPositionOutOfNothingOrNonsense) {
  constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
  EXPECT_FALSE(positionIn({}));
  EXPECT_FALSE(positionIn(record(0, 0, 0)));
  for (const Bytes& wrong : {record(90.1, 0, 0), record(0, -180.1, 0), record(1, 1, 1e7), record(kNoNumber, 1, 1),
                             record(1, 1, std::numeric_limits<double>::infinity())})
    EXPECT_FALSE(positionIn(wrong));
  EXPECT_TRUE(positionIn(record(-90, 180, 0)));
}

TEST(ExifTest, TheSegmentComesFirst) {
  EXPECT_EQ(withSegment({0xFF, 0xD8, 0xFF, 0xE0}, {1, 2, 3}), (Bytes{0xFF, 0xD8, 1, 2, 3, 0xFF, 0xE0}));
  EXPECT_EQ(withSegment({0xFF}, {1, 2, 3}), Bytes{0xFF});
}

}  // namespace
}  // namespace zel::simulator
