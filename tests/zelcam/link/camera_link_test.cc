// What becomes of a camera that two programs want, and of links that go wrong.

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/zelcam/bare_camera.h"
#include "tests/zelcam/zelcam_test.h"

namespace zel::test {
namespace {

using testing::HasSubstr;
using testing::Not;

class CameraLinkTest : public ZelcamTest {
 protected:
  // A program that has the camera, and shows its events.
  std::unique_ptr<Process> holder(Arguments more = {}) {
    more.insert(more.end(), {"--verbose", "--timeout", "60", "events"});
    auto host = zelcam(more);
    EXPECT_TRUE(host->waitForErrors("waiting for events")) << host->errors();
    return host;
  }
};

// -- two programs at one camera

TEST_F(CameraLinkTest, WhoComesSecondIsToldWhoHasTheCamera) {
  const auto camera = simulator();
  const auto first = holder();
  const std::vector<Arguments> commands = {{"info"},
                                           {"monitor"},
                                           {"events"},
                                           {"photo", "-o", folder.path()},
                                           {"call", "msgReqSetMute", "1"},
                                           {"record", "start"},
                                           {"upload", zelcamProgram()},
                                           {"preview", "--frames", "1"},
                                           {"live", "-o", folder.path() + "/a.ts", "--reconnect", "60"}};
  for (Arguments command : commands) {
    const std::string name = command.front();
    command.insert(command.begin(), {"--timeout", "600"});  // nobody waits for it
    const auto second = zelcam(command);
    EXPECT_EQ(second->wait(), 3) << name;
    EXPECT_EQ(second->errors(),
              "zelcam: camera E1A0001 is in use by process " + std::to_string(first->id()) + " (zelcam events)\n")
        << name;
    EXPECT_EQ(second->output(), "") << name;
  }
  camera->tell("battery 1 40");
  EXPECT_TRUE(first->waitForOutput("batteryUpdate")) << "the first one's stream was cut";
}

TEST_F(CameraLinkTest, TheSecondOfTwoMonitorsEndsAndTheFirstGoesOn) {
  const auto camera = simulator();
  const auto first = zelcam({"monitor"});
  ASSERT_TRUE(first->waitForOutput("status 2"));
  EXPECT_EQ(zelcam({"monitor"})->wait(), 3);
  first->signal(SIGINT);
  EXPECT_EQ(first->wait(), 0);
  EXPECT_THAT(first->output(), Not(HasSubstr("status 0")));
  EXPECT_THAT(first->output(), HasSubstr("synchronised 1 times"));
}

TEST_F(CameraLinkTest, TheCameraIsFreeWhenItsProgramEndsHoweverThatIs) {
  const auto camera = simulator();
  holder()->signal(SIGKILL);  // and is waited for by its destructor
  const auto killed = zelcam({"--timeout", "60", "call", "msgReqSetMute", "1"});
  EXPECT_EQ(killed->wait(), 0) << killed->errors();
  const auto ended = zelcam({"--timeout", "60", "call", "msgReqSetMute", "0"});
  EXPECT_EQ(ended->wait(), 0) << ended->errors();
  EXPECT_FALSE(std::filesystem::exists(bus() + ".locks")) << "it is left behind";
}

TEST_F(CameraLinkTest, AnotherCameraIsTakenWhereTheFirstIsInUse) {
  const auto one = simulator({"--serial", "ONE"});
  const auto two = simulator({"--serial", "TWO"});
  const auto first = holder({"--camera", "ONE"});
  const auto second = zelcam({"--json", "--timeout", "60", "info"});
  EXPECT_EQ(second->wait(), 0) << second->errors();
  EXPECT_EQ(lines(*second).at(0)["serialNumber"], "TWO");
}

TEST_F(CameraLinkTest, AFolderIsOneBusByWhateverPath) {
  const auto camera = simulator();
  const auto first = holder();
  std::filesystem::create_directory_symlink(bus(), folder.path() + "/other");
  Process second(zelcamProgram(), {"--accessories", folder.path() + "/other/", "info"}, folder.path());
  EXPECT_EQ(second.wait(), 3);
  EXPECT_THAT(second.errors(), HasSubstr("is in use by process"));
}

// -- silence

TEST_F(CameraLinkTest, EventsEndWithACameraThatIsFrozen) {
  const auto camera = simulator();
  const auto host = holder();
  camera->signal(SIGSTOP);
  EXPECT_EQ(host->wait(), 3);
  EXPECT_THAT(host->errors(), HasSubstr("events: the camera was lost"));
}

// -- links that do not heal by themselves

TEST_F(CameraLinkTest, ASocketThatListensLateIsTriedAgain) {
  BareCamera camera(bus(), [](BareCamera::Link& link, int) {
    if (!link.isAsked()) return;
    link.sendMarker();
    link.flow();
  });
  camera.attach();
  const auto host = zelcam({"--verbose", "--timeout", "60", "monitor", "--seconds", "0.1"});
  ASSERT_TRUE(host->waitForErrors("cannot connect"));
  camera.listen();
  EXPECT_EQ(host->wait(), 0) << host->errors();
  EXPECT_THAT(host->errors(), HasSubstr("opening the camera again"));
}

TEST_F(CameraLinkTest, AMarkerThatNeverComesIsAskedForOnAnotherConnection) {
  BareCamera camera(bus(), [](BareCamera::Link& link, int number) {
    if (number == 1) return link.beSilent();
    if (!link.isAsked()) return;
    link.sendMarker();
    link.flow();
  });
  camera.attach();
  camera.listen();
  const auto host = zelcam({"--timeout", "60", "monitor", "--seconds", "0.1"});
  EXPECT_EQ(host->wait(), 0) << host->errors();
  EXPECT_GE(camera.connections(), 2);
}

TEST_F(CameraLinkTest, ALengthThatSwallowsGoodFramesIsLeftBehind) {
  BareCamera camera(bus(), [](BareCamera::Link& link, int number) {
    if (!link.isAsked()) return;
    link.sendMarker();
    link.sendFrames(3);
    if (number == 1) link.send({0, 0, 0x70, 0, 1, 0});  // 7 MiB, below what is impossible
    link.flow();
  });
  camera.attach();
  camera.listen();
  const auto host = zelcam({"--timeout", "60", "monitor"});
  ASSERT_TRUE(host->waitForOutput("status 3")) << host->output();
  EXPECT_TRUE(host->waitForOutput("status 2", "status 3")) << host->output();
  host->signal(SIGINT);
  EXPECT_EQ(host->wait(), 0);
}

TEST_F(CameraLinkTest, ABrokenStreamThatCannotBeOpenedAgainIsADepartureAndComesBack) {
  BareCamera* itself = nullptr;
  BareCamera camera(bus(), [&itself](BareCamera::Link& link, int number) {
    if (!link.isAsked()) return;
    link.sendMarker();
    if (number != 1) return link.flow();
    link.sendFrames(3);
    itself->stopListening();  // and its end, with the request unread, is an error for the host
  });
  itself = &camera;
  camera.listen();
  camera.attach();
  const auto host = zelcam({"--timeout", "60", "monitor"});
  ASSERT_TRUE(host->waitForOutput("status 0", "status 2")) << host->output();
  EXPECT_EQ(camera.connections(), 1);
  camera.listen();
  EXPECT_TRUE(host->waitForOutput("status 2", "status 0")) << host->output();
  EXPECT_EQ(camera.connections(), 2) << "a connection was made that was no session's";
  host->signal(SIGINT);
  EXPECT_EQ(host->wait(), 0);
}

TEST_F(CameraLinkTest, ARequestWithoutASessionFailsAtOnce) {
  BareCamera* itself = nullptr;
  BareCamera camera(bus(), [&itself](BareCamera::Link& link, int) {
    if (!link.isAsked()) return;
    link.sendMarker();
    link.sendFrames(3);
    itself->stopListening();
  });
  itself = &camera;
  camera.listen();
  camera.attach();
  const std::string log = folder.path() + "/log";
  const auto host = zelcam({"--timeout", "600", "--log", log, "call", "msgReqGetCardStateWithRebackBlock"});
  EXPECT_EQ(host->wait(), 3) << host->errors();
  EXPECT_THAT(host->errors(), HasSubstr("msgReqGetCardStateWithRebackBlock: the camera was lost"));
  std::stringstream told;
  told << std::ifstream(log).rdbuf();
  EXPECT_THAT(told.str(), Not(HasSubstr("status 3 ("))) << "it waited for the silence";
}

}  // namespace
}  // namespace zel::test
