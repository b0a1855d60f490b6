#include "simulator/media/scene_film.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/simulator/lens_points.h"
#include "tests/simulator/media/decoding.h"

namespace zel::simulator {
namespace {

using testing::Each;
using testing::ElementsAre;

constexpr PreviewFormat kSmall{480, 240, 4};

std::vector<VideoPicture> filmed(int count, PreviewFormat format = kSmall) {
  SceneFilm film(format);
  std::vector<VideoPicture> pictures;
  for (int i = 0; i < count; ++i) pictures.push_back(film.next());
  return pictures;
}

std::vector<int> typesIn(const VideoPicture& picture) {
  std::vector<int> types;
  for (const UnitPlace& unit : unitsIn(picture.bytes)) types.push_back(unitType(picture.bytes, unit));
  return types;
}

TEST(SceneFilmTest, BeginsEachSecondWithAKeyPictureBehindItsParameterSets) {
  const auto pictures = filmed(9);
  for (std::size_t i = 0; i < pictures.size(); ++i) {
    EXPECT_EQ(pictures[i].key, i % 4 == 0) << i;
    auto types = typesIn(pictures[i]);
    std::erase(types, 6);  // the encoder's name
    if (i % 4 == 0) {
      EXPECT_THAT(types, ElementsAre(7, 8, 5)) << i;
    } else {
      EXPECT_THAT(types, ElementsAre(1)) << i;
    }
  }
}

TEST(SceneFilmTest, CutsItsPicturesIntoTheAskedSlices) {
  const auto pictures = filmed(2, {.width = 480, .height = 240, .rate = 4, .slices = 4});
  auto types = typesIn(pictures[0]);
  std::erase(types, 6);
  EXPECT_THAT(types, ElementsAre(7, 8, 5, 5, 5, 5));
  EXPECT_THAT(typesIn(pictures[1]), ElementsAre(1, 1, 1, 1));
  for (const UnitPlace& unit : unitsIn(pictures[1].bytes)) EXPECT_EQ(unit.header - unit.begin, 4u);
}

TEST(SceneFilmTest, HasStartCodesOfFourBytesOnly) {
  for (const VideoPicture& picture : filmed(3)) {
    for (const UnitPlace& unit : unitsIn(picture.bytes)) EXPECT_EQ(unit.header - unit.begin, 4u);
  }
}

TEST(SceneFilmTest, GivesAPictureForEachWithoutDelay) {
  const auto decoded = decodePictures(filmed(6));
  ASSERT_EQ(decoded.size(), 6u);
  EXPECT_EQ(decoded[5].width, 480);
  EXPECT_EQ(decoded[5].height, 240);
}

// Players that miss the primaries or the transfer drop the rest.
TEST(SceneFilmTest, TellsAllOfItsColours) {
  const auto decoded = decodePictures(filmed(1));
  ASSERT_EQ(decoded.size(), 1u);
  EXPECT_TRUE(decoded[0].fullRange);
  EXPECT_EQ(decoded[0].primaries, 6);
  EXPECT_EQ(decoded[0].transfer, 6);
  EXPECT_EQ(decoded[0].matrix, 6);
}

// Where the front lens shows a direction, in pixels.
Point placeOf(double longitude, double latitude, const PreviewFormat& format = kSmall) {
  const LensOffset offset = factoryLensOffset();
  const Point at = pointOf(offset.lenses[0], offset.model, directionAt(longitude, latitude));
  return {at.x * format.width / offset.width, at.y * format.height / offset.height};
}

int lumaAt(const DecodedLuma& picture, Point at) { return picture.at(static_cast<int>(at.x), static_cast<int>(at.y)); }

TEST(SceneFilmTest, LightsTheLampAtEachFullSecond) {
  const auto decoded = decodePictures(filmed(5));
  const Point lamp = placeOf(kLampAside, kClockLatitude);
  EXPECT_GT(lumaAt(decoded[0], lamp), 90);  // 255, 60, 40: 116
  EXPECT_LT(lumaAt(decoded[1], lamp), 60);  // 58, 20, 20: 31
  EXPECT_LT(lumaAt(decoded[3], lamp), 60);
  EXPECT_GT(lumaAt(decoded[4], lamp), 90);
}

TEST(SceneFilmTest, MovesTheDisc) {
  const auto decoded = decodePictures(filmed(5));
  EXPECT_GT(lumaAt(decoded[0], placeOf(0, 0)), 190);    // 255, 226, 84: 218
  EXPECT_GT(lumaAt(decoded[4], placeOf(45, 0)), 190);   // an eighth of its round
  EXPECT_LT(lumaAt(decoded[0], placeOf(4.6, 0)), 120);  // its dark ring
}

// The disc's middle, which is 255, 226, 84, in the colours that the stream tells.
TEST(SceneFilmTest, ShowsTheColoursOfTheScene) {
  constexpr PreviewFormat kLarge{1440, 720, 4};
  const auto decoded = decodePictures(filmed(1, kLarge));
  ASSERT_EQ(decoded.size(), 1u);
  const Point disc = placeOf(0, 0, kLarge);
  double luma = 0, cb = 0, cr = 0;
  for (int i = 0; i < 64; ++i) {
    const int x = static_cast<int>(disc.x) - 4 + i % 8, y = static_cast<int>(disc.y) - 4 + i / 8;
    const auto chroma = static_cast<std::size_t>(y / 2 * kLarge.width / 2 + x / 2);
    luma += decoded[0].at(x, y) / 64.0;
    cb += (decoded[0].cb[chroma] - 128) / 64.0;
    cr += (decoded[0].cr[chroma] - 128) / 64.0;
  }
  EXPECT_NEAR(luma + 1.402 * cr, 255, 2);
  EXPECT_NEAR(luma - 0.344136 * cb - 0.714136 * cr, 226, 2);
  EXPECT_NEAR(luma + 1.772 * cb, 84, 2);
}

// The film renews only the rows in which something moves.
TEST(SceneFilmTest, RenewsEverythingThatMoves) {
  const Scene scene(480, 240);
  const FisheyeProjector lenses(factoryLensOffset(), 480, 240, 480, 240);
  const int first = 101, end = 139;  // 90 - 14 and 90 + 14 of 180 degrees
  const FisheyeProjector::Rows moving = lenses.rowsShowing({first, end});
  EXPECT_GT(moving.first, 60);
  EXPECT_LT(moving.end, 180);
  Picture seen = lenses.project(scene.at(0));
  for (const double seconds : {0.25, 1.0, 2.5, 4.75, 7.0}) {
    lenses.renew(scene.at(seconds), moving, seen);
    EXPECT_EQ(seen, lenses.project(scene.at(seconds))) << seconds;
  }
}

TEST(SceneFilmTest, IsBlackOutsideTheCircles) {
  const auto decoded = decodePictures(filmed(1));
  EXPECT_LT(decoded[0].at(2, 2), 6);
  EXPECT_LT(decoded[0].at(477, 237), 6);
}

constexpr PreviewFormat kGrainy{480, 240, 4, 400'000};

TEST(SceneFilmTest, TakesTheAskedBitsWithGrain) {
  std::size_t bytes = 0;
  for (const VideoPicture& picture : filmed(32, kGrainy)) bytes += picture.bytes.size();
  EXPECT_NEAR(static_cast<double>(bytes), 8 * 400'000 / 8, 0.1 * 8 * 400'000 / 8);  // 8 seconds
}

// The mean difference between two pictures where nothing moves: within the front circle, above the disc.
double meanDifference(const DecodedLuma& one, const DecodedLuma& other) {
  int sum = 0;
  for (int y = 40; y < 60; ++y)
    for (int x = 90; x < 150; ++x) sum += std::abs(one.at(x, y) - other.at(x, y));
  return sum / (20.0 * 60);
}

TEST(SceneFilmTest, HasAnotherGrainInEveryPicture) {
  const auto plain = decodePictures(filmed(2));
  const auto grainy = decodePictures(filmed(2, {480, 240, 4, 4'000'000}));
  EXPECT_LT(meanDifference(plain[0], plain[1]), 0.5);
  // The mean difference of two normal values of deviation 3 is 3 * 2 / sqrt(pi) = 3.4.
  EXPECT_NEAR(meanDifference(grainy[0], grainy[1]), 3.4, 0.5);
  EXPECT_NEAR(meanDifference(grainy[0], plain[0]), 3 * 0.798, 0.5);  // of one of them from its mean
}

TEST(SceneFilmTest, IsTheSameEachTimeWithItsGrain) {
  const auto once = filmed(2, kGrainy), again = filmed(2, kGrainy);
  for (std::size_t i = 0; i < 2; ++i) EXPECT_EQ(once[i].bytes, again[i].bytes);
}

TEST(SceneFilmTest, IsTheSameEachTime) {
  const auto once = filmed(3), again = filmed(3);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(once[i].bytes, again[i].bytes);
}

}  // namespace
}  // namespace zel::simulator
