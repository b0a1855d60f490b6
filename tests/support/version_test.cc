#include <ZELTarkaSDK/Version.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>

namespace {

// The project's version, as its build file has it.
std::smatch projectVersion(const std::string& text) {
  std::smatch found;
  std::regex_search(text, found, std::regex("project\\(ZELTarkaSDK VERSION (([0-9]+\\.[0-9])\\.[0-9]+) "));
  return found;
}

TEST(Version, IsThatOfTheProject) {
  std::ifstream file(BUILD_FILE);
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  const std::smatch version = projectVersion(text);
  ASSERT_EQ(version.size(), 3u);
  EXPECT_EQ(ZELTarkaSDKVersionString, version[1].str());
  EXPECT_EQ(ZELTarkaSDKVersionNumber, std::strtod(version[2].str().c_str(), nullptr));
}

}  // namespace
