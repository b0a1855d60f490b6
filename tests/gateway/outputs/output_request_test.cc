#include "gateway/outputs/output_request.h"

#include <gmock/gmock.h>

namespace zel::gateway {
namespace {

using ::testing::HasSubstr;

Result<OutputRequest> read(const char* text) { return outputRequestIn(nlohmann::json::parse(text)); }

TEST(OutputRequestTest, AnAddressAloneAsksForTheCamerasOwnPictures) {
  for (const char* text : {R"({"address": "a.mp4"})", R"({"address": "a.mp4", "stitched": null})"}) {
    const auto request = read(text);
    ASSERT_TRUE(request) << text;
    EXPECT_EQ(*request, (OutputRequest{"a.mp4", std::nullopt}));
  }
}

TEST(OutputRequestTest, WhatIsLeftOutOfAStitchedOneHasItsDefault) {
  EXPECT_EQ(read(R"({"address": "a.ts", "stitched": {}})")->stitched, (StitchedSize{1920, 960, 8'000'000}));
  EXPECT_EQ(read(R"({"address": "a.ts", "stitched": {"width": 480, "height": 240, "bitrate": 500000}})")->stitched,
            (StitchedSize{480, 240, 500'000}));
}

TEST(OutputRequestTest, SizesAreEvenAndWithinTheirLimits) {
  const auto withWidth = [](const std::string& width) {
    return read((R"({"address": "a.ts", "stitched": {"width": )" + width + "}}").c_str()).hasValue();
  };
  EXPECT_FALSE(withWidth("14"));
  EXPECT_TRUE(withWidth("16"));
  EXPECT_FALSE(withWidth("17"));
  EXPECT_TRUE(withWidth("16384"));
  EXPECT_FALSE(withWidth("16386"));
  EXPECT_FALSE(withWidth("-480"));
  EXPECT_FALSE(withWidth("480.5"));
  EXPECT_FALSE(withWidth("\"480\""));
  EXPECT_FALSE(withWidth("18446744073709551615"));
}

TEST(OutputRequestTest, BitratesHaveLimits) {
  const auto withBitrate = [](const std::string& bitrate) {
    return read((R"({"address": "a.ts", "stitched": {"bitrate": )" + bitrate + "}}").c_str()).hasValue();
  };
  EXPECT_FALSE(withBitrate("9999"));
  EXPECT_TRUE(withBitrate("10000"));
  EXPECT_TRUE(withBitrate("200000000"));
  EXPECT_FALSE(withBitrate("200000001"));
}

TEST(OutputRequestTest, AWrongMemberIsNamed) {
  EXPECT_THAT(read("[]").error().message, HasSubstr("address"));
  EXPECT_THAT(read(R"({"address": 5})").error().message, HasSubstr("\"address\" is a text"));
  EXPECT_THAT(read(R"({"address": "a.ts", "size": 1})").error().message, HasSubstr("\"size\""));
  EXPECT_THAT(read(R"({"address": "a.ts", "stitched": {"hight": 1}})").error().message, HasSubstr("\"hight\""));
  EXPECT_THAT(read(R"({"address": "a.ts", "stitched": true})").error().message, HasSubstr("\"stitched\""));
  EXPECT_EQ(read("{}").error().reason, CameraError::Reason::invalid);
}

TEST(OutputRequestTest, JsonOfAnOutputHasItsStateRetriesAndStatistics) {
  OutputStatus status{3, "rtmp://server", StitchedSize{480, 240, 500'000}, {}};
  status.report.state = OutputState::retrying;
  status.report.retries = 2;
  status.report.pictures = 7;
  status.report.medianLatency = 12;
  status.report.fault = "gone";
  EXPECT_EQ(jsonOf(status).dump(),
            R"({"id":3,"address":"rtmp://server","stitched":{"width":480,"height":240,"bitrate":500000},)"
            R"("state":"retrying","retries":2,"statistics":{"pictures":7,"audioFrames":0,"bytes":0,"dropped":0,)"
            R"("connections":0,"latency":{"median":12,"p99":null},"fault":"gone"}})");
}

TEST(OutputRequestTest, EachStateHasItsWord) {
  EXPECT_EQ(wordFor(OutputState::waiting), "waiting");
  EXPECT_EQ(wordFor(OutputState::connecting), "connecting");
  EXPECT_EQ(wordFor(OutputState::writing), "writing");
  EXPECT_EQ(wordFor(OutputState::finished), "finished");
  EXPECT_EQ(wordFor(OutputState::failed), "failed");
}

}  // namespace
}  // namespace zel::gateway
