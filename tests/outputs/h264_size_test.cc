#include "outputs/h264_pictures.h"

#include <gtest/gtest.h>

#include "tests/outputs/test_film.h"

namespace zel {
namespace {

TEST(H264SizeTest, IsThatOfThePicturesAndNotOfTheirMacroblocks) {
  const TestFilm film(1);
  const auto size = sizeOfPictures(film.headers.sps.bytes(), film.headers.pps.bytes(), film.packets.at(0).data.bytes());
  EXPECT_EQ(size, (PictureSize{64, 32}));
}

TEST(H264SizeTest, NonsenseHasNone) {
  const TestFilm film(1);
  const auto sps = film.headers.sps.bytes(), pps = film.headers.pps.bytes();
  const auto unit = film.packets.at(0).data.bytes();
  EXPECT_EQ(sizeOfPictures({}, {}, {}), std::nullopt);
  EXPECT_EQ(sizeOfPictures(sps, pps, {}), std::nullopt);
  EXPECT_EQ(sizeOfPictures(sps.first(3), pps, unit), std::nullopt);
  EXPECT_EQ(sizeOfPictures(sps, {}, unit), std::nullopt);
}

}  // namespace
}  // namespace zel
