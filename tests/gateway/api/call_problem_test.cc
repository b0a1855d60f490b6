#include "gateway/api/call_problem.h"

#include <gtest/gtest.h>

namespace zel::gateway {
namespace {

using Reason = CameraError::Reason;

nlohmann::json bodyOfProblem(const Response& response) {
  return nlohmann::json::parse(std::get<std::string>(response.content));
}

TEST(CallProblemTest, HasAStatusForEachReason) {
  const auto status = [](Reason reason, std::string domain = {}, int code = 0) {
    return cameraProblem("x", CameraError{reason, "words", std::move(domain), code}, 1).status;
  };
  EXPECT_EQ(status(Reason::refused, "D", 101), 502);
  EXPECT_EQ(status(Reason::oldFirmware, "D", 120), 502);
  EXPECT_EQ(status(Reason::timeLimit), 504);
  for (const auto reason :
       {Reason::noCamera, Reason::inUse, Reason::silent, Reason::lost, Reason::closed, Reason::cancelled})
    EXPECT_EQ(status(reason), 503);
  EXPECT_EQ(status(Reason::invalid), 422);
  EXPECT_EQ(status(Reason::platform), 500);
}

TEST(CallProblemTest, HasTheCamerasDomainAndCode) {
  const auto body = bodyOfProblem(cameraProblem("x", ZELError{"D", 101, {}}));
  EXPECT_EQ(body["domain"], "D");
  EXPECT_EQ(body["code"], 101);
  EXPECT_EQ(body["status"], 502);
  EXPECT_EQ(body["title"], "Bad Gateway");
}

TEST(CallProblemTest, OfCode100IsTheLossOfTheCamera) {
  EXPECT_EQ(cameraProblem("x", ZELError{"D", 100, {}}).status, 503);
}

TEST(CallProblemTest, HasNoCodeWhereTheCameraGaveNone) {
  EXPECT_FALSE(bodyOfProblem(cameraProblem("x", CameraError{Reason::timeLimit, ""}, 1)).contains("code"));
}

}  // namespace
}  // namespace zel::gateway
