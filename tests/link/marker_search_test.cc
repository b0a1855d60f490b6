#include "link/marker_search.h"

#include <gtest/gtest.h>

#include "tests/link/bytes.h"

namespace zel::test {
namespace {

TEST(MarkerSearchTest, FindsTheMarkerAtTheStart) { EXPECT_EQ(findMarker(kMarker), 0u); }

TEST(MarkerSearchTest, FindsTheMarkerAtTheEnd) { EXPECT_EQ(findMarker(join(bytes({0xAF, 0xFA, 0}), kMarker)), 3u); }

TEST(MarkerSearchTest, FindsTheMarkerBehindItsOwnOddHalf) { EXPECT_EQ(findMarker(join(bytes({0xAF}), kMarker)), 1u); }

TEST(MarkerSearchTest, FindsNothingInAMarkerThatMissesItsLastByte) {
  EXPECT_EQ(findMarker(bytes({0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA, 0xAF})), std::nullopt);
}

TEST(MarkerSearchTest, FindsNothingInNothing) { EXPECT_EQ(findMarker({}), std::nullopt); }

}  // namespace
}  // namespace zel::test
