#include "media/parameter_sets.h"

#include <gtest/gtest.h>

#include "tests/media/nal_bytes.h"

namespace zel::test {
namespace {

Bytes copyOf(ByteView set) { return Bytes(set.begin(), set.end()); }

TEST(ParameterSetsTest, AreCompleteWithOneOfEachKind) {
  ParameterSets sets;
  EXPECT_FALSE(sets.areComplete());
  sets.offerSps(unit({0x67, 1}));
  EXPECT_FALSE(sets.areComplete());
  sets.offerPps(unit({0x68, 2}));
  EXPECT_TRUE(sets.areComplete());
  EXPECT_EQ(copyOf(sets.sps()), bytes({0x67, 1}));
  EXPECT_EQ(copyOf(sets.pps()), bytes({0x68, 2}));
}

TEST(ParameterSetsTest, AreNotCompleteWithoutTheFirstKind) {
  ParameterSets sets;
  sets.offerPps(unit({0x68, 2}));
  EXPECT_FALSE(sets.areComplete());
  EXPECT_TRUE(sets.sps().empty());
}

TEST(ParameterSetsTest, KeepTheFirstOfAKind) {
  ParameterSets sets;
  sets.offerSps(unit({0x67, 1}));
  sets.offerSps(unit({0x67, 2}));
  EXPECT_EQ(copyOf(sets.sps()), bytes({0x67, 1}));
}

TEST(ParameterSetsTest, TakeASetThatIsAHeaderAndNothingElse) {
  ParameterSets sets;
  sets.offerSps(unit({}));
  EXPECT_TRUE(sets.sps().empty());
  sets.offerSps(unit({0x67}));
  EXPECT_EQ(copyOf(sets.sps()), bytes({0x67}));
}

TEST(ParameterSetsTest, TakeNoSetWithAHeaderThatMayNotBe) {
  ParameterSets sets;
  sets.offerSps(unit({0x07, 1}));
  sets.offerSps(unit({0xE7, 1}));
  EXPECT_TRUE(sets.sps().empty());
}

TEST(ParameterSetsTest, AreThoseOfAnotherWhereTheyAreItsVeryCopies) {
  ParameterSets sets, equal;
  for (ParameterSets* each : {&sets, &equal}) {
    each->offerSps(unit({0x67, 1}));
    each->offerPps(unit({0x68, 2}));
  }
  const ParameterSets copy = sets;
  EXPECT_TRUE(copy.areThoseOf(sets));
  EXPECT_FALSE(equal.areThoseOf(sets));
}

}  // namespace
}  // namespace zel::test
