#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <regex>

#include "tests/zelcam/zelcam_test.h"

namespace zel::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

class DiagnosticsTest : public ZelcamTest {
 protected:
  std::string log() const { return folder.path() + "/zelcam.log"; }

  // The lines of the log, each without its time and process.
  std::vector<std::string> notes() const {
    const std::regex form("\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d:\\d{3} \\[\\d+\\] (.*)");
    std::vector<std::string> texts;
    std::ifstream file(log());
    for (std::string line; std::getline(file, line);) {
      std::smatch parts;
      EXPECT_TRUE(std::regex_match(line, parts, form)) << line;
      texts.push_back(parts.size() > 1 ? parts[1].str() : line);
    }
    return texts;
  }
};

TEST_F(DiagnosticsTest, TellWhatWasAskedHowTheLinkChangedAndHowItEnded) {
  const auto camera = simulator();
  EXPECT_EQ(zelcam({"--log", log(), "--timeout", "60", "call", "msgReqSetMute", "1"})->wait(), 0);
  EXPECT_THAT(notes(),
              ElementsAre("zelcam --accessories " + bus() + " --log " + log() + " --timeout 60 call msgReqSetMute 1",
                          "status 1 (session open)", "status 2 (frames arriving)", "zelcam: msgReqSetMute: done",
                          "ended with status 0"));
}

TEST_F(DiagnosticsTest, TellWhatTheUserIsToldOfAFault) {
  const auto host = zelcam({"info", "--timeout", "0.1", "--log", log()});
  EXPECT_EQ(host->wait(), 3);
  const std::string told =
      "zelcam: no camera was attached within 0.1 s; looked in " + bus() + ", where zelcam-sim would attach one";
  EXPECT_EQ(host->errors(), told + "\n");
  EXPECT_THAT(notes(), ElementsAre("zelcam --accessories " + bus() + " info --timeout 0.1 --log " + log(), told,
                                   "ended with status 3"));
}

TEST_F(DiagnosticsTest, TellOfAccessoriesThatWereSkipped) {
  std::filesystem::create_directory(bus());
  ::chmod(bus().c_str(), 0700);
  std::ofstream(bus() + "/broken.json") << "{";
  EXPECT_EQ(zelcam({"--log", log(), "devices"})->wait(), 0);
  EXPECT_THAT(notes(), Contains(HasSubstr("broken.json skipped")));
}

TEST_F(DiagnosticsTest, GoBehindWhatTheFileHolds) {
  std::ofstream(log()) << "2024-03-02 09:05:03:007 [1] before\n";
  EXPECT_EQ(zelcam({"--log", log(), "offset", "2_1"})->wait(), 0);
  EXPECT_THAT(notes(), ElementsAre("before", "zelcam --accessories " + bus() + " --log " + log() + " offset 2_1",
                                   "ended with status 0"));
}

TEST_F(DiagnosticsTest, GoIntoAFileThatMayBeWrittenAndNotRead) {
  if (::geteuid() == 0) GTEST_SKIP() << "root may read every file";
  std::ofstream(log()) << "";
  ::chmod(log().c_str(), 0200);
  EXPECT_EQ(zelcam({"--log", log(), "offset", "2_1"})->wait(), 0);
  ::chmod(log().c_str(), 0600);
  EXPECT_THAT(notes(), Contains("ended with status 0"));
}

TEST_F(DiagnosticsTest, ShowArgumentsAsAShellTakesThemAndObeyNoControlCharacters) {
  EXPECT_EQ(zelcam({"--log", log(), "offset", "it's\n2 \x1b[2J"})->wait(), 0);
  EXPECT_THAT(notes()[0], HasSubstr("offset 'it'\\''s?2 ?[2J'"));
}

TEST_F(DiagnosticsTest, AreWrongUsageWhereTheFileCannotBeWritten) {
  for (const std::string& path : {folder.path() + "/missing/zelcam.log", folder.path()}) {
    const auto host = zelcam({"--log", path, "offset", "2_1"});
    EXPECT_EQ(host->wait(), 2);
    EXPECT_THAT(host->errors(), HasSubstr("the log cannot be kept in " + path));
    EXPECT_EQ(host->output(), "");
  }
}

}  // namespace
}  // namespace zel::test
