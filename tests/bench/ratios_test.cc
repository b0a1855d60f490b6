#include "bench/ratios.h"

#include <gtest/gtest.h>

#include <vector>

namespace zel::bench {
namespace {

// A command line as main() gets it.
struct CommandLine {
  explicit CommandLine(std::vector<std::string> all) : words(std::move(all)) {
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
  }
  int argc() const { return static_cast<int>(words.size()); }

  std::vector<std::string> words;
  std::vector<char*> argv;
};

TEST(RatiosTest, HelpIsAnsweredWhereverItStandsAndNothingIsMeasured) {
  for (const char* word : {"--help", "-h"}) {
    CommandLine first({"live_bench", word}), last({"live_bench", "5", word});
    EXPECT_EXIT(answerHelp(first.argc(), first.argv.data(), "usage"), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(answerHelp(last.argc(), last.argv.data(), "usage"), testing::ExitedWithCode(0), "");
  }
}

TEST(RatiosTest, OtherwiseItGoesOn) {
  CommandLine rounds({"live_bench", "5"}), others({"live_bench", "--benchmark_filter=x"}), none({"live_bench"});
  for (CommandLine* line : {&rounds, &others, &none}) answerHelp(line->argc(), line->argv.data(), "usage");
  EXPECT_EQ(roundsIn(rounds.argc(), rounds.argv.data(), 3), 5);
  EXPECT_EQ(roundsIn(others.argc(), others.argv.data(), 3), 3);
  EXPECT_EQ(roundsIn(none.argc(), none.argv.data(), 3), 3);
}

}  // namespace
}  // namespace zel::bench
