#include <ZELTarkaSDK/ZELData.h>

#include <gtest/gtest.h>

#include "tests/link/bytes.h"

namespace zel::test {
namespace {

TEST(ZELDataTest, HoldsNothingUntilItIsGivenBytes) {
  EXPECT_EQ(ZELData().size(), 0u);
  EXPECT_TRUE(ZELData().empty());
  EXPECT_TRUE(ZELData().bytes().empty());
}

TEST(ZELDataTest, HoldsTheBytesThatItIsGiven) {
  const ZELData data(bytes({1, 2, 3}));
  EXPECT_EQ(data.size(), 3u);
  EXPECT_FALSE(data.empty());
  EXPECT_EQ(Bytes(data.bytes().begin(), data.bytes().end()), bytes({1, 2, 3}));
}

TEST(ZELDataTest, SharesItsBytesWithItsCopies) {
  const ZELData data(bytes({1, 2, 3}));
  const ZELData copy = data;
  EXPECT_EQ(copy.bytes().data(), data.bytes().data());
}

}  // namespace
}  // namespace zel::test
