#include "media/nal_unit.h"

#include <gtest/gtest.h>

#include "tests/media/nal_bytes.h"

namespace zel::test {
namespace {

TEST(NalUnitTest, HasItsTypeInTheLowFiveBits) {
  EXPECT_EQ(nalType(0x65), NalType::idrSlice);
  EXPECT_EQ(nalType(0x05), NalType::idrSlice);
  EXPECT_EQ(nalType(0x41), NalType::slice);
  EXPECT_EQ(nalType(0xE7), NalType::sps);
}

TEST(NalUnitTest, IsAKeyUnitByTheByteBehindTheFirstFour) {
  EXPECT_TRUE(isIdr(bytes({0, 0, 0, 1, 0x65})));
  EXPECT_FALSE(isIdr(bytes({0, 0, 0, 0x65, 0x41})));
}

TEST(NalUnitTest, IsNoKeyUnitWithoutAHeader) {
  const Bytes whole = bytes({0, 0, 0, 1, 0x65});
  EXPECT_FALSE(isIdr(ByteView(whole).first(4)));
  EXPECT_FALSE(isIdr({}));
}

TEST(NalUnitTest, MayHoldAParameterSetWhereItIsReferredToAndNotForbidden) {
  EXPECT_TRUE(isValidParameterSetHeader(0x67));
  EXPECT_TRUE(isValidParameterSetHeader(0x27));
  EXPECT_TRUE(isValidParameterSetHeader(0x47));
  EXPECT_FALSE(isValidParameterSetHeader(0x07));
  EXPECT_FALSE(isValidParameterSetHeader(0xE7));
}

TEST(NalUnitTest, BearsTheLengthOfItsRestHighestByteFirst) {
  Bytes unit(5, 9);
  writeLengthPrefix(unit.data(), 0x01020308);
  EXPECT_EQ(unit, bytes({1, 2, 3, 4, 9}));
}

}  // namespace
}  // namespace zel::test
