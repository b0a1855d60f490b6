// zelcam's commands through a gateway that has the camera.

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "tests/zelcam/live_test.h"

namespace zel::test {
namespace {

using testing::HasSubstr;

class GatewayTest : public LiveTest {
 protected:
  // A gateway that shares the bus's camera once this returns.
  std::unique_ptr<Process> gateway() const {
    auto process = std::make_unique<Process>(TEST_GATEWAY_PROGRAM, Arguments{bus()}, folder.path());
    EXPECT_TRUE(process->waitForOutput("has E1A0001")) << process->errors();
    return process;
  }

  struct Told {
    int status = 0;
    std::string output, errors;
  };
  Told run(Arguments arguments) const {
    arguments.insert(arguments.begin(), {"--timeout", "30"});
    const auto host = zelcam(std::move(arguments));
    const int status = host->wait();
    return {status, host->output(), host->errors()};
  }
  std::string newFile(const std::string& name, const std::string& text) const {
    std::ofstream(path(name), std::ios::binary) << text;
    return path(name);
  }
};

// The same camera twice, so that both have the same state.
TEST_F(GatewayTest, CommandsTellTheSameAsWithoutIt) {
  const std::vector<Arguments> commands = {
      {"--json", "call", "msgReqSetWBMode", "2"},
      {"--json", "call", "msgReqGetFlickerWithRebackBlock"},
      {"--json", "call", "msgReqUpdateGps", "--gps", "47,8,400"},
      {"--json", "call", "msgReqSendSyncData", "0102"},
      {"--json", "call", "queryCameraBattery"},
      {"--json", "call", "msgReqGetSerialNumber"},
      {"--json", "call", "msgCmdStopRecordWithRebackBlock"},
      {"record", "start"},
      {"record", "cancel"},
      {"upload", newFile("small", "what goes up"), "--as", "DCIM/small"},
      {"call", "--list"},
      {"call", "nothingOfThatName"},
  };
  std::vector<Told> directly;
  {
    const auto camera = simulator();
    for (const Arguments& one : commands) directly.push_back(run(one));
  }
  const auto camera = simulator();
  const auto shared = gateway();
  for (std::size_t i = 0; i < commands.size(); ++i) {
    const Told told = run(commands[i]);
    EXPECT_EQ(told.status, directly[i].status) << commands[i].back();
    EXPECT_EQ(told.output, directly[i].output) << commands[i].back();
    EXPECT_EQ(told.errors, directly[i].errors) << commands[i].back();
  }
}

TEST_F(GatewayTest, TwoInfosAtOnceBothAnswer) {
  const auto camera = simulator();
  const auto shared = gateway();
  const auto one = zelcam({"--json", "info"}), other = zelcam({"--json", "info"});
  EXPECT_EQ(one->wait(), 0) << one->errors();
  EXPECT_EQ(other->wait(), 0) << other->errors();
  EXPECT_EQ(lines(*one).at(0)["uuid"], lines(*other).at(0)["uuid"]);
}

TEST_F(GatewayTest, EverythingElseGoesOnWhileLiveRuns) {
  const auto camera = simulator();
  const auto shared = gateway();
  const auto running = live({"-o", path("a.mp4"), "--no-stitch"});
  ASSERT_TRUE(grows(path("a.mp4"), 20'000)) << running->errors();
  EXPECT_EQ(run({"photo", "-o", path("pictures")}).status, 0);
  EXPECT_EQ(run({"photo", "-o", path("pictures"), "--bracket", "-2,0,2"}).status, 0);
  EXPECT_EQ(run({"record", "start"}).status, 0);
  EXPECT_THAT(run({"record", "stop"}).output, HasSubstr("recorded VID_"));
  EXPECT_EQ(run({"--json", "monitor", "--seconds", "1"}).status, 0);
  const auto size = std::filesystem::file_size(path("a.mp4"));
  EXPECT_TRUE(grows(path("a.mp4"), size + 20'000)) << running->errors();
  running->signal(SIGINT);
  EXPECT_EQ(running->wait(), 0) << running->errors();
}

TEST_F(GatewayTest, TwoStreamsAndTwoPreviewsShareOnePreviewOfTheCamera) {
  const auto camera = simulator({"--verbose"});
  const auto shared = gateway();
  const auto first = live({"-o", path("a.mp4"), "--no-stitch"});
  ASSERT_TRUE(grows(path("a.mp4"), 20'000)) << first->errors();
  const auto second = live({"-o", path("b.mp4"), "--no-stitch", "--duration", "2"});
  const auto one = zelcam({"--json", "--timeout", "30", "preview", "--snapshot", path("one.png")});
  const auto other = zelcam({"--json", "--timeout", "30", "preview", "--snapshot", path("other.png")});
  EXPECT_EQ(one->wait(), 0) << one->errors();
  EXPECT_EQ(other->wait(), 0) << other->errors();
  EXPECT_EQ(second->wait(), 0) << second->errors();
  first->signal(SIGINT);
  EXPECT_EQ(first->wait(), 0) << first->errors();
  EXPECT_TRUE(camera->waitForErrors("request 0x0006"));
  const std::string requests = camera->errors();
  EXPECT_EQ(requests.find("request 0x0004"), requests.rfind("request 0x0004"));
}

TEST_F(GatewayTest, ThePreviewEndsWithAHostThatIsKilled) {
  const auto camera = simulator({"--verbose"});
  const auto shared = gateway();
  const auto running = live({"-o", path("a.mp4"), "--no-stitch"});
  ASSERT_TRUE(grows(path("a.mp4"), 20'000)) << running->errors();
  running->signal(SIGKILL);
  EXPECT_TRUE(camera->waitForErrors("request 0x0006"));
}

TEST_F(GatewayTest, ASessionOfItsOwnIsRefused) {
  const auto camera = simulator();
  const auto shared = gateway();
  const Told told = run({"--direct", "info"});
  EXPECT_EQ(told.status, 3);
  EXPECT_THAT(told.errors,
              HasSubstr("camera E1A0001 is in use by process " + std::to_string(shared->id()) + " (zelcam serve)"));
}

TEST_F(GatewayTest, ACameraThatIsUnpluggedIsLost) {
  const auto camera = simulator();
  const auto shared = gateway();
  const auto events = zelcam({"--json", "--timeout", "30", "--verbose", "events"});
  ASSERT_TRUE(events->waitForErrors("waiting for events"));
  const auto running = live({"-o", path("a.mp4"), "--no-stitch"});
  ASSERT_TRUE(grows(path("a.mp4"), 20'000)) << running->errors();
  camera->signal(SIGTERM);
  EXPECT_EQ(events->wait(), 3);
  EXPECT_THAT(events->errors(), HasSubstr("the camera was lost"));
  EXPECT_EQ(running->wait(), 3);
  EXPECT_THAT(running->errors(), HasSubstr("the camera was lost"));
}

// -- A gateway that is killed

TEST_F(GatewayTest, KilledInTheMidstOfAnUploadItLeavesNothingLocked) {
  const auto camera = simulator();
  const auto shared = gateway();
  camera->signal(SIGSTOP);  // so that the file stays on its way
  const auto host = zelcam({"--timeout", "30", "--verbose", "upload", newFile("file", std::string(3'000'000, 'x'))});
  EXPECT_TRUE(host->waitForErrors("the request is on its way"));
  shared->signal(SIGKILL);
  EXPECT_EQ(host->wait(), 3) << host->errors();
  EXPECT_THAT(host->errors(), HasSubstr("upload: the camera was lost"));
  camera->signal(SIGCONT);
  EXPECT_EQ(run({"--json", "info"}).status, 0);
}

struct Moment {
  const char* name;
  std::vector<std::string> arguments;  // of zelcam
  std::string fault;                   // of the camera, that keeps the command waiting
  const char* request;                 // that the camera has seen then
};

class GatewayKilledTest : public GatewayTest, public testing::WithParamInterface<Moment> {};

TEST_P(GatewayKilledTest, LeavesNothingLockedAndItsHostsKnow) {
  const Moment& moment = GetParam();
  const auto camera = simulator({"--verbose", "--fault", moment.fault});
  const auto shared = gateway();
  Arguments arguments = moment.arguments;
  for (std::string& one : arguments) {
    if (one == "FILE") one = newFile("file", std::string(3'000'000, 'x'));
    if (one == "OUT") one = path("out.mp4");
  }
  arguments.insert(arguments.begin(), {"--timeout", "30"});
  const auto host = zelcam(arguments);
  if (moment.request != nullptr) {
    ASSERT_TRUE(camera->waitForErrors(moment.request)) << host->errors();
  }
  shared->signal(SIGKILL);
  EXPECT_EQ(shared->wait(), 128 + SIGKILL);
  EXPECT_EQ(host->wait(), 3) << host->errors();
  EXPECT_THAT(host->errors(), HasSubstr("the camera was lost"));
  const Told next = run({"--json", "info"});
  EXPECT_EQ(next.status, 0) << next.errors;
  const auto again = gateway();  // in the place of the socket that was left
  EXPECT_EQ(run({"--json", "info"}).status, 0);
  EXPECT_EQ(run({"--direct", "info"}).status, 3);
}

INSTANTIATE_TEST_SUITE_P(
    AtAnyMoment, GatewayKilledTest,
    testing::Values(Moment{"Photo", {"photo"}, "late-reply=0x0007/60000", "request 0x0007"},
                    Moment{"Live", {"live", "-o", "OUT", "--no-stitch"}, "split", "request 0x000E"},
                    Moment{"Call", {"call", "msgReqSetWBMode", "1"}, "no-reply=0x401A", "request 0x401A"}),
    [](const auto& moment) { return moment.param.name; });

}  // namespace
}  // namespace zel::test
