#include <gmock/gmock.h>

#include <sstream>

#include "simulator/event_lines.h"
#include "simulator/faults.h"
#include "tests/simulator/temporary_folder.h"

namespace zel::simulator {
namespace {

void expectInManual(const char* text) {
  const Bytes content = contentOf(SIMULATOR_MANUAL).value_or(Bytes());
  const std::string manual(content.begin(), content.end());
  std::istringstream help(text);
  std::string line;
  std::getline(help, line);  // the heading
  int lines = 0;
  for (; std::getline(help, line); ++lines) EXPECT_THAT(manual, testing::HasSubstr(line + "\n"));
  EXPECT_GT(lines, 10);
}

TEST(ManualTest, HoldsEveryFault) { expectInManual(kFaultHelp); }

TEST(ManualTest, HoldsEveryEvent) { expectInManual(kEventHelp); }

}  // namespace
}  // namespace zel::simulator
