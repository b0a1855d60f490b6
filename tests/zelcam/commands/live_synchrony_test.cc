// Sound and pictures of the files that `zelcam live` writes, by the simulated camera's lamp and beep.

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "tests/sanitizers.h"
#include "tests/zelcam/live_test.h"
#include "tests/zelcam/tick_and_beep.h"

namespace zel::test {
namespace {

// Units: milliseconds.
struct SynchronyCase {
  const char* name;
  const char* firmware;
  const char* slices;
  const char* resolution;
  int picturesPerSecond;
  bool stitch;
  double mostApart;  // of sound and picture in the middle, and of each beep from that
};

void PrintTo(const SynchronyCase& given, std::ostream* out) { *out << given.name; }

class LiveSynchronyTest : public LiveTest, public testing::WithParamInterface<SynchronyCase> {
 protected:
  void stream() {
    const SynchronyCase& given = GetParam();
    const auto camera = simulator({"--firmware", given.firmware, "--slices", given.slices});
    Arguments arguments = {"-o", path("a.mp4"), "--resolution", given.resolution, "--duration", "5"};
    if (given.stitch) arguments.insert(arguments.end(), {"--size", "480x240"});
    if (!given.stitch) arguments.emplace_back("--no-stitch");
    const auto host = live(arguments);
    ASSERT_EQ(host->wait(), 0) << host->errors();
  }

  // A frame of sound. The player drops the sound of an older camera until it has counted a picture.
  // Units:  seconds.
  static double mostBetweenBeginnings() {
    const SynchronyCase& given = GetParam();
    const bool waits = !given.stitch && given.firmware == std::string("189");
    return 0.022 + given.mostApart / 1000 + (waits ? 1.0 / given.picturesPerSecond : 0);
  }

  std::vector<double> delays() const {
    const LampPlace lamp = GetParam().stitch ? lampInPanorama() : lampInFisheyes();
    return delaysOf(ticksAndBeepsIn(path("a.mp4"), lamp, GetParam().picturesPerSecond));
  }
};

TEST_P(LiveSynchronyTest, TheBeepIsHeardWhenTheLampIsSeen) {
  ASSERT_NO_FATAL_FAILURE(stream());
  const std::vector<double> all = delays();
  if (all.empty() && kSanitized) GTEST_SKIP() << "too slow here: no beep had its lamp in the file";
  ASSERT_FALSE(all.empty());
  const double median = all[all.size() / 2];
  EXPECT_LE(std::abs(median), GetParam().mostApart);
  EXPECT_GE(all.front(), median - GetParam().mostApart) << testing::PrintToString(all);
  EXPECT_LE(all.back(), median + GetParam().mostApart) << testing::PrintToString(all);
  const ReadBack read = readBack(path("a.mp4"));
  EXPECT_LT(std::abs(read.firstSound - read.firstPicture), mostBetweenBeginnings());
  EXPECT_TRUE(read.ordered);
}

constexpr SynchronyCase kCases[] = {
    {"OneSlice30", "192", "1", "3", 30, true, 5},
    {"OneSlice15", "192", "1", "0", 15, true, 5},
    {"FourSlices30", "192", "4", "3", 30, true, 5},
    {"FourSlices15", "192", "4", "0", 15, true, 5},
    {"PassedOneSlice30", "192", "1", "3", 30, false, 5},
    {"PassedOneSlice15", "192", "1", "0", 15, false, 5},
    {"PassedFourSlices30", "192", "4", "3", 30, false, 5},
    {"PassedFourSlices15", "192", "4", "0", 15, false, 5},
    {"Old30", "189", "1", "3", 30, true, 15},
    {"Old15", "189", "1", "0", 15, true, 15},
    {"PassedOld30", "189", "1", "3", 30, false, 15},
    {"PassedOld15", "189", "1", "0", 15, false, 15},
    {"OldFourSlices15", "189", "4", "0", 15, true, 15},
    {"PassedOldFourSlices15", "189", "4", "0", 15, false, 15},
};

INSTANTIATE_TEST_SUITE_P(Cameras, LiveSynchronyTest, testing::ValuesIn(kCases),
                         [](const auto& given) { return std::string(given.param.name); });

}  // namespace
}  // namespace zel::test
