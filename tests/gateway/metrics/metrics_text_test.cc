#include "gateway/metrics/metrics_text.h"

#include <gtest/gtest.h>

namespace zel::gateway {
namespace {

using Type = MetricsText::Type;

TEST(MetricsTextTest, AFamilyHasHelpTypeAndItsSamples) {
  MetricsText text;
  text.family("zelcam_bytes_total", Type::counter, "Bytes.");
  text.sample(12, {{"camera", "E1"}, {"form", "mp4"}});
  text.sample(0.25);
  EXPECT_EQ(text.take(),
            "# HELP zelcam_bytes_total Bytes.\n# TYPE zelcam_bytes_total counter\n"
            "zelcam_bytes_total{camera=\"E1\",form=\"mp4\"} 12\nzelcam_bytes_total 0.25\n");
}

TEST(MetricsTextTest, AFamilyWithoutSamplesIsLeftOut) {
  MetricsText text;
  text.family("zelcam_a", Type::gauge, "A.");
  text.family("zelcam_b", Type::gauge, "B.");
  text.sample(1);
  EXPECT_EQ(text.take(), "# HELP zelcam_b B.\n# TYPE zelcam_b gauge\nzelcam_b 1\n");
}

TEST(MetricsTextTest, LabelsAreEscapedAndWhatIsNoTextIsReplaced) {
  MetricsText text;
  text.family("zelcam_a", Type::gauge, "A \\ and \"quoted\"\nlines.");
  text.sample(1, {{"camera", "a\"b\\c\nd\xFF\xC3"}});
  EXPECT_EQ(text.take(),
            "# HELP zelcam_a A \\\\ and \"quoted\"\\nlines.\n# TYPE zelcam_a gauge\n"
            "zelcam_a{camera=\"a\\\"b\\\\c\\nd\xEF\xBF\xBD\xEF\xBF\xBD\"} 1\n");
}

TEST(MetricsTextTest, LargeNumbersKeepTheirLastDigit) {
  MetricsText text;
  text.family("zelcam_a_total", Type::counter, "A.");
  text.sample(900'719'925'474'099);
  EXPECT_NE(text.take().find("zelcam_a_total 900719925474099\n"), std::string::npos);
}

}  // namespace
}  // namespace zel::gateway
