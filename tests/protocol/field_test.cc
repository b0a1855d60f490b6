#include "protocol/field.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/command/command_test.h"

namespace zel::test {
namespace {

using testing::IsEmpty;

Bytes packed(const Field& one, const ZELMessageFields& fields) {
  Bytes body;
  one.append(body, fields, one.key);
  return body;
}

ZELMessageFields read(const Field& one, const Bytes& body) {
  ByteReader reader(body);
  ZELMessageFields fields;
  one.read(reader, fields, one.key);
  return fields;
}

constexpr Field kShort = field::s16("shortValue");
constexpr Field kLowByte = field::lowByteOfU16("ushortValue");
constexpr Field kByteOfInt = field::u8OfInt("intValue");
constexpr Field kName = field::nameField<4>("name", "nsString");
constexpr Field kTerminated = field::terminatedName("nsString");
constexpr Field kAscii = field::ascii("nsString");
constexpr Field kRest = field::rest("NSData");
constexpr Field kRecord = field::record<ZELIPMEParam>("record", "NSValue1");

TEST(FieldTest, PacksAMissingKeyAsZero) {
  EXPECT_EQ(packed(kShort, {}), bytes({0, 0}));
  EXPECT_EQ(packed(kLowByte, {}), bytes({0, 0}));
  EXPECT_EQ(packed(kName, {}), bytes({0, 0, 0, 0}));
  EXPECT_EQ(packed(kRecord, {}), bytes({0, 0}));
  EXPECT_THAT(packed(kRest, {}), IsEmpty());
  EXPECT_THAT(packed(kTerminated, {}), IsEmpty());
}

TEST(FieldTest, TakesAKeyOfAnotherTypeForMissing) {
  EXPECT_EQ(packed(kShort, {{"shortValue", std::uint16_t{7}}}), bytes({0, 0}));
  EXPECT_EQ(packed(kRecord, {{"NSValue1", aeb_info{1, {}}}}), bytes({0, 0}));
}

TEST(FieldTest, CutsAnIntToItsLowByte) {
  EXPECT_EQ(packed(kByteOfInt, {{"intValue", std::int32_t{-1}}}), bytes({0xFF}));
  EXPECT_EQ(read(kByteOfInt, bytes({0xFF})).get<std::int32_t>("intValue"), 255);
}

TEST(FieldTest, FillsANameFieldAndCutsALongName) {
  EXPECT_EQ(packed(kName, {{"nsString", std::string("ab")}}), bytes({'a', 'b', 0, 0}));
  EXPECT_EQ(packed(kName, {{"nsString", std::string("abcd")}}), bytes({'a', 'b', 'c', 'd'}));
  EXPECT_EQ(packed(kName, {{"nsString", std::string("abcde")}}), bytes({'a', 'b', 'c', 'd'}));
}

TEST(FieldTest, CopiesAsManyBytesOfANameAsItHasCharacters) {
  EXPECT_EQ(packed(kTerminated, {{"nsString", std::string("ab")}}), bytes({'a', 'b', 0}));
  EXPECT_EQ(packed(kTerminated, {{"nsString", std::string("\xC3\xA9")}}), bytes({0xC3, 0}));
  EXPECT_EQ(packed(kTerminated, {{"nsString", std::string("\xF0\x9F\x93\xB7")}}), bytes({0xF0, 0x9F, 0}));
}

TEST(FieldTest, ReadsTextThatIsNotAsciiAsAbsent) {
  EXPECT_EQ(read(kAscii, text("ab")).get<std::string>("nsString"), "ab");
  EXPECT_EQ(read(kAscii, bytes({0xC3, 0xA9})), ZELMessageFields());
}

TEST(FieldTest, ReadsNoBytesAsAbsentData) { EXPECT_EQ(read(kRest, {}), ZELMessageFields()); }

TEST(FieldTest, CountsTheFewestBytesOfAList) {
  static constexpr FieldList kList{kShort, kRecord, kRest};
  EXPECT_EQ(kList.size(), 4u);
  EXPECT_EQ(FieldList().size(), 0u);
}

}  // namespace
}  // namespace zel::test
