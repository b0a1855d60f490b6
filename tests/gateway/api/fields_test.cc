#include "gateway/api/fields.h"

#include <gtest/gtest.h>

namespace zel::gateway {
namespace {

using Json = nlohmann::json;

TEST(FieldsTest, GiveWhatIsThere) {
  const Json body = Json::parse(R"({"text": "a", "flag": true, "number": -5})");
  Fields fields(body, {"text", "flag", "number"});
  EXPECT_EQ(fields.text("text"), "a");
  EXPECT_TRUE(fields.flag("flag"));
  EXPECT_EQ(fields.integer("number", -5, 5), -5);
  EXPECT_FALSE(fields.fault());
}

TEST(FieldsTest, ThatAreMissingOrNullAreEmpty) {
  const Json body = Json::parse(R"({"text": null})");
  Fields fields(body, {"text", "flag", "number"});
  EXPECT_EQ(fields.text("text"), "");
  EXPECT_FALSE(fields.flag("flag"));
  EXPECT_EQ(fields.integer("number", 0, 1), std::nullopt);
  EXPECT_FALSE(fields.fault());
}

TEST(FieldsTest, ThatAreRequiredMustBeThere) {
  const Json body = Json::object();
  Fields fields(body, {"text"});
  fields.text("text", true);
  EXPECT_EQ(fields.fault(), "\"text\" must be a text");
}

TEST(FieldsTest, OfAnotherTypeAreComplainedAbout) {
  const Json body = Json::parse(R"({"text": 1, "flag": "true", "number": 1.5})");
  for (const char* name : {"text", "flag", "number"}) {
    Fields fields(body, {"text", "flag", "number"});
    fields.text(name == std::string("text") ? "text" : "none");
    fields.flag(name == std::string("flag") ? "flag" : "none");
    fields.integer(name == std::string("number") ? "number" : "none", 0, 9);
    EXPECT_TRUE(fields.fault()) << name;
  }
}

TEST(FieldsTest, BeyondTheirBoundsAreComplainedAbout) {
  for (const char* number : {"-1", "10", "18446744073709551615", "99999999999999999999"}) {
    const Json body = Json::parse(std::string(R"({"number": )") + number + "}");
    Fields fields(body, {"number"});
    EXPECT_EQ(fields.integer("number", 0, 9), std::nullopt) << number;
    EXPECT_EQ(fields.fault(), "\"number\" must be a whole number from 0 to 9") << number;
  }
}

TEST(FieldsTest, ThatAreUnknownAreComplainedAboutWithoutTheirControlCharacters) {
  const Json body = Json::parse(R"({"a\u001b": 1})");
  EXPECT_EQ(Fields(body, {"b"}).fault(), "there is no member \"a?\" here");
}

}  // namespace
}  // namespace zel::gateway
