// The element beside another program, at a camera that a gateway shares.

#include <csignal>
#include <filesystem>

#include "tests/bindings/gstreamer/plugin_test.h"

namespace zel::test {
namespace {

class SharedCameraTest : public PluginTest {
 protected:
  SharedCameraTest() { setenv("ZEL_ACCESSORIES", bus().c_str(), 1); }

  std::string bus() const { return folder_.file("bus"); }
  std::unique_ptr<Process> start(const std::string& program, std::vector<std::string> arguments) const {
    return std::make_unique<Process>(program, arguments, folder_.path());
  }
};

TEST_F(SharedCameraTest, PlaysWhileAnotherProgramStreams) {
  const auto camera = start(simulatorProgram(), {"--accessories", bus()});
  ASSERT_TRUE(camera->waitForOutput("is attached"));
  const auto gateway = start(TEST_GATEWAY_PROGRAM, {bus()});
  ASSERT_TRUE(gateway->waitForOutput("has E1A0001"));
  const std::string film = folder_.file("a.mp4");
  const auto live = start(zelcamProgram(), {"--accessories", bus(), "live", "-o", film, "--no-stitch"});
  ASSERT_TRUE(eventually([&] {
    std::error_code none;
    const auto size = std::filesystem::file_size(film, none);
    return !none && size > 20'000;
  })) << live->errors();
  play("zelcamsrc name=source source.video ! fakesink");
  const auto source = element("source");
  ASSERT_TRUE(eventually([&] { return figure(*source, "pictures") > 5; }));
  live->signal(SIGINT);
  EXPECT_EQ(live->wait(), 0) << live->errors();
  const guint64 before = figure(*source, "pictures");
  EXPECT_TRUE(eventually([&] { return figure(*source, "pictures") > before + 5; }));
}

TEST_F(SharedCameraTest, DirectNeverGoesThroughAGateway) {
  const auto camera = start(simulatorProgram(), {"--accessories", bus()});
  ASSERT_TRUE(camera->waitForOutput("is attached"));
  const auto gateway = start(TEST_GATEWAY_PROGRAM, {bus()});
  ASSERT_TRUE(gateway->waitForOutput("has E1A0001"));
  play("zelcamsrc direct=true ! fakesink");
  EXPECT_THAT(end(), testing::StartsWith("camera E1A0001 is in use by process"));
}

}  // namespace
}  // namespace zel::test
