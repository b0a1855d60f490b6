#include <gmock/gmock.h>

#include <csignal>

#include "tests/zelcam/zelcam_test.h"

namespace zel::test {
namespace {

using testing::HasSubstr;

class MonitorTest : public ZelcamTest {
 protected:
  // Monitors the preview of a camera with these faults for some seconds and returns the summary.
  Json summaryWith(Arguments faults, const std::string& seconds = "3") {
    Arguments arguments;
    for (const auto& fault : faults) arguments.insert(arguments.end(), {"--fault", fault});
    const auto camera = simulator(arguments);
    const auto host = zelcam({"--json", "--timeout", "60", "monitor", "--preview", "3", "--seconds", seconds});
    EXPECT_EQ(host->wait(), 0) << host->errors();
    statuses.clear();
    for (const Json& line : lines(*host)) {
      if (line["event"] == "status") statuses.push_back(line["status"]);
    }
    return lines(*host).back();
  }

  std::vector<int> statuses;
};

TEST_F(MonitorTest, ShowsTheLinkComingUpAndTheClock) {
  const Json summary = summaryWith({});
  EXPECT_EQ(summary["event"], "summary");
  EXPECT_EQ(summary["status"], 2);
  EXPECT_GT(summary["frames"]["video"]["frames"], 5);
  EXPECT_GT(summary["frames"]["timestamp"]["frames"], 10);
  EXPECT_GT(summary["frames"]["audio"]["frames"], 5);
  EXPECT_GT(summary["clockOffset"], 700'000'000'000);
  EXPECT_GE(summary["roundTrip"], 0);
  EXPECT_EQ(summary["positionsLost"], 0);
  EXPECT_GT(summary["bytesDiscarded"], 0);  // the stream began in the middle of a frame
  EXPECT_EQ(statuses, (std::vector<int>{1, 2}));
}

TEST_F(MonitorTest, GetsTimestampsAloneFromACameraThatWasAskedForNothing) {
  const auto camera = simulator();
  const auto host = zelcam({"--json", "--timeout", "60", "monitor", "--seconds", "2"});
  EXPECT_EQ(host->wait(), 0) << host->errors();
  const Json frames = lines(*host).back()["frames"];
  EXPECT_GE(frames["timestamp"]["frames"], 2);
  EXPECT_FALSE(frames.contains("video"));
  EXPECT_FALSE(frames.contains("audio"));
}

TEST_F(MonitorTest, FindsAMarkerThatComesUnasked) {
  const Json summary = summaryWith({"early-marker"});
  EXPECT_EQ(summary["markersFound"], 1);
  EXPECT_GT(summary["frames"]["video"]["frames"], 0);
}

TEST_F(MonitorTest, FindsTheMarkerBehindGarbage) { EXPECT_EQ(summaryWith({"garbage=5000"})["markersFound"], 1); }

TEST_F(MonitorTest, PutsSingleBytesTogether) {
  const Json summary = summaryWith({"one-byte-writes"});
  EXPECT_FALSE(summary["frames"].empty());  // how many depends on the machine
  EXPECT_EQ(summary["positionsLost"], 0);
}

TEST_F(MonitorTest, PutsSplitFramesTogether) {
  const Json summary = summaryWith({"split", "garbage"});
  EXPECT_GT(summary["frames"]["video"]["frames"], 0);
  EXPECT_EQ(summary["positionsLost"], 0);
}

TEST_F(MonitorTest, CallsASilenceOfThreeAndAHalfSecondsByItsName) {
  summaryWith({"stall=4.5/2.5"}, "8");
  EXPECT_THAT(statuses, testing::IsSupersetOf({1, 2, 3}));
  const auto silent = std::find(statuses.begin(), statuses.end(), 3);
  EXPECT_NE(std::find(silent, statuses.end(), 2), statuses.end());
}

TEST_F(MonitorTest, DropsUnknownTypesAndCountsThem) {
  const Json summary = summaryWith({"unknown-types"});
  EXPECT_GT(summary["dropped"]["unknownType"], 20);
  EXPECT_EQ(summary["status"], 2);
}

TEST_F(MonitorTest, ReopensAfterALengthOfZero) {
  const Json summary = summaryWith({"length-zero"}, "5");
  EXPECT_EQ(summary["positionsLost"], 1);
  EXPECT_EQ(summary["markersFound"], 2);
  EXPECT_EQ(summary["status"], 2);
}

TEST_F(MonitorTest, ReopensAfterALengthOfFourGiB) {
  const Json summary = summaryWith({"length-4gib"}, "5");
  EXPECT_EQ(summary["positionsLost"], 1);
  EXPECT_EQ(summary["markersFound"], 2);
}

TEST_F(MonitorTest, ComesBackWhenTheCameraIsPluggedAgain) {
  const Json summary = summaryWith({"disconnect=600000"}, "7");
  EXPECT_THAT(statuses, testing::Contains(0));
  EXPECT_GE(summary["markersFound"], 2);
}

TEST_F(MonitorTest, SurvivesAStormOfPlugging) {
  const Json summary = summaryWith({"storm=30"}, "5");
  EXPECT_EQ(summary["status"], 2);
}

TEST_F(MonitorTest, RepeatsASlowClockExchangeTenTimesAndNoMore) {
  const Json summary = summaryWith({"slow-sync=30"}, "3");
  EXPECT_EQ(summary["resendsLeft"], 0);
  EXPECT_GE(summary["roundTrip"], 30);
}

TEST_F(MonitorTest, KeepsGoingWithoutAnAnswerToTheClock) {
  const Json summary = summaryWith({"no-reply=0x4049", "duplicate-reply", "short-reply"});
  EXPECT_EQ(summary["clockOffset"], 0);
  EXPECT_TRUE(summary["roundTrip"].is_null());
  EXPECT_EQ(summary["status"], 2);
}

// The time stamps of an old camera set no time, but are signs of life: with nothing else for four seconds the link
// stays up.
TEST_F(MonitorTest, BelowFirmware190KeepsTheLinkUpByTimestampsAndMeasuresNoClock) {
  const auto camera = simulator({"--firmware", "189"});
  const auto host = zelcam({"--json", "--timeout", "60", "monitor", "--seconds", "4"});
  EXPECT_EQ(host->wait(), 0);
  const Json summary = lines(*host).back();
  EXPECT_EQ(summary["clockOffset"], 0);
  EXPECT_EQ(summary["status"], 2);
  EXPECT_GE(summary["dropped"]["timestampOldFirmware"], 4);
}

TEST_F(MonitorTest, EndsWithThreeWhenNoCameraComes) {
  const auto host = zelcam({"--timeout", "1", "monitor"});
  EXPECT_EQ(host->wait(), 3);
  EXPECT_THAT(host->errors(), HasSubstr("no camera was attached within 1 s"));
}

TEST_F(MonitorTest, EndsWithThreeWhenTheCameraNeverSendsItsMarker) {
  const auto camera = simulator({"--fault", "no-reply=0x402E"});
  const auto host = zelcam({"--timeout", "2", "monitor"});
  EXPECT_EQ(host->wait(), 3);
  EXPECT_THAT(host->errors(), HasSubstr("sent no frame within 2 s"));
}

TEST_F(MonitorTest, EndsWithThreeForAnUnknownCamera) {
  const auto camera = simulator({"--serial", "ONE"});
  const auto host = zelcam({"--timeout", "1", "--camera", "TWO", "monitor"});
  EXPECT_EQ(host->wait(), 3);
  EXPECT_THAT(host->errors(), HasSubstr("ONE"));
}

TEST_F(MonitorTest, StopsCleanlyOnAnInterrupt) {
  const auto camera = simulator();
  const auto host = zelcam({"monitor"});
  EXPECT_TRUE(host->waitForOutput("status 2"));
  host->signal(SIGINT);
  EXPECT_EQ(host->wait(), 0);
  EXPECT_THAT(host->output(), HasSubstr("clock offset"));
}

TEST_F(MonitorTest, ReportsACameraThatWasKilledAndOneThatTakesItsPlace) {
  const auto host = zelcam({"monitor", "--seconds", "60"});
  {
    const auto camera = simulator({"--serial", "ONE"});
    EXPECT_TRUE(host->waitForOutput("status 2"));
    camera->signal(SIGKILL);
    EXPECT_EQ(camera->wait(), 128 + SIGKILL);
  }
  EXPECT_TRUE(host->waitForOutput("status 0"));  // the end of its stream, though its file is still there
  const auto again = simulator({"--serial", "ONE"});
  EXPECT_TRUE(host->waitForOutput("status 2", "status 0"));
  host->signal(SIGINT);
  EXPECT_EQ(host->wait(), 0);
}

}  // namespace
}  // namespace zel::test
