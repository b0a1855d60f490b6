#include <ZELTarkaSDK/ZELMediaOffset.h>

#include <gtest/gtest.h>

#include <limits>

namespace zel::test {
namespace {

const char kText[] = "2_1.000_-0.500_1.500_0.000_0.000_90.000_2.000_0.000_1.500_0.000_0.000_-90.000_3040_1520_7";

ZELMediaOffset record() {
  ZELMediaOffset offset;
  offset.valueA = 3040;
  offset.valueB = 1520;
  offset.valueC = 7;
  offset.lensCount = 2;
  offset.lenses[0].p = {1000, -500, 1500, 0, 0, 90000};
  offset.lenses[1].p = {2000, 0, 1500, 0, 0, -90000};
  return offset;
}

TEST(ZELMediaOffsetTest, PrintsARecordWithThreeDecimals) { EXPECT_EQ(getOffsetFromZELMediaOffset(record()), kText); }

TEST(ZELMediaOffsetTest, ReadsItsOwnTextBack) { EXPECT_EQ(getMediaOffsetFromOffset(kText), record()); }

TEST(ZELMediaOffsetTest, PrintsARecordWithoutLensesWithTheMissingObjectsText) {
  ZELMediaOffset offset;
  offset.valueA = 1;
  offset.valueB = 2;
  offset.valueC = 4294967295u;
  EXPECT_EQ(getOffsetFromZELMediaOffset(offset), "0_(null)_1_2_4294967295");
}

TEST(ZELMediaOffsetTest, ReadsTheMissingObjectsTextAsAHeaderValue) {
  const ZELMediaOffset offset = getMediaOffsetFromOffset("0_(null)_1_2_3");
  EXPECT_EQ(offset.valueA, 0);
  EXPECT_EQ(offset.valueB, 1);
  EXPECT_EQ(offset.valueC, 2u);
}

TEST(ZELMediaOffsetTest, KeepsAHeaderValueOfThirtyTwoBits) {
  EXPECT_EQ(getMediaOffsetFromOffset("0_1_2_4294967295").valueC, 4294967295u);
}

TEST(ZELMediaOffsetTest, PrintsNoMoreLensesThanTheRecordHolds) {
  ZELMediaOffset offset = record();
  offset.lensCount = 255;
  EXPECT_EQ(getOffsetFromZELMediaOffset(offset), kText);
}

TEST(ZELMediaOffsetTest, ReadsNoMoreLensesThanTheRecordHolds) {
  const ZELMediaOffset offset = getMediaOffsetFromOffset("3_1_1_1_1_1_1_2_2_2_2_2_2_3_3_3_3_3_3_10_20_30");
  EXPECT_EQ(offset.lensCount, 2);
  EXPECT_EQ(offset.lenses[1].p[5], 2000);
  EXPECT_EQ(offset.valueA, 3);  // what stands right after the second lens
}

TEST(ZELMediaOffsetTest, PrintsInSinglePrecision) {
  ZELMediaOffset offset;
  offset.lensCount = 1;
  // 16777217 and 2147483647 are no floats; 16777216 and 2147483648 are.
  offset.lenses[0].p = {16777217, 2147483647, 999999, -1, 1, -2147483647 - 1};
  EXPECT_EQ(getOffsetFromZELMediaOffset(offset), "1_16777.217_2147483.750_999.999_-0.001_0.001_-2147483.750_0_0_0");
}

TEST(ZELMediaOffsetTest, GivesNothingForAnEmptyOrAbsentText) {
  EXPECT_EQ(getMediaOffsetFromOffset(""), ZELMediaOffset{});
  EXPECT_EQ(getMediaOffsetFromOffset(std::nullopt), ZELMediaOffset{});
}

TEST(ZELMediaOffsetTest, ReadsOneLensInThousandths) {
  const ZELMediaOffset offset = getMediaOffsetFromOffset("1_0.001_0.002_0.003_0.004_0.005_0.006_10_20_30");
  EXPECT_EQ(offset.lensCount, 1);
  EXPECT_EQ(offset.lenses[0].p, (std::array<S32, 6>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(offset.valueA, 10);
  EXPECT_EQ(offset.valueB, 20);
  EXPECT_EQ(offset.valueC, 30u);
}

TEST(ZELMediaOffsetTest, ReadsALensThatEndsTheText) {
  const ZELMediaOffset offset = getMediaOffsetFromOffset("1_1_2_3_4_5_6");
  EXPECT_EQ(offset.lensCount, 1);
  EXPECT_EQ(offset.lenses[0].p, (std::array<S32, 6>{1000, 2000, 3000, 4000, 5000, 6000}));
  EXPECT_EQ(offset.valueA, 0);
  EXPECT_EQ(offset.valueB, 0);
  EXPECT_EQ(offset.valueC, 0u);
}

TEST(ZELMediaOffsetTest, SkipsALensThatLacksItsLastValue) {
  const ZELMediaOffset offset = getMediaOffsetFromOffset("1_1_2_3_4_5");
  EXPECT_EQ(offset.lenses[0], ZELLensOffset{});
  EXPECT_EQ(offset.valueA, 1);
  EXPECT_EQ(offset.valueB, 2);
  EXPECT_EQ(offset.valueC, 3u);
}

TEST(ZELMediaOffsetTest, ReadsTheThirdHeaderValueWhateverFollows) {
  EXPECT_EQ(getMediaOffsetFromOffset("0_5_6_7_8_9").valueC, 7u);
}

TEST(ZELMediaOffsetTest, SkipsAnySpaceBeforeANumber) {
  EXPECT_EQ(getMediaOffsetFromOffset("1_\t1_\n2_\v3_\f4_\r5_ \t6").lenses[0].p,
            (std::array<S32, 6>{1000, 2000, 3000, 4000, 5000, 6000}));
}

TEST(ZELMediaOffsetTest, SkipsALensThatIsNotWhole) {
  const ZELMediaOffset offset = getMediaOffsetFromOffset("2_1_2_3_4_5_6_7_8");
  EXPECT_EQ(offset.lensCount, 2);
  EXPECT_EQ(offset.lenses[0].p, (std::array<S32, 6>{1000, 2000, 3000, 4000, 5000, 6000}));
  EXPECT_EQ(offset.lenses[1], ZELLensOffset{});
  EXPECT_EQ(offset.valueA, 7);
  EXPECT_EQ(offset.valueB, 8);
  EXPECT_EQ(offset.valueC, 0u);
}

TEST(ZELMediaOffsetTest, ReadsTheHeaderWithoutLenses) {
  const ZELMediaOffset offset = getMediaOffsetFromOffset("0_5_6_7");
  EXPECT_EQ(offset.lensCount, 0);
  EXPECT_EQ(offset.valueA, 5);
  EXPECT_EQ(offset.valueB, 6);
  EXPECT_EQ(offset.valueC, 7u);
}

TEST(ZELMediaOffsetTest, LeavesTheThirdHeaderValueZeroWhereTheTextEnds) {
  const ZELMediaOffset offset = getMediaOffsetFromOffset("0_5_6");
  EXPECT_EQ(offset.valueB, 6);
  EXPECT_EQ(offset.valueC, 0u);
}

TEST(ZELMediaOffsetTest, ReadsASingleHeaderValueAsTheThird) {
  const ZELMediaOffset offset = getMediaOffsetFromOffset("0_5");
  EXPECT_EQ(offset.valueA, 0);
  EXPECT_EQ(offset.valueC, 5u);
}

TEST(ZELMediaOffsetTest, TakesANegativeCountForNoLenses) {
  const ZELMediaOffset offset = getMediaOffsetFromOffset("-1_5_6_7");
  EXPECT_EQ(offset.lensCount, 255);  // the count's low byte
  EXPECT_EQ(offset.valueA, 5);
}

TEST(ZELMediaOffsetTest, ReadsWhatIsNoNumberAsZero) {
  const ZELMediaOffset offset = getMediaOffsetFromOffset("1_a_nan_inf_-_._1x_10x_x_");
  EXPECT_EQ(offset.lenses[0].p, (std::array<S32, 6>{0, 0, 0, 0, 0, 1000}));
  EXPECT_EQ(offset.valueA, 10);
  EXPECT_EQ(offset.valueB, 0);
  EXPECT_EQ(offset.valueC, 0u);
}

TEST(ZELMediaOffsetTest, ReadsANumberOfTwoSignsAsZero) {
  const ZELMediaOffset offset = getMediaOffsetFromOffset("1_+-5_-+5_--5_++5_+5_-5_+-5_-+5_+5");
  EXPECT_EQ(offset.lenses[0].p, (std::array<S32, 6>{0, 0, 0, 0, 5000, -5000}));
  EXPECT_EQ(offset.valueA, 0);
  EXPECT_EQ(offset.valueB, 0);
  EXPECT_EQ(offset.valueC, 5u);
}

TEST(ZELMediaOffsetTest, ReadsANumberThatBeginsWithItsPoint) {
  EXPECT_EQ(getMediaOffsetFromOffset("1_.5_-.5_0_0_0_0").lenses[0].p, (std::array<S32, 6>{500, -500, 0, 0, 0, 0}));
}

TEST(ZELMediaOffsetTest, TruncatesTowardZero) {
  const ZELMediaOffset offset = getMediaOffsetFromOffset("1_1.9999_-1.9999_0.0009_-0.0009_+2_ 3_0_0_0");
  EXPECT_EQ(offset.lenses[0].p, (std::array<S32, 6>{1999, -1999, 0, 0, 2000, 3000}));
}

TEST(ZELMediaOffsetTest, TakesTheNearestValueThatFits) {
  const ZELMediaOffset offset = getMediaOffsetFromOffset("1_3e6_-3e6_1e999_-1e999_1e-999_2147483.5_0_0_0");
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
  EXPECT_EQ(offset.lenses[0].p, (std::array<S32, 6>{kMost, kLeast, kMost, kLeast, 0, 2147483520}));
}

// The nearest single-precision number to 2147483750 is 2147483648, the first that does not fit.
TEST(ZELMediaOffsetTest, TakesTheNearestValueForTheFirstThatDoesNotFit) {
  const ZELMediaOffset offset = getMediaOffsetFromOffset("1_2147483.75_-2147483.75_0_0_0_0_0_0_0");
  EXPECT_EQ(offset.lenses[0].p[0], std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(offset.lenses[0].p[1], std::numeric_limits<std::int32_t>::min());
}

TEST(ZELMediaOffsetTest, ReadsNothingBehindTheEndOfTheText) {
  EXPECT_EQ(getMediaOffsetFromOffset(std::string_view("0_5_6_79").substr(0, 7)).valueC, 7u);
  EXPECT_EQ(getMediaOffsetFromOffset(std::string_view("1_1_2_3_4_5_69").substr(0, 13)).lenses[0].p[5], 6000);
}

TEST(ZELMediaOffsetTest, TakesTheLargestValueWhereAFloatReachesJustBeyondIt) {
  const ZELMediaOffset offset = getMediaOffsetFromOffset("1_2147483.648_-2147483.648_1E-999_-1E-999_0_0");
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
  EXPECT_EQ(offset.lenses[0].p, (std::array<S32, 6>{kMost, kLeast, 0, 0, 0, 0}));
}

// The nearest number of 64 bits, and of that the low bits.
TEST(ZELMediaOffsetTest, KeepsTheLowBitsOfAHeaderValueBeyondSixtyFourBits) {
  const ZELMediaOffset offset = getMediaOffsetFromOffset("0_9999999999999999999_-9999999999999999999_1");
  EXPECT_EQ(offset.valueA, 65535);
  EXPECT_EQ(offset.valueB, 0);
}

TEST(ZELMediaOffsetTest, KeepsTheLowBitsOfAHeaderValueThatIsTooLarge) {
  const ZELMediaOffset offset = getMediaOffsetFromOffset("0_65537_-1_4294967297");
  EXPECT_EQ(offset.valueA, 1);
  EXPECT_EQ(offset.valueB, 65535);
  EXPECT_EQ(offset.valueC, 1u);
}

TEST(ZELMediaOffsetTest, CopiesThreeValuesOfEachLensIntoTheShortRecord) {
  const ZELOriginOffset origin = getOriginOffsetFromOffset(kText);
  EXPECT_EQ(origin, (ZELOriginOffset{{1000, -500, 1500}, {2000, 0, 1500}, 3040, 1520}));
  EXPECT_EQ(getOriginOffsetFromOffset(std::nullopt), ZELOriginOffset{});
}

}  // namespace
}  // namespace zel::test
