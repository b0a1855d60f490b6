#include <gmock/gmock.h>

#include <sstream>

#include "simulator/event_lines.h"
#include "simulator/faults.h"
#include "tests/simulator/temporary_folder.h"

namespace zel::simulator {
namespace {

class ManualTest : public testing::TestWithParam<const char*> {};

TEST_P(ManualTest, HoldsEveryLineOfTheHelp) {
  const Bytes content = contentOf(SIMULATOR_MANUAL).value_or(Bytes());
  const std::string manual(content.begin(), content.end());
  std::istringstream help(GetParam());
  std::string line;
  std::getline(help, line);  // the heading
  int lines = 0;
  for (; std::getline(help, line); ++lines) EXPECT_THAT(manual, testing::HasSubstr(line + "\n"));
  EXPECT_GT(lines, 10);
}

INSTANTIATE_TEST_SUITE_P(Help, ManualTest, testing::Values(kFaultHelp, kEventHelp));

}  // namespace
}  // namespace zel::simulator
