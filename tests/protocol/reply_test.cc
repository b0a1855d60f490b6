#include "protocol/reply.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/command/command_test.h"

namespace zel::test {
namespace {

constexpr Reply kFlag = flag(field::u8("ucharValue"));
constexpr Reply kValue = value(field::u8("ucharValue"));

TEST(ReplyTest, OfAFlagIsRefusedByZeroAndByALackOfBytes) {
  EXPECT_FALSE(decodeReply(kFlag, bytes({1, 7})).refused);
  EXPECT_TRUE(decodeReply(kFlag, bytes({0, 7})).refused);
  EXPECT_TRUE(decodeReply(kFlag, bytes({1})).refused);
  EXPECT_TRUE(decodeReply(kFlag, {}).refused);
}

TEST(ReplyTest, OfAValueIsRefusedByALackOfBytesAlone) {
  EXPECT_EQ(decodeReply(kValue, bytes({0})).fields, (ZELMessageFields{{"ucharValue", std::uint8_t{0}}}));
  EXPECT_TRUE(decodeReply(kValue, {}).refused);
}

TEST(ReplyTest, WithoutFieldsHasNoDictionary) {
  static constexpr Reply kBare = flag();
  const Bytes yes = bytes({1});
  EXPECT_FALSE(decodeReply(kBare, yes).fields);
  EXPECT_FALSE(decodeReply(kBare, yes).refused);
}

TEST(ReplyTest, OfACaptureReadsItsUnalignedSize) {
  const Decoded decoded = decodeCaptureResult(hex("01000000 0200000000000080 4100"));
  EXPECT_EQ(decoded.fields, (ZELMessageFields{{"fileTime", std::uint32_t{1}},
                                              {"FileSize", std::uint64_t{0x8000000000000002}},
                                              {"fileName", std::string("A")}}));
}

TEST(ReplyTest, OfATextFileCarriesTheCodeBesideTheError) {
  const Decoded decoded = decodeTextFileResult(bytes({0, 9}));
  EXPECT_FALSE(decoded.refused);
  EXPECT_EQ(decoded.fields->get<std::int32_t>("intValue"), 9);
  EXPECT_EQ(decoded.fields->get<ZELError>("NSError"), (ZELError{"NSOSStatusErrorDomain", 101, std::nullopt}));
}

// Without a body there is no code, not even 0, for the error to travel with.
TEST(ReplyTest, OfATextFileIsRefusedWithoutABody) {
  EXPECT_TRUE(decodeTextFileResult({}).refused);
  EXPECT_FALSE(decodeTextFileResult({}).fields);
}

TEST(ReplyTest, ThatIsNotReadIsAlwaysASuccess) {
  EXPECT_FALSE(decodeAnything({}).refused);
  EXPECT_FALSE(decodeAnything(bytes({0})).fields);
}

}  // namespace
}  // namespace zel::test
