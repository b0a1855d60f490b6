#include "simulator/event_lines.h"

#include "tests/simulator/camera_test.h"

namespace zel::simulator {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class EventLinesTest : public CameraTest {
 protected:
  std::vector<Bytes> eventsOf(const std::string& line) {
    world.told.clear();
    const CameraHappening happening = readEventLine(line, error);
    EXPECT_TRUE(happening) << line << ": " << error;
    if (happening) happening(*camera);
    return world.told;
  }

  std::string error;
};

TEST_F(EventLinesTest, SayTheirEventsLiterally) {
  EXPECT_THAT(eventsOf("update-done 1"), ElementsAre(Bytes{9, 0, 0, 0, 4, 0, 0x01, 0x60, 1}));
  EXPECT_THAT(eventsOf("battery 0 40"), ElementsAre(Bytes{10, 0, 0, 0, 4, 0, 0x03, 0x60, 0, 40}));
  EXPECT_THAT(eventsOf("battery-low 7"), ElementsAre(Bytes{9, 0, 0, 0, 4, 0, 0x04, 0x60, 7}));
  EXPECT_THAT(eventsOf("shutdown"), ElementsAre(Bytes{8, 0, 0, 0, 4, 0, 0x05, 0x60}));
  EXPECT_THAT(eventsOf("shutdown 255"), ElementsAre(Bytes{9, 0, 0, 0, 4, 0, 0x05, 0x60, 255}));
  EXPECT_THAT(eventsOf("key 3"), ElementsAre(Bytes{9, 0, 0, 0, 4, 0, 0x08, 0x60, 3}));
  EXPECT_THAT(eventsOf("shutter 2"), ElementsAre(Bytes{9, 0, 0, 0, 4, 0, 0x0C, 0x60, 2}));
  EXPECT_THAT(eventsOf("delete 1 258 4294967295"),
              ElementsAre(Bytes{20, 0, 0, 0, 4, 0, 0x0D, 0x60, 1, 0, 0, 0, 2, 1, 0, 0, 255, 255, 255, 255}));
  EXPECT_THAT(eventsOf("gyro"), ElementsAre(joined({32, 0, 0, 0, 4, 0, 0x0E, 0x60}, Bytes(24))));
}

TEST_F(EventLinesTest, SayARecordingsEndWithoutABodyWhenThereIsNone) {
  EXPECT_THAT(eventsOf("split"), ElementsAre(Bytes{8, 0, 0, 0, 4, 0, 0x02, 0x60}));
  EXPECT_THAT(eventsOf("time-out"), ElementsAre(Bytes{8, 0, 0, 0, 4, 0, 0x0B, 0x60}));
  EXPECT_THAT(eventsOf("card-full"),
              ElementsAre(Bytes{8, 0, 0, 0, 4, 0, 0x0A, 0x60}, Bytes{9, 0, 0, 0, 4, 0, 0x06, 0x60, 2}));
}

TEST_F(EventLinesTest, SayTheOffsetInForce) {
  Bytes record = counting(80);
  record[8] = 2;
  ask(0x4010, joined({0, 3}, record));  // the preview's resolution code is 3
  EXPECT_THAT(eventsOf("offset"), ElementsAre(joined({89, 0, 0, 0, 4, 0, 0x09, 0x60, 3}, record)));
}

TEST_F(EventLinesTest, SayTheMotionThatTheHostSentLast) {
  request(0x4011, counting(24));
  EXPECT_THAT(eventsOf("gyro"), ElementsAre(joined({32, 0, 0, 0, 4, 0, 0x0E, 0x60}, counting(24))));
}

TEST_F(EventLinesTest, ChangeTheCamera) {
  eventsOf("battery 0 40");
  EXPECT_EQ(ask(0x4001), (Bytes{0, 40}));
  EXPECT_THAT(eventsOf("card 5"), ElementsAre(Bytes{9, 0, 0, 0, 4, 0, 0x06, 0x60, 5}));
  EXPECT_EQ(ask(0x400E)[0], 5);
  eventsOf("card 0");
  EXPECT_EQ(ask(0x400E)[0], 0);
  eventsOf("card-full");
  EXPECT_EQ(ask(0x4043), (Bytes{1, 0, 0, 0, 0}));
}

TEST_F(EventLinesTest, EndARecordingWithItsFile) {
  ask(0x0008, Bytes(64));
  const auto events = eventsOf("time-out");
  ASSERT_EQ(events.size(), 1u);
  EXPECT_EQ(Bytes(events[0].begin() + 8, events[0].begin() + 12), (Bytes{0xA5, 0x35, 0x57, 0x69}));
  EXPECT_EQ(Bytes(events[0].begin() + 20, events[0].end()), joined(ofText("VID_20260102_030405_00_001.mp4"), {0}));
  EXPECT_THAT(ask(0x0009), IsEmpty());
}

TEST_F(EventLinesTest, AreRefusedWhenTheyAreUnknownOrMalformed) {
  for (const char* line :
       {"nonsense", "batteries 1 2", "battery", "battery 1", "battery 1 2 3", "battery 1 256", "battery -1 2",
        "battery 1 x", "battery 1 2x", "shutdown 1 2", "card", "split 1", "delete 1 2", "delete 1 2 4294967296", ""}) {
    error.clear();
    EXPECT_FALSE(readEventLine(line, error)) << line;
    EXPECT_NE(error, "") << line;
  }
}

TEST_F(EventLinesTest, HelpNamesEachOfThem) {
  for (const char* name : {"battery TYPE LEVEL", "battery-low N", "shutdown [N]", "card N", "key N", "offset",
                           "update-done N", "split", "card-full", "time-out", "shutter N", "delete A B C", "gyro"})
    EXPECT_THAT(kEventHelp, HasSubstr("\n  " + std::string(name) + " "));
}

}  // namespace
}  // namespace zel::simulator
