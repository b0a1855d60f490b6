#include "outputs/mp4_boxes.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <initializer_list>
#include <string>

namespace zel {
namespace {

using Bytes = std::vector<std::uint8_t>;
using testing::HasSubstr;

Bytes join(std::initializer_list<Bytes> parts) {
  Bytes all;
  for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

Bytes box(const std::string& type, const Bytes& content) {
  const auto size = static_cast<std::uint8_t>(8 + content.size());
  Bytes bytes = {0, 0, 0, size};
  bytes.insert(bytes.end(), type.begin(), type.end());
  return join({bytes, content});
}

Bytes handler(const std::string& type) {
  Bytes content = {0, 0, 0, 0, 0, 0, 0, 0};
  content.insert(content.end(), type.begin(), type.end());
  return box("hdlr", content);
}

Bytes track(const std::string& type, const Bytes& places) {
  return box("trak", box("mdia", join({handler(type), box("minf", box("stbl", places))})));
}

const Bytes kTwoPlaces = {0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0x10, 0, 0, 1, 0};
const Bytes kLargePlace = {0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0};

TEST(Mp4BoxesTest, StandSideBySide) {
  const Bytes bytes = join({box("abcd", {1, 2}), box("efgh", {})});
  const auto boxes = boxesIn(bytes, 0, bytes.size());
  ASSERT_TRUE(boxes);
  ASSERT_EQ(boxes->size(), 2u);
  EXPECT_EQ((*boxes)[0].type, 0x61626364u);
  EXPECT_EQ((*boxes)[0].end, 10u);
  EXPECT_EQ((*boxes)[1].begin, 10u);
  EXPECT_EQ((*boxes)[1].content, 18u);
}

TEST(Mp4BoxesTest, MustFillTheirPlaceExactly) {
  const Bytes bytes = join({box("abcd", {1, 2}), box("efgh", {})});
  for (std::size_t end = 1; end < bytes.size(); ++end) {
    EXPECT_EQ(boxesIn(bytes, 0, end).has_value(), end == 10) << end;
  }
  EXPECT_FALSE(boxesIn(Bytes{0, 0, 0, 7, 'a', 'b', 'c', 'd'}, 0, 8));
  EXPECT_FALSE(boxesIn(Bytes{0, 0, 0, 9, 'a', 'b', 'c', 'd'}, 0, 8));
}

TEST(Mp4BoxesTest, PlacesAreMovedInBothWidths) {
  Bytes moov = box("moov", join({track("vide", box("stco", kTwoPlaces)), track("soun", box("co64", kLargePlace))}));
  ASSERT_TRUE(moveChunks(moov, 0x0F0));
  const Bytes first = {0, 0, 0, 2, 0, 0, 1, 0, 0, 0, 1, 0xF0};
  EXPECT_NE(std::search(moov.begin(), moov.end(), first.begin(), first.end()), moov.end());
  const Bytes second = {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0xF0};
  EXPECT_NE(std::search(moov.begin(), moov.end(), second.begin(), second.end()), moov.end());
}

TEST(Mp4BoxesTest, APlaceThatWouldNotFitIsRefused) {
  Bytes moov = box("moov", track("vide", box("stco", {0, 0, 0, 0, 0, 0, 0, 1, 0xFF, 0xFF, 0xFF, 0xFE})));
  EXPECT_FALSE(moveChunks(moov, 2));
  EXPECT_TRUE(moveChunks(moov, 1));
}

TEST(Mp4BoxesTest, ATableThatPromisesTooMuchIsRefused) {
  Bytes moov = box("moov", track("vide", box("stco", {0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 1})));
  EXPECT_FALSE(moveChunks(moov, 1));
}

TEST(Mp4BoxesTest, SphericalMetadataGoesIntoTheVideosTrack) {
  Bytes moov = box("moov", join({track("soun", box("stco", kTwoPlaces)), track("vide", box("stco", kTwoPlaces))}));
  ASSERT_TRUE(addSphericalBox(moov));
  const auto inMoov = boxesIn(moov, 8, moov.size());
  ASSERT_TRUE(inMoov);
  ASSERT_EQ(inMoov->size(), 2u);
  const Mp4Box video = (*inMoov)[1];
  const auto inTrack = boxesIn(moov, video.content, video.end);
  ASSERT_TRUE(inTrack);
  ASSERT_EQ(inTrack->size(), 2u);
  const Mp4Box added = (*inTrack)[1];
  EXPECT_EQ(added.type, boxType("uuid"));
  const Bytes id(moov.begin() + static_cast<std::ptrdiff_t>(added.content),
                 moov.begin() + static_cast<std::ptrdiff_t>(added.content) + 16);
  EXPECT_EQ(id,
            (Bytes{0xff, 0xcc, 0x82, 0x63, 0xf8, 0x55, 0x4a, 0x93, 0x88, 0x14, 0x58, 0x7a, 0x02, 0x52, 0x1f, 0xdd}));
  const std::string text(moov.begin() + static_cast<std::ptrdiff_t>(added.content) + 16,
                         moov.begin() + static_cast<std::ptrdiff_t>(added.end));
  EXPECT_THAT(text, HasSubstr("<GSpherical:Spherical>true</GSpherical:Spherical>"));
  EXPECT_THAT(text, HasSubstr("<GSpherical:Stitched>true</GSpherical:Stitched>"));
  EXPECT_THAT(text, HasSubstr("<GSpherical:ProjectionType>equirectangular</GSpherical:ProjectionType>"));
}

TEST(Mp4BoxesTest, WithoutVideoNothingIsChanged) {
  Bytes moov = box("moov", track("soun", box("stco", kTwoPlaces)));
  const Bytes before = moov;
  EXPECT_FALSE(addSphericalBox(moov));
  EXPECT_EQ(moov, before);
}

TEST(Mp4BoxesTest, WhatIsNoDescriptionIsRefused) {
  Bytes other = box("free", {});
  EXPECT_FALSE(addSphericalBox(other));
  EXPECT_FALSE(moveChunks(other, 1));
  EXPECT_FALSE(moveChunks({}, 1));
}

}  // namespace
}  // namespace zel
