#include <gmock/gmock.h>

#include <csignal>
#include <fstream>

#include "tests/zelcam/zelcam_test.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// What a command that fails tells scripts on standard output, where --json asks for it.
class FailureTest : public ZelcamTest {
 protected:
  std::vector<Json> run(Arguments arguments, int status) const {
    arguments.insert(arguments.begin(), "--json");
    const auto host = zelcam(arguments);
    EXPECT_EQ(host->wait(), status) << host->errors();
    return lines(*host);
  }
  static Json failure(int code, const std::string& domain, const std::string& message) {
    return {{"error", {{"code", code}, {"domain", domain}, {"message", message}}}};
  }
  static Json ownFailure(int status, const std::string& message) { return failure(status, "zelcam", message); }
  static Json camerasFailure(int code, const std::string& message) {
    return failure(code, "NSOSStatusErrorDomain", message);
  }
};

TEST_F(FailureTest, TellsThatNoCameraIsThere) {
  EXPECT_THAT(run({"--timeout", "0.1", "info"}, 3),
              ElementsAre(ownFailure(3, "no camera was attached within 0.1 s; looked in " + bus() +
                                            ", where zelcam-sim would attach one")));
}

TEST_F(FailureTest, TellsOfABusThatCannotBeUsed) {
  std::ofstream(bus()) << "no folder";
  EXPECT_THAT(run({"devices"}, 3), ElementsAre(ownFailure(3, "accessory folder " + bus() +
                                                                 " is not a folder; choose another one or remove it")));
}

TEST_F(FailureTest, TellsWrongUsage) {
  EXPECT_THAT(run({"photos"}, 2), ElementsAre(ownFailure(2, "there is no command \"photos\"")));
  EXPECT_THAT(
      run({"offset"}, 2),
      ElementsAre(ownFailure(2, "offset: give either an offset's text or --record and a record in hexadecimal")));
  EXPECT_THAT(run({"--log", folder.path(), "offset", "2_1"}, 2),
              ElementsAre(ownFailure(2, "--log: the log cannot be kept in " + folder.path() + ": it is no file")));
}

TEST_F(FailureTest, TellsTheCamerasOwnCode) {
  const auto camera = simulator();
  EXPECT_THAT(run({"record", "stop"}, 1),
              ElementsAre(camerasFailure(101, "record stop: the camera refused (NSOSStatusErrorDomain 101)")));
}

TEST_F(FailureTest, TellsThatTheCameraWasLost) {
  const auto camera = simulator({"--fault", "no-reply=0x4025"});
  const auto host = zelcam({"--json", "--verbose", "--timeout", "60", "call", "msgReqGetUUIDWithRebackBlock"});
  ASSERT_TRUE(host->waitForErrors("the request is on its way"));
  camera->signal(SIGTERM);
  EXPECT_EQ(host->wait(), 3);
  ASSERT_FALSE(lines(*host).empty());
  EXPECT_EQ(lines(*host).front(), camerasFailure(100, "msgReqGetUUIDWithRebackBlock: the camera was lost"));
}

TEST_F(FailureTest, TellsAnInterruption) {
  const auto camera = simulator({"--fault", "no-reply=0x4025"});
  const auto host = zelcam({"--json", "--verbose", "--timeout", "60", "call", "msgReqGetUUIDWithRebackBlock"});
  ASSERT_TRUE(host->waitForErrors("the request is on its way"));
  host->signal(SIGINT);
  EXPECT_EQ(host->wait(), 130);
  EXPECT_THAT(lines(*host), ElementsAre(ownFailure(130, "interrupted before it was done")));
}

TEST_F(FailureTest, StandsInFrontOfTheResultOfACall) {
  const auto camera = simulator();
  const Json refused = {{"domain", "NSOSStatusErrorDomain"}, {"code", 101}};
  EXPECT_THAT(
      run({"call", "msgCmdStopRecordWithRebackBlock"}, 1),
      ElementsAre(
          camerasFailure(101, "msgCmdStopRecordWithRebackBlock: the camera refused (NSOSStatusErrorDomain 101)"),
          Json({{"operation", "msgCmdStopRecordWithRebackBlock"}, {"error", refused}, {"result", Json::object()}})));
}

TEST_F(FailureTest, StandsInTheTableOfInfo) {
  const auto camera = simulator({"--fault", "refuse=0x4025"});
  const auto told = run({"--timeout", "30", "info"}, 1);
  ASSERT_EQ(told.size(), 1u);
  EXPECT_EQ(told[0]["uuid"], nullptr);
  EXPECT_EQ(told[0]["error"], camerasFailure(101, "uuid: the camera refused (NSOSStatusErrorDomain 101)")["error"]);
}

TEST_F(FailureTest, TellsTheFirstOutputThatFailed) {
  const auto camera = simulator();
  const auto told = run({"--timeout", "30", "live", "-o", "/nowhere/a.mp4", "--no-stitch"}, 1);
  ASSERT_FALSE(told.empty());
  EXPECT_EQ(told.back(), ownFailure(1, "live: cannot write /nowhere/a.mp4: No such file or directory"));
}

TEST_F(FailureTest, LeavesStandardOutputToTheStream) {
  const auto host = zelcam({"--json", "--timeout", "0.1", "live", "-o", "-"});
  EXPECT_EQ(host->wait(), 3);
  EXPECT_THAT(host->output(), IsEmpty());
  EXPECT_THAT(host->errors(), HasSubstr(R"({"error":{"code":3,"domain":"zelcam","message":"no camera was)"));
}

TEST_F(FailureTest, IsNotToldOfWhatWentWell) {
  EXPECT_THAT(run({"devices"}, 0), IsEmpty());
  EXPECT_EQ(run({"offset", "nonsense"}, 0).size(), 1u);  // which is told in words
}

}  // namespace
}  // namespace zel::test
