#include "gateway/metrics/gateway_metrics.h"

#include <gmock/gmock.h>
#include <sys/wait.h>

#include <ctime>

#include "tests/platform/linux/temporary_folder.h"

namespace zel::gateway {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

// A camera that has something of everything.
CameraMetrics busyCamera(const std::string& serialNumber) {
  CameraMetrics camera;
  camera.serialNumber = serialNumber;
  camera.status = CameraStatus::streaming;
  camera.statistics.clockOffset = -1'500;
  camera.statistics.link.bytesReceived = 1'000'000;
  camera.statistics.link.roundTrip = 7;
  camera.statistics.link.dropped.shortMessage = 3;
  camera.statistics.stream.emplace();
  camera.statistics.stream->pictures = 42;
  camera.feed = {1, 2, 42, 10, 5'000, 6};
  OutputStatus output{4, "rtmp://server", std::nullopt, {}};
  output.report.state = OutputState::writing;
  output.report.pictures = 40;
  output.report.retries = 2;
  output.report.medianLatency = 12;
  camera.outputs = {output};
  return camera;
}

std::string textOf(const std::vector<CameraMetrics>& cameras) { return metricsText({1.5, 1'000, 4'096, 9}, cameras); }

TEST(GatewayMetricsTest, EachCameraHasItsSamplesInBaseUnits) {
  const std::string text = textOf({busyCamera("E1A0001"), busyCamera("E1A0002")});
  for (const char* line :
       {"zelcam_camera_status{camera=\"E1A0001\",status=\"streaming\"} 1\n",
        "zelcam_camera_status{camera=\"E1A0001\",status=\"absent\"} 0\n",
        "zelcam_link_received_bytes_total{camera=\"E1A0002\"} 1000000\n",
        "zelcam_link_round_trip_seconds{camera=\"E1A0001\"} 0.007\n",
        "zelcam_clock_offset_seconds{camera=\"E1A0001\"} -1.5\n",
        "zelcam_link_dropped_frames_total{camera=\"E1A0001\",cause=\"short_message\"} 3\n",
        "zelcam_stream_pictures_total{camera=\"E1A0001\"} 42\n", "zelcam_viewers{camera=\"E1A0001\",form=\"mp4\"} 1\n",
        "zelcam_viewers{camera=\"E1A0001\",form=\"units\"} 2\n",
        "zelcam_viewer_skipped_pictures_total{camera=\"E1A0001\"} 6\n",
        "zelcam_output_info{camera=\"E1A0001\",output=\"4\",address=\"rtmp://server\",state=\"writing\"} 1\n",
        "zelcam_output_retries_total{camera=\"E1A0001\",output=\"4\"} 2\n",
        "zelcam_output_median_latency_seconds{camera=\"E1A0001\",output=\"4\"} 0.012\n",
        "process_cpu_seconds_total 1.5\n", "process_resident_memory_bytes 4096\n"})
    EXPECT_THAT(text, HasSubstr(line));
}

TEST(GatewayMetricsTest, WhatIsNotKnownHasNoSample) {
  CameraMetrics idle;
  idle.serialNumber = "E1A0001";
  idle.statistics.link.roundTrip = -1;
  const std::string text = textOf({idle});
  EXPECT_THAT(text, Not(HasSubstr("zelcam_link_round_trip_seconds")));
  EXPECT_THAT(text, Not(HasSubstr("zelcam_stream_pictures_total")));
  EXPECT_THAT(text, Not(HasSubstr("zelcam_output_")));
  EXPECT_THAT(text, HasSubstr("zelcam_viewers{camera=\"E1A0001\",form=\"mp4\"} 0\n"));
}

TEST(GatewayMetricsTest, ThisProcessHasUsedSomething) {
  const ProcessMetrics process = processMetrics();
  EXPECT_GT(process.residentMemory, 1'000'000U);
  EXPECT_GE(process.openDescriptors, 3U);
  const auto now = static_cast<double>(std::time(nullptr));
  EXPECT_LE(process.start, now + 2);
  EXPECT_GT(process.start, now - 86'400);
}

// What promtool says of a text; its status, 0 where it has nothing to say.
int checkedByPromtool(const std::string& text, std::string& complaint) {
  const test::TemporaryFolder folder;
  folder.write("metrics", text);
  const int status =
      std::system(("promtool check metrics <" + folder.file("metrics") + " >" + folder.file("said") + " 2>&1").c_str());
  std::ifstream said(folder.file("said"));
  complaint.assign(std::istreambuf_iterator<char>(said), {});
  return WEXITSTATUS(status);
}

bool hasPromtool() { return std::system("promtool --version >/dev/null 2>&1") == 0; }

TEST(GatewayMetricsTest, PromtoolReadsThemAndFindsNothingToImprove) {
  if (!hasPromtool()) GTEST_SKIP() << "needs promtool, of Debian's package prometheus";
  std::string complaint;
  EXPECT_EQ(checkedByPromtool(textOf({busyCamera("E1A0001"), busyCamera("a\"b\\c\nd\xFF")}), complaint), 0)
      << complaint;
  EXPECT_EQ(complaint, "");
}

TEST(GatewayMetricsTest, PromtoolWouldFindAMistake) {
  if (!hasPromtool()) GTEST_SKIP() << "needs promtool, of Debian's package prometheus";
  std::string complaint;
  EXPECT_NE(checkedByPromtool("# TYPE zelcam_bytes counter\nzelcam_bytes{camera=\"a\"} 1\n", complaint), 0);
  EXPECT_THAT(complaint, HasSubstr("_total"));
}

}  // namespace
}  // namespace zel::gateway
