#include "gateway/json/failure.h"

#include <gtest/gtest.h>

#include "gateway/json/json_line.h"

namespace zel::gateway {
namespace {

using Reason = CameraError::Reason;

TEST(FailureTest, OfARefusalNamesTheCamerasOwnError) {
  const Failure failure = failureOf("record stop", CameraError{Reason::refused, "no", "D", 101}, 10);
  EXPECT_EQ(failure.kind, Failure::Kind::refused);
  EXPECT_EQ(failure.message, "record stop: the camera refused (D 101)");
  EXPECT_EQ(jsonLine(failureJson(failure)),
            R"json({"code":101,"domain":"D","message":"record stop: the camera refused (D 101)"})json");
}

TEST(FailureTest, OfOldFirmwareSaysSo) {
  EXPECT_EQ(failureOf("x", ZELError{"D", 120, {}}).message, "x: the camera's firmware is too old (D 120)");
}

TEST(FailureTest, OfCode100IsTheLossOfTheCamera) {
  const Failure failure = failureOf("x", ZELError{"D", 100, {}});
  EXPECT_EQ(failure.kind, Failure::Kind::lost);
  EXPECT_EQ(exitStatusOf(failure.kind), 3);
}

TEST(FailureTest, OfATimeLimitSaysHowLongItWas) {
  const Failure failure = failureOf("x", CameraError{Reason::timeLimit, ""}, 2.5);
  EXPECT_EQ(failure.kind, Failure::Kind::noAnswer);
  EXPECT_EQ(failure.message, "x: the camera did not answer within 2.5 s");
  EXPECT_EQ(jsonLine(failureJson(failure)),
            R"({"code":3,"domain":"zelcam","message":"x: the camera did not answer within 2.5 s"})");
}

TEST(FailureTest, OfAWrongCallHasTheStatusOfWrongUsage) {
  EXPECT_EQ(exitStatusOf(failureOf("x", CameraError{Reason::invalid, "no name"}, 1).kind), 2);
}

}  // namespace
}  // namespace zel::gateway
