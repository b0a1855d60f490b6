#include "platform/render/plane_map.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "tests/platform/render/pictures.h"

namespace zel::render {
namespace {

using testing::ElementsAre;

struct Point {
  double x, y;
};

double along(std::int32_t start, std::uint32_t shape, std::size_t pixel) {
  const int j = 2 * static_cast<int>(pixel) - 15;
  const int units =
      start + j * static_cast<std::int16_t>(shape & 0xFFFF) + (j * j - 1) / 8 * static_cast<std::int16_t>(shape >> 16);
  return units / 8192.0 - 1.0 / 256;
}

Point pointOf(const Segment& segment, std::size_t pixel) {
  return {along(segment.x, segment.shapeX, pixel), along(segment.y, segment.shapeY, pixel)};
}

// How far the map's places of one row are from the formulas' at most, and how many pixels the row has.
struct Likeness {
  double worst = 0;
  std::size_t pixels = 0;
};

class PlaneMapTest : public testing::Test {
 protected:
  PlaneMapTest() {
    for (const Lens& lens : model_.lenses) views_.emplace_back(model_, lens, 3040, 1520);
  }

  PlaneShape shapeOf(std::size_t width, std::size_t segmentPixels) const {
    return {width, width / 2, 1, segmentPixels};
  }

  double distance(const Segment& segment, std::size_t lens, std::size_t i, Direction direction) const {
    const Point point = pointOf(segment, i);
    const Sight sight = views_[lens].sightOf(direction);
    return std::max(std::abs(point.x + 0.5 - sight.x), std::abs(point.y + 0.5 - sight.y));
  }

  Likeness likenessOf(const PlaneShape& shape, std::size_t row) const {
    const Tile tile = TileBuilder(views_, model_.fieldOfView, shape).build({row, 1, 0, shape.width});
    const double latitude =
        (0.5 - (static_cast<double>(row) + 0.5) / static_cast<double>(shape.height)) * std::numbers::pi;
    Likeness likeness;
    for (const auto& run : tile.runs) {
      for (std::size_t i = 0; i < run.count * shape.segmentPixels && likeness.pixels < shape.width; ++i) {
        const double longitude =
            ((static_cast<double>(likeness.pixels++) + 0.5) / static_cast<double>(shape.width) - 0.5) * 2 *
            std::numbers::pi;
        const Direction direction{std::sin(longitude) * std::cos(latitude), -std::sin(latitude),
                                  std::cos(longitude) * std::cos(latitude)};
        const std::size_t at = run.first + i / shape.segmentPixels, pixel = i % shape.segmentPixels;
        for (std::size_t lens = 0; lens < 2; ++lens) {
          if (run.kind != RunKind::blend && static_cast<std::size_t>(run.kind) != lens) continue;
          const Segment& segment = run.kind == RunKind::blend ? tile.blends[at].lens[lens] : tile.segments[at];
          likeness.worst = std::max(likeness.worst, distance(segment, lens, pixel, direction));
        }
      }
    }
    return likeness;
  }

  const LensModel model_ = *parseLensModel(kFactoryOffset).model;
  std::vector<LensView> views_;
};

TEST_F(PlaneMapTest, FollowsTheFormulasToA64thOfAPixel) {
  for (const std::size_t row : {0u, 1u, 40u, 400u, 759u, 1200u, 1519u}) {
    const Likeness likeness = likenessOf(shapeOf(3040, 16), row);
    EXPECT_LT(likeness.worst, 1.0 / 64) << "row " << row;
    EXPECT_EQ(likeness.pixels, 3040u);
  }
}

TEST_F(PlaneMapTest, FollowsThemWithSegmentsOfFewerPixels) {
  for (const std::size_t pixels : {1u, 2u, 4u, 8u})
    EXPECT_LT(likenessOf(shapeOf(1000, pixels), 123).worst, 1.0 / 64) << pixels;
}

TEST_F(PlaneMapTest, FollowsThemWhereTheLastSegmentIsCut) {
  const Likeness likeness = likenessOf(shapeOf(1910, 16), 300);
  EXPECT_LT(likeness.worst, 1.0 / 64);
  EXPECT_EQ(likeness.pixels, 1910u);
}

TEST_F(PlaneMapTest, LooksForwardThroughTheFirstLensAndBackThroughTheSecond) {
  const Tile tile = TileBuilder(views_, model_.fieldOfView, shapeOf(3040, 16)).build({760, 1, 0, 3040});
  std::vector<RunKind> kinds;
  for (const auto& run : tile.runs) kinds.push_back(run.kind);
  EXPECT_THAT(kinds, ElementsAre(RunKind::lens1, RunKind::blend, RunKind::lens0, RunKind::blend, RunKind::lens1));
}

TEST_F(PlaneMapTest, BlendsTheWholeOfTheRowsAtThePoles) {
  const Tile tile = TileBuilder(views_, model_.fieldOfView, shapeOf(3040, 16)).build({0, 1, 0, 3040});
  ASSERT_EQ(tile.runs.size(), 1u);
  EXPECT_EQ(tile.runs[0].kind, RunKind::blend);
  EXPECT_EQ(tile.runs[0].count, 190u);
}

TEST(SharesTest, AreHalvesInTheMiddleOfTheSeam) {
  EXPECT_THAT(sharesAt(5, 5), ElementsAre(64, 64));
  EXPECT_THAT(sharesAt(0.1, 0.1), ElementsAre(64, 64));
}

TEST(SharesTest, FallSmoothlyAcrossTheSeam) {
  EXPECT_THAT(sharesAt(6, 2), ElementsAre(108, 20));  // t = 1/2 + 4/16; t t (3 - 2 t) = 0.84375
  EXPECT_THAT(sharesAt(2, 6), ElementsAre(20, 108));
}

TEST(SharesTest, GoToOneLensBeyondTheFeather) {
  EXPECT_THAT(sharesAt(9, 1), ElementsAre(128, 0));
  EXPECT_THAT(sharesAt(1, 90), ElementsAre(0, 128));
}

TEST(SharesTest, GoToTheLensThatSeesAnything) {
  EXPECT_THAT(sharesAt(0.5, 0), ElementsAre(128, 0));
  EXPECT_THAT(sharesAt(-3, 0.5), ElementsAre(0, 128));
  EXPECT_THAT(sharesAt(-3, 0), ElementsAre(0, 0));
}

TEST(SegmentPixelsTest, AreAsManyAsAParabolaFollows) {
  EXPECT_EQ(segmentPixelsFor(3040, 7.69), 16u);
  EXPECT_EQ(segmentPixelsFor(240, 1), 8u);  // radius 57.3, turn 2 pi / 240: 16 pixels 0.022 wrong, 8 pixels 0.0027
}

TEST(SegmentPixelsTest, AreSingleWhereTheStepIsTooLong) { EXPECT_EQ(segmentPixelsFor(64, 100), 1u); }

}  // namespace
}  // namespace zel::render
