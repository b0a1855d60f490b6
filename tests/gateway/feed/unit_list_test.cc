#include "gateway/feed/unit_list.h"

#include <gmock/gmock.h>

#include "tests/gateway/feed/feed_bytes.h"

namespace zel::gateway::test {
namespace {

using ::testing::ElementsAre;

std::vector<Bytes> unitsIn(const Bytes& picture) {
  std::vector<Bytes> units;
  for (const auto unit : unitsOf(picture)) units.emplace_back(unit.begin(), unit.end());
  return units;
}

TEST(UnitListTest, StartCodesOfThreeAndOfFourBytesCut) {
  EXPECT_THAT(unitsIn({0, 0, 0, 1, 0x65, 9, 0, 0, 1, 0x65, 8, 0, 0, 0, 1, 0x65, 7}),
              ElementsAre(Bytes{0x65, 9}, Bytes{0x65, 8}, Bytes{0x65, 7}));
}

TEST(UnitListTest, WhatLooksLikeAStartCodeStaysInTheUnit) {
  EXPECT_THAT(unitsIn({0, 0, 1, 0x41, 0, 1, 0, 0, 3, 1, 1, 1}), ElementsAre(Bytes{0x41, 0, 1, 0, 0, 3, 1, 1, 1}));
}

TEST(UnitListTest, ZerosBehindAUnitAndEmptyUnitsAreLeftOut) {
  EXPECT_THAT(unitsIn({0, 0, 1, 0x41, 5, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0x41, 6, 0}),
              ElementsAre(Bytes{0x41, 5}, Bytes{0x41, 6}));
}

TEST(UnitListTest, BytesWithoutAStartCodeHoldNoUnit) {
  EXPECT_TRUE(unitsIn({}).empty());
  EXPECT_TRUE(unitsIn({0, 0}).empty());
  EXPECT_TRUE(unitsIn({0x65, 1, 2, 3}).empty());
  EXPECT_TRUE(unitsIn({0, 0, 1}).empty());
}

}  // namespace
}  // namespace zel::gateway::test
