#include <gmock/gmock.h>

#include "tests/zelcam/zelcam_test.h"

namespace zel::test {
namespace {

using testing::HasSubstr;

class InfoTest : public ZelcamTest {
 protected:
  void ask(Arguments arguments) {
    const auto host = zelcam(arguments);
    EXPECT_EQ(host->wait(), 0) << host->errors();
  }

  Json told(int status = 0) {
    const auto host = zelcam({"--json", "info"});
    EXPECT_EQ(host->wait(), status) << host->errors();
    errors = host->errors();
    return lines(*host).at(0);
  }

  std::string errors;
};

// The camera's own numbers, from its options, from what it was asked for and from what happened to it: a card of 8 GiB
// less a photo of 256 KiB, a video rate of 10 million bytes a second.
TEST_F(InfoTest, TellsWhatTheCameraHolds) {
  const auto camera = simulator({"--name", "Roof", "--serial", "E1A0001", "--firmware", "200"});
  ask({"call", "msgReqSetSerialNumber", "STORED-9"});
  ask({"call", "msgCmdSetVideoBitrate", "0", "80"});
  ask({"call", "msgReqSetPhotoSize", "2"});
  ask({"photo", "-o", folder.path()});
  camera->tell("battery 2 40");
  Json info = told();
  EXPECT_GT(info["clockOffset"], 700'000'000'000);
  info.erase("clockOffset");
  EXPECT_EQ(info, Json({{"name", "Roof"},
                        {"manufacturer", "Example"},
                        {"modelNumber", "E1"},
                        {"serialNumber", "E1A0001"},
                        {"firmwareRevision", "E1_2.0.1_200"},
                        {"hardwareRevision", "1.0"},
                        {"firewareVersion", 200},
                        {"status", 2},
                        {"powerType", 2},
                        {"batteryLevel", 40},
                        {"cardState", 0},
                        {"cardSpaceWhole", 8'589'934'592},
                        {"cardSpaceFree", 8'589'672'448},
                        {"storedSerialNumber", "STORED-9"},
                        {"uuid", "5a454c00-0000-4000-8000-08c0e50c9659"},
                        {"videoTimeRemaining", 858},
                        {"photoShotsRemaining", 32'767}}));
}

TEST_F(InfoTest, TellsAFullCardAndNoClockOfAnOldCamera) {
  const auto camera = simulator({"--firmware", "189"});
  camera->tell("card 2");
  const Json info = told();
  EXPECT_EQ(info["clockOffset"], 0);
  EXPECT_EQ(info["cardState"], 2);
  EXPECT_EQ(info["cardSpaceWhole"], 8'589'934'592);
  EXPECT_EQ(info["cardSpaceFree"], 0);
  EXPECT_EQ(info["videoTimeRemaining"], 0);
  EXPECT_EQ(info["photoShotsRemaining"], 0);
}

// Lengths and flags that the protocol leaves open change nothing of what is read.
TEST_F(InfoTest, ReadsRepliesWithHighFlagsAndTrailingBytes) {
  Arguments faults = {"--fault", "high-flags"};
  for (const char* request : {"0x4001", "0x400E", "0x4042", "0x4043", "0x4049"})
    faults.insert(faults.end(), {"--fault", std::string("trailing-bytes=") + request});
  const auto camera = simulator(faults);
  const Json info = told();
  EXPECT_EQ(info["batteryLevel"], 100);
  EXPECT_EQ(info["cardSpaceFree"], 8'589'934'592);
  EXPECT_EQ(info["storedSerialNumber"], "E1A0001");
  EXPECT_EQ(info["videoTimeRemaining"], 1717);
  EXPECT_EQ(info["photoShotsRemaining"], 2048);
  EXPECT_GT(info["clockOffset"], 700'000'000'000);
}

TEST_F(InfoTest, ShowsTheRestWhereTheCameraRefusesOneQuestion) {
  const auto camera = simulator({"--fault", "refuse=0x4025"});
  const Json info = told(1);
  EXPECT_EQ(info["uuid"], Json());
  EXPECT_TRUE(info["batteryLevel"].is_number());
  EXPECT_THAT(errors, HasSubstr("uuid: the camera refused"));
}

TEST_F(InfoTest, ShowsTheRestWhereTheCameraLeavesOneQuestionUnanswered) {
  const auto camera = simulator({"--fault", "no-reply=0x4043"});
  const auto host = zelcam({"--json", "--timeout", "1.5", "info"});
  EXPECT_EQ(host->wait(), 3);
  const Json info = lines(*host).at(0);
  EXPECT_EQ(info["photoShotsRemaining"], Json());
  EXPECT_TRUE(info["batteryLevel"].is_number());
  EXPECT_THAT(host->errors(), HasSubstr("photoShotsRemaining: the camera did not answer within 1.5 s"));
}

}  // namespace
}  // namespace zel::test
