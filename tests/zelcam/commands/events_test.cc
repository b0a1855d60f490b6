#include <gmock/gmock.h>

#include <csignal>

#include "tests/zelcam/zelcam_test.h"

namespace zel::test {
namespace {

using testing::HasSubstr;

class EventsTest : public ZelcamTest {
 protected:
  // Tells the camera these lines, one after the other's event, and returns what zelcam shows of each.
  std::vector<Json> eventsOf(Process& camera, const std::vector<std::pair<std::string, std::string>>& lines) {
    const auto host = zelcam({"--json", "--verbose", "events", "--count", std::to_string(lines.size())});
    EXPECT_TRUE(host->waitForErrors("waiting for events"));
    for (const auto& [line, name] : lines) {
      camera.tell(line);
      EXPECT_TRUE(host->waitForOutput("\"name\":\"" + name + "\"")) << host->output() << host->errors();
    }
    EXPECT_EQ(host->wait(), 0) << host->errors();
    std::vector<Json> events = ZelcamTest::lines(*host);
    for (Json& event : events) event.erase("time");
    return events;
  }
};

TEST_F(EventsTest, ShowsEachEventUnderTheInterfacesKeys) {
  const auto camera = simulator();
  const auto events = eventsOf(*camera, {{"battery 1 40", "batteryUpdate"},
                                         {"battery-low 9", "batteryLow"},
                                         {"shutdown 3", "batteryShutDown"},
                                         {"card 2", "cardState"},
                                         {"key 3", "keyPressed"},
                                         {"update-done 0", "firmwareUpdateDone"},
                                         {"gyro", "gyroData"},
                                         {"shutter 1", "shutterState"},
                                         {"delete 1 2 3", "deleteProgress"},
                                         {"offset", "mediaOffset"}});
  ASSERT_EQ(events.size(), 10u);
  EXPECT_EQ(events[0],
            Json({{"event", 2}, {"name", "batteryUpdate"}, {"value", {{"intValue", 1}, {"intValue2", 40}}}}));
  EXPECT_EQ(events[1]["value"], Json({{"intValue", 9}}));
  EXPECT_EQ(events[2]["value"], Json({{"intValue", 3}}));
  EXPECT_EQ(events[3]["value"], Json({{"intValue", 2}}));
  EXPECT_EQ(events[4]["value"], Json({{"intValue", 3}}));
  EXPECT_EQ(events[5]["value"], Json({{"NSError", {{"domain", "NSOSStatusErrorDomain"}, {"code", 101}}}}));
  EXPECT_EQ(events[6]["value"], Json::object());
  EXPECT_EQ(events[7]["value"], Json({{"intValue", 1}}));
  EXPECT_EQ(events[8]["value"], Json({{"uintValue", 1}, {"uintValue2", 2}, {"uintValue3", 3}}));
  EXPECT_THAT(events[9]["value"]["nsString"].get<std::string>(), testing::StartsWith("2_"));
}

TEST_F(EventsTest, TheCamerasLossEndsThem) {
  const auto camera = simulator();
  const auto host = zelcam({"--verbose", "events"});
  ASSERT_TRUE(host->waitForErrors("waiting for events"));
  camera->signal(SIGTERM);
  EXPECT_EQ(host->wait(), 3);
  EXPECT_THAT(host->errors(), HasSubstr("events: the camera was lost"));
}

TEST_F(EventsTest, CtrlCEndsThemWell) {
  const auto camera = simulator();
  const auto host = zelcam({"events"});
  ASSERT_TRUE(host->waitForErrors("waiting for events"));
  host->signal(SIGINT);
  EXPECT_EQ(host->wait(), 0);
}

}  // namespace
}  // namespace zel::test
