#include <gmock/gmock.h>

#include <csignal>
#include <fstream>
#include <sstream>

#include "tests/zelcam/live_test.h"

namespace zel::test {
namespace {

using testing::HasSubstr;
using testing::Not;

class InterruptTest : public LiveTest {
 protected:
  // Starts it by way of a shell that prepares something first; $0 is zelcam.
  std::unique_ptr<Process> liveAfter(const std::string& preparation, const std::string& file) const {
    const std::string command =
        preparation + "; exec \"$0\" --accessories \"$1\" --timeout 30 live -o \"$2\" --no-stitch";
    return std::make_unique<Process>("/bin/bash", Arguments{"-c", command, zelcamProgram(), bus(), file},
                                     folder.path());
  }

  std::string contents(const std::string& name) const {
    std::stringstream text;
    text << std::ifstream(path(name), std::ios::binary).rdbuf();
    return text.str();
  }
};

// A second one that comes when the first one has been heard.
TEST_F(InterruptTest, TwoSignalsAtOnceAreOneAndTheFileIsFinished) {
  const auto camera = simulator();
  const auto host = live({"-o", path("a.mp4"), "--no-stitch"});
  ASSERT_TRUE(grows(path("a.mp4"), 100'000)) << host->errors();
  host->signal(SIGTERM);
  ASSERT_TRUE(host->waitUntilHeard(SIGTERM));
  host->signal(SIGTERM);
  EXPECT_EQ(host->wait(), 0) << host->errors();
  EXPECT_THAT(contents("a.mp4"), Not(HasSubstr("moof")));  // no fragments any more
}

TEST_F(InterruptTest, AHangUpFinishesTheFile) {
  const auto camera = simulator();
  const auto host = live({"-o", path("a.mp4"), "--no-stitch"});
  ASSERT_TRUE(grows(path("a.mp4"), 100'000)) << host->errors();
  host->signal(SIGHUP);
  EXPECT_EQ(host->wait(), 0) << host->errors();
  EXPECT_GT(readBack(path("a.mp4")).pictures, 0);
  EXPECT_THAT(contents("a.mp4"), Not(HasSubstr("moof")));
}

TEST_F(InterruptTest, AHangUpThatIsIgnoredStaysIgnored) {
  const auto camera = simulator();
  const auto host = liveAfter("trap '' HUP", path("a.ts"));
  ASSERT_TRUE(grows(path("a.ts"), 10'000)) << host->errors();
  host->signal(SIGHUP);
  ASSERT_TRUE(grows(path("a.ts"), std::filesystem::file_size(path("a.ts")) + 200'000)) << host->errors();
  host->signal(SIGTERM);
  EXPECT_EQ(host->wait(), 0) << host->errors();
}

TEST_F(InterruptTest, AFileThatMayGrowNoLargerIsAFaultOfThatOutput) {
  const auto camera = simulator();
  const auto host = liveAfter("ulimit -f 100", path("a.ts"));  // 100 KiB
  EXPECT_EQ(host->wait(), 1) << host->errors();
  EXPECT_THAT(host->errors(), HasSubstr("live: cannot write " + path("a.ts") + ": File too large"));
}

}  // namespace
}  // namespace zel::test
