// Sound and pictures of a host of less than 60 lines, built on the public interface alone, by the simulated camera's
// lamp and beep.

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "tests/sanitizers.h"
#include "tests/zelcam/process.h"
#include "tests/zelcam/tick_and_beep.h"

namespace zel::test {
namespace {

// Units: milliseconds.
struct HostCase {
  const char* name;
  const char* firmware;
  const char* slices;
  const char* resolution;
  int picturesPerSecond;
  bool stitch;
  double mostApart;  // of sound and picture in the middle, and of each beep from that
};

void PrintTo(const HostCase& given, std::ostream* out) { *out << given.name; }

class HostSynchronyTest : public testing::TestWithParam<HostCase> {
 protected:
  HostSynchronyTest() { setenv("ZEL_ACCESSORIES", bus_.c_str(), 1); }

  void record() const {
    const HostCase& given = GetParam();
    Process camera(simulatorProgram(), {"--accessories", bus_, "--firmware", given.firmware, "--slices", given.slices},
                   folder_.path());
    ASSERT_TRUE(camera.waitForOutput("is attached")) << camera.errors();
    std::vector<std::string> arguments = {film_, "5", given.resolution};
    if (given.stitch) arguments.emplace_back("480");
    Process host(EXAMPLES "/record_to_mp4", arguments, folder_.path());
    ASSERT_EQ(host.wait(), 0) << host.errors();
  }

  const TemporaryFolder folder_;
  const std::string bus_ = folder_.path() + "/bus", film_ = folder_.path() + "/film.mp4";
};

TEST_P(HostSynchronyTest, TheBeepIsHeardWhenTheLampIsSeen) {
  ASSERT_NO_FATAL_FAILURE(record());
  const HostCase& given = GetParam();
  const LampPlace lamp = given.stitch ? lampInPanorama() : lampInFisheyes();
  const std::vector<double> all = delaysOf(ticksAndBeepsIn(film_, lamp, given.picturesPerSecond));
  if (all.empty() && kSanitized) GTEST_SKIP() << "too slow here: no beep had its lamp in the file";
  ASSERT_FALSE(all.empty());
  const double median = all[all.size() / 2];
  EXPECT_LE(std::abs(median), given.mostApart);
  EXPECT_GE(all.front(), median - given.mostApart) << testing::PrintToString(all);
  EXPECT_LE(all.back(), median + given.mostApart) << testing::PrintToString(all);
}

constexpr HostCase kCases[] = {
    {"OneSlice30", "192", "1", "3", 30, false, 5},
    {"OneSlice15", "192", "1", "0", 15, false, 5},
    {"FourSlices30", "192", "4", "3", 30, false, 5},
    {"FourSlices15", "192", "4", "0", 15, false, 5},
    {"StitchedOneSlice30", "192", "1", "3", 30, true, 5},
    {"StitchedOneSlice15", "192", "1", "0", 15, true, 5},
    {"StitchedFourSlices30", "192", "4", "3", 30, true, 5},
    {"StitchedFourSlices15", "192", "4", "0", 15, true, 5},
    {"Old30", "189", "1", "3", 30, false, 15},
    {"Old15", "189", "1", "0", 15, false, 15},
    {"StitchedOld30", "189", "1", "3", 30, true, 15},
    {"StitchedOld15", "189", "1", "0", 15, true, 15},
};

INSTANTIATE_TEST_SUITE_P(Cameras, HostSynchronyTest, testing::ValuesIn(kCases),
                         [](const auto& given) { return std::string(given.param.name); });

}  // namespace
}  // namespace zel::test
