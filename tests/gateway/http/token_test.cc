#include "gateway/http/token.h"

#include <gmock/gmock.h>

#include "tests/platform/linux/temporary_folder.h"

namespace zel::gateway {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

class TokenTest : public testing::Test {
 protected:
  std::optional<std::string> read(const std::string& text) {
    folder.write("token", text);
    return readToken(folder.file("token"), error);
  }

  test::TemporaryFolder folder;
  std::string error;
};

TEST_F(TokenTest, ThatIsMadeHas32HexadecimalDigitsAndIsAnotherEachTime) {
  const auto first = makeToken();
  ASSERT_TRUE(first);
  EXPECT_THAT(*first, MatchesRegex("[0-9a-f]+"));
  EXPECT_EQ(first->size(), 32u);
  EXPECT_NE(first, makeToken());
}

TEST_F(TokenTest, IsTheFilesFirstLine) {
  EXPECT_EQ(read("0123456789-._~aZ \r\nmore\n"), "0123456789-._~aZ");
  EXPECT_EQ(read("0123456789abcdef"), "0123456789abcdef");
}

TEST_F(TokenTest, IsRefusedWhereItIsShortOrNoToken) {
  for (const char* text :
       {"0123456789abcde\n", "0123456789abcde f\n", "0123456789abcde#f\n", "0123456789abcde\xC3\xA9\n"}) {
    EXPECT_EQ(read(text), std::nullopt) << text;
    EXPECT_THAT(error, HasSubstr(folder.file("token")));
  }
}

TEST_F(TokenTest, IsRefusedWhereTheFileIsEmptyOrMissing) {
  EXPECT_EQ(read(""), std::nullopt);
  EXPECT_THAT(error, HasSubstr("it is empty"));
  EXPECT_EQ(readToken(folder.file("none"), error), std::nullopt);
  EXPECT_THAT(error, HasSubstr("No such file"));
}

}  // namespace
}  // namespace zel::gateway
