#include <gmock/gmock.h>

#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "tests/zelcam/zelcam_test.h"

namespace zel::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class CallTest : public ZelcamTest {
 protected:
  // Runs one command against the camera that is there, with --json. Returns its object; null where there is none.
  Json run(Arguments arguments, int status = 0) {
    arguments.insert(arguments.begin(), {"--json", "--timeout", "5"});
    const auto host = zelcam(arguments);
    EXPECT_EQ(host->wait(), status) << host->errors();
    errors = host->errors();
    const auto objects = lines(*host);
    return objects.empty() ? Json() : objects.back();
  }
  Json call(Arguments arguments, int status = 0) {
    arguments.insert(arguments.begin(), "call");
    return run(arguments, status);
  }

  std::string errors;
};

const nlohmann::json kRefused = {{"domain", "NSOSStatusErrorDomain"}, {"code", 101}};

// The labelled operations in a public header's comments, by their C++ names.
std::set<std::string> operationsIn(const std::string& header) {
  std::ifstream file(std::string(SOURCE_FOLDER) + "/include/ZELTarkaSDK/" + header);
  std::set<std::string> names;
  const std::regex declaration(
      R"(^  void ((newM|m)sg\w+|sendFileWithType|\w*[cC]amera(Battery|MediaOffset|AudioBitrate\w*))\()");
  std::smatch found;
  for (std::string line; std::getline(file, line);) {
    if (std::regex_search(line, found, declaration)) names.insert(found[1]);
  }
  return names;
}

TEST_F(CallTest, ListsEveryOperationOfThePublicHeaders) {
  std::set<std::string> expected = operationsIn("ZELCameraUCD.h");
  EXPECT_EQ(expected.size(), 92u);
  expected.merge(operationsIn("ZELCameraManager.h"));
  const auto host = zelcam({"--json", "call", "--list"});
  ASSERT_EQ(host->wait(), 0);
  std::set<std::string> listed;
  for (const Json& line : lines(*host)) listed.insert(line["operation"]);
  EXPECT_EQ(listed, expected);
  EXPECT_EQ(listed.size(), 96u);
}

TEST_F(CallTest, ListsArgumentsOptionsAndResultKeys) {
  const auto host = zelcam({"--json", "call", "--list"});
  ASSERT_EQ(host->wait(), 0);
  EXPECT_THAT(host->output(),
              HasSubstr(R"({"operation":"newMsgCmdShutterAEBWithGps","arguments":["aebInfo:hex of 10 bytes"],)"
                        R"("options":["--gps","--gyro","--orientation","--extra"],)"
                        R"("result":["fileTime","FileSize","fileName"]})"));
  EXPECT_THAT(host->output(), HasSubstr(R"({"operation":"msgReqSetAEEVBias","arguments":["bias:s16"],)"
                                        R"("options":[],"result":[]})"));
}

TEST_F(CallTest, ReadsBackWhatItSet) {
  const auto camera = simulator();
  EXPECT_EQ(call({"msgReqSetTimelapseEVBias", "-3"}),
            Json({{"operation", "msgReqSetTimelapseEVBias"}, {"error", nullptr}, {"result", Json::object()}}));
  EXPECT_EQ(call({"msgReqGetTimelapseEVBiasWithRebackBlock"})["result"], Json({{"shortValue", -3}}));
  call({"msgReqSetTimelapseInfo", "0102030405060708"});
  EXPECT_EQ(call({"msgReqGetTimelapseInfoWithRebackBlock"})["result"], Json({{"NSValue1", "0102030405060708"}}));
  call({"msgReqSetSerialNumber", "A1"});
  EXPECT_EQ(call({"msgReqGetSerialNumber"})["result"], Json({{"nsString", "A1"}}));
  call({"msgReqSetVideoExtraInfoWithFileName", "v.mp4", "00ff"});
  EXPECT_EQ(call({"msgReqGetVideoExtraInfoWithFileName", "v.mp4"})["result"], Json({{"NSData", "00ff"}}));
  call({"setCameraAudioBitrate", "128000"});
  EXPECT_EQ(call({"getCameraAudioBitrateWithRebackBlock"})["result"], Json({{"uintValue", 128000}}));
}

TEST_F(CallTest, TellsARefusalByItsErrorItsWordsAndItsStatus) {
  const auto camera = simulator();
  EXPECT_EQ(call({"msgCmdStopRecordWithRebackBlock"}, 1),
            Json({{"operation", "msgCmdStopRecordWithRebackBlock"}, {"error", kRefused}, {"result", Json::object()}}));
  EXPECT_THAT(errors, HasSubstr("msgCmdStopRecordWithRebackBlock: the camera refused (NSOSStatusErrorDomain 101)"));
}

TEST_F(CallTest, ShowsATextFilesCodeBesideItsError) {
  const auto camera = simulator({"--fault", "refuse=0x402D"});
  const Json answer = call({"msgReqCreateTxtFile", "a.txt", "3", "414243"}, 1);
  EXPECT_EQ(answer["error"], kRefused);
  EXPECT_TRUE(answer["result"]["intValue"].is_number()) << answer;
}

TEST_F(CallTest, TellsThatNoAnswerCame) {
  const auto camera = simulator({"--fault", "no-reply=0x4025"});
  const auto host = zelcam({"--json", "--timeout", "1.5", "call", "msgReqGetUUIDWithRebackBlock"});
  EXPECT_EQ(host->wait(), 3);
  EXPECT_EQ(lines(*host), std::vector<Json>({{{"error",
                                               {{"code", 3},
                                                {"domain", "zelcam"},
                                                {"message",
                                                 "msgReqGetUUIDWithRebackBlock: the camera did not answer within "
                                                 "1.5 s"}}}}}));
  EXPECT_THAT(host->errors(), HasSubstr("the camera did not answer within 1.5 s"));
}

TEST_F(CallTest, TellsThatTheCameraWasLost) {
  const auto camera = simulator({"--fault", "no-reply=0x4025"});
  const auto host = zelcam({"--verbose", "--timeout", "60", "call", "msgReqGetUUIDWithRebackBlock"});
  ASSERT_TRUE(host->waitForErrors("the request is on its way"));
  camera->signal(SIGTERM);
  EXPECT_EQ(host->wait(), 3);
  EXPECT_THAT(host->errors(), HasSubstr("the camera was lost"));
}

TEST_F(CallTest, IsStoppedByCtrlCWhileItWaits) {
  const auto camera = simulator({"--fault", "no-reply=0x4025"});
  const auto host = zelcam({"--verbose", "--timeout", "60", "call", "msgReqGetUUIDWithRebackBlock"});
  ASSERT_TRUE(host->waitForErrors("the request is on its way"));
  host->signal(SIGINT);
  EXPECT_EQ(host->wait(), 130);
  EXPECT_EQ(host->output(), "");
}

TEST_F(CallTest, IsDoneWithoutAReplyWhenItsBytesAreWritten) {
  const auto camera = simulator();
  for (const char* operation : {"msgReqUpdateGps", "newMsgReqUpdateGps", "msgReqUpdateGyro", "newMsgReqUpdateGyro",
                                "msgReqUpdateOrientation", "newMsgReqUpdateOrientation"}) {
    EXPECT_EQ(call({operation, "--gps", "-33.8,151.2,20"})["error"], Json()) << operation;
  }
}

TEST_F(CallTest, IsDoneAtOnceWhereNothingIsSent) {
  const auto camera = simulator();
  EXPECT_EQ(call({"msgCmdShutterHDRWithGps"})["result"], Json::object());
}

TEST_F(CallTest, RefusesOldFirmwareWithItsOwnCode) {
  const auto camera = simulator({"--firmware", "189"});
  const Json answer = call({"getCameraAudioBitrateWithRebackBlock"}, 1);
  EXPECT_EQ(answer["error"], Json({{"domain", "NSOSStatusErrorDomain"}, {"code", 120}}));
  EXPECT_THAT(errors, HasSubstr("firmware is too old"));
}

TEST_F(CallTest, SaysWhatAnOperationTakes) {
  const auto complaint = [this](Arguments arguments) {
    arguments.insert(arguments.begin(), "call");
    const auto host = zelcam(arguments);
    EXPECT_EQ(host->wait(), 2);
    EXPECT_EQ(host->output(), "");
    return host->errors();
  };
  EXPECT_THAT(complaint({}), HasSubstr("call --list"));
  EXPECT_THAT(complaint({"msgReqMakeCoffee"}), HasSubstr("there is no operation msgReqMakeCoffee"));
  EXPECT_THAT(complaint({"msgReqSetMute"}), HasSubstr("takes mute:u8; 0 were given"));
  EXPECT_THAT(complaint({"msgReqSetMute", "256"}), HasSubstr("takes mute:u8, not \"256\""));
  EXPECT_THAT(complaint({"msgReqSetMute", "-1"}), HasSubstr("takes mute:u8, not \"-1\""));
  EXPECT_THAT(complaint({"msgReqSetTimelapseInfo", "01"}), HasSubstr("takes info:hex of 8 bytes, not \"01\""));
  EXPECT_THAT(complaint({"msgReqSetTimelapseInfo", "010203040506070g"}), HasSubstr("takes info:hex of 8 bytes"));
  EXPECT_THAT(complaint({"msgReqUpdateGps", "--gps", "1,2"}), HasSubstr("--gps takes 3 numbers"));
  EXPECT_THAT(complaint({"msgReqUpdateGps", "--gps", "1,2,3,4"}), HasSubstr("--gps takes 3 numbers"));
  EXPECT_THAT(complaint({"msgCmdShutterExtraWithGps", "--extra", "/nowhere"}), HasSubstr("cannot read /nowhere"));
}

TEST_F(CallTest, UploadsAFileByItsBareOperation) {
  const auto camera = simulator();
  EXPECT_EQ(call({"sendFileWithType", "1", "a.bin", "0001ff"})["error"], Json());
}

// -- offset

TEST_F(CallTest, OffsetTurnsTextIntoARecordAndBack) {
  EXPECT_EQ(run({"offset", "1_1.5_-2_0_0_0_0_3040_1520_7"}),
            Json({{"text", "1_1.5_-2_0_0_0_0_3040_1520_7"},
                  {"record",
                   "e00bf005070000000100000000000000"
                   "dc05000030f8ffff000000000000000000000000000000000000000000000000"
                   "0000000000000000000000000000000000000000000000000000000000000000"}}));
  EXPECT_EQ(run({"offset", "--record",
                 "e00bf005070000000100000000000000"
                 "dc05000030f8ffff000000000000000000000000000000000000000000000000"
                 "0000000000000000000000000000000000000000000000000000000000000000"})["text"],
            "1_1.500_-2.000_0.000_0.000_0.000_0.000_3040_1520_7");
  const auto host = zelcam({"offset", "--record", "e00bf005"});
  EXPECT_EQ(host->wait(), 2);
  EXPECT_THAT(host->errors(), HasSubstr("160 hexadecimal digits"));
  EXPECT_EQ(zelcam({"offset"})->wait(), 2);
}

TEST_F(CallTest, OffsetWarnsOfATextWithoutALens) {
  const auto host = zelcam({"offset", "nonsense"});
  EXPECT_EQ(host->wait(), 0);
  EXPECT_EQ(host->output(), std::string(160, '0') + "\n");
  EXPECT_EQ(host->errors(), "zelcam: offset: the text has no lens: nothing can be unwrapped by it\n");
}

}  // namespace
}  // namespace zel::test
