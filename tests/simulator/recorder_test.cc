#include "simulator/recorder.h"

#include "tests/simulator/camera_test.h"

namespace zel::simulator {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const Bytes kFileTime = {0xA5, 0x35, 0x57, 0x69};  // 2026-01-02 03:04:05

Bytes entry(const Bytes& size, const std::string& name) {
  return joined(kFileTime, joined(size, joined(ofText(name), {0})));
}

Bytes event(std::uint8_t code, const Bytes& body) {
  return joined({static_cast<std::uint8_t>(8 + body.size()), 0, 0, 0, 4, 0, code, 0x60}, body);
}

class RecorderTest : public CameraTest {
 protected:
  void makeCameraWithCard(std::uint64_t size) {
    CameraStart start;
    start.cardSize = size;
    makeCamera(start);
  }
};

TEST_F(RecorderTest, NamesAFileThatHasGrownWithTheTime) {
  EXPECT_EQ(ask(0x0008, counting(64)), kDone);
  world.pass(2500ms);
  // 12 500 000 bytes at 40 megabits a second
  EXPECT_EQ(ask(0x0009), entry({0x20, 0xBC, 0xBE, 0, 0, 0, 0, 0}, "VID_20260102_030405_00_001.mp4"));
}

TEST_F(RecorderTest, NamesFilesOutsideAsciiWhereThatIsTheFault) {
  faults.nameLetters = "_\xE9";
  ask(0x0008, Bytes(64));
  EXPECT_EQ(ask(0x0009), entry(Bytes(8), "VID_20260102_030405_00_001_\xE9.mp4"));
}

TEST_F(RecorderTest, GrowsByTheBitrateThatWasSetAtItsStart) {
  ask(0x000C, {0, 80});
  ask(0x0008, Bytes(64));
  ask(0x000C, {0, 1});
  world.pass(1250ms);
  EXPECT_EQ(ask(0x0009), entry({0x20, 0xBC, 0xBE, 0, 0, 0, 0, 0}, "VID_20260102_030405_00_001.mp4"));
}

TEST_F(RecorderTest, TakesTheCardWhileItRuns) {
  ask(0x0008, Bytes(64));
  world.pass(2500ms);
  EXPECT_EQ(ask(0x4042), (Bytes{1, 0xB3, 0x06, 0, 0}));  // 1715 seconds instead of 1717
  const Bytes card = ask(0x400E);
  EXPECT_EQ(Bytes(card.begin() + 9, card.end()), (Bytes{0xE0, 0x43, 0x41, 0xFF, 1, 0, 0, 0}));
}

TEST_F(RecorderTest, AnswersTheCamerasTimeToTheThirdForm) {
  EXPECT_EQ(ask(0x0014, Bytes(64)), (Bytes{1, 5, 4, 3, 2, 1, 0, 0, 0}));
  EXPECT_EQ(ask(0x0014, Bytes(64)), kRefused);
}

TEST_F(RecorderTest, KeepsWhatTheHostSentWithTheStart) {
  for (const std::uint16_t code : Codes{0x0012, 0x0014}) {
    ask(code, joined(counting(64), {0xAA, 0xBB}));
    world.pass(1s);
    const Bytes reply = ask(0x0009);
    const Bytes name(reply.begin() + 12, reply.end());
    EXPECT_EQ(ask(0x4035, name), (Bytes{1, 0xAA, 0xBB}));
    const Bytes record = ask(0x4028, name);
    ASSERT_THAT(record, SizeIs(193));
    EXPECT_EQ(Bytes(record.begin() + 1, record.begin() + 9), Bytes(8));
    EXPECT_EQ(Bytes(record.begin() + 9, record.begin() + 17), (Bytes{0x40, 0x4B, 0x4C, 0, 0, 0, 0, 0}));  // 5 000 000
    EXPECT_EQ(Bytes(record.begin() + 17, record.begin() + 22), (Bytes{0xE0, 0x0B, 0xF0, 0x05, 7}));
    EXPECT_EQ(Bytes(record.begin() + 97, record.begin() + 161), counting(64));
    EXPECT_EQ(Bytes(record.begin() + 161, record.end()), Bytes(32));
  }
}

TEST_F(RecorderTest, RefusesASecondStart) {
  EXPECT_EQ(ask(0x0008, Bytes(64)), kDone);
  for (const std::uint16_t code : Codes{0x0008, 0x0012, 0x0014}) EXPECT_EQ(ask(code, Bytes(64)), kRefused);
  EXPECT_THAT(ask(0x0009), SizeIs(43));
  EXPECT_EQ(ask(0x0008, Bytes(64)), kDone);
}

TEST_F(RecorderTest, RefusesToStopWhatNeverStarted) {
  EXPECT_THAT(ask(0x0009), IsEmpty());
  EXPECT_EQ(ask(0x000B), kRefused);
  ask(0x0008, Bytes(64));
  EXPECT_THAT(ask(0x0009, {0}), IsEmpty());
  EXPECT_THAT(ask(0x0009), SizeIs(43));
  EXPECT_THAT(ask(0x0009), IsEmpty());
}

TEST_F(RecorderTest, RefusesABodyOfAnotherLength) {
  EXPECT_EQ(ask(0x0008, Bytes(63)), kRefused);
  EXPECT_EQ(ask(0x0008, Bytes(65)), kRefused);
  EXPECT_EQ(ask(0x0012, Bytes(63)), kRefused);
  EXPECT_EQ(ask(0x0014, Bytes(64 + 65537)), kRefused);
  EXPECT_THAT(ask(0x0009), IsEmpty());
}

TEST_F(RecorderTest, RefusesToStartDuringACapture) {
  ask(0x4002, {2});
  host->replies.clear();
  request(0x0007, Bytes(64));
  request(0x0008, Bytes(64));
  EXPECT_THAT(host->replies, ElementsAre(Reply{0x0008, {0}}));
}

TEST_F(RecorderTest, CancellingGivesItsRoomBackAndKeepsNoFile) {
  ask(0x0008, Bytes(64));
  world.pass(1s);
  ask(0x0009);
  ask(0x0008, Bytes(64));
  world.pass(10s);
  EXPECT_EQ(ask(0x4042), (Bytes{1, 0xAA, 0x06, 0, 0}));  // 1706
  EXPECT_EQ(ask(0x000B), kDone);
  EXPECT_EQ(ask(0x4042), (Bytes{1, 0xB4, 0x06, 0, 0}));  // 1716: the first one stays
  EXPECT_EQ(ask(0x4028, ofText("VID_20260102_030406_00_002.mp4")), kRefused);
  EXPECT_THAT(ask(0x0009), IsEmpty());
}

TEST_F(RecorderTest, EndsAtTheTimeLimitAndSaysSo) {
  ask(0x402B, {2});
  ask(0x0008, Bytes(64));
  world.pass(1999ms);
  EXPECT_THAT(world.told, IsEmpty());
  world.pass(1ms);
  const Bytes file = entry({0x80, 0x96, 0x98, 0, 0, 0, 0, 0}, "VID_20260102_030405_00_001.mp4");  // 10 000 000
  EXPECT_THAT(world.told, ElementsAre(event(0x0B, file)));
  EXPECT_THAT(ask(0x0009), IsEmpty());
  EXPECT_THAT(ask(0x4028, ofText("VID_20260102_030405_00_001.mp4")), SizeIs(193));
}

TEST_F(RecorderTest, EndsAtTheEndOfTheCardAndSaysSo) {
  makeCameraWithCard(7'000'000);
  ask(0x0008, Bytes(64));
  world.pass(1s);
  EXPECT_THAT(world.told, IsEmpty());
  world.pass(1s);
  const Bytes file = entry({0xC0, 0xCF, 0x6A, 0, 0, 0, 0, 0}, "VID_20260102_030405_00_001.mp4");  // 7 000 000
  EXPECT_THAT(world.told, ElementsAre(event(0x0A, file), event(0x06, {2})));
  EXPECT_THAT(ask(0x0009), IsEmpty());
  EXPECT_EQ(ask(0x0008, Bytes(64)), kRefused);
}

TEST_F(RecorderTest, SplitsIntoAnotherFileAndGoesOn) {
  ask(0x0008, Bytes(64));
  world.pass(1s);
  camera->recorder().split();
  const Bytes first = entry({0x40, 0x4B, 0x4C, 0, 0, 0, 0, 0}, "VID_20260102_030405_00_001.mp4");  // 5 000 000
  EXPECT_THAT(world.told, ElementsAre(event(0x02, first)));
  world.pass(2s);
  const Bytes second = ask(0x0009);
  EXPECT_EQ(second, joined({0xA6, 0x35, 0x57, 0x69, 0x80, 0x96, 0x98, 0, 0, 0, 0, 0},
                           joined(ofText("VID_20260102_030406_00_002.mp4"), {0})));
}

TEST_F(RecorderTest, EndsWhenTheCardIsTakenOut) {
  ask(0x0008, Bytes(64));
  world.pass(1s);
  camera->setCard(1);
  const Bytes file = entry({0x40, 0x4B, 0x4C, 0, 0, 0, 0, 0}, "VID_20260102_030405_00_001.mp4");
  EXPECT_THAT(world.told, ElementsAre(event(0x0A, file), event(0x06, {1})));
  EXPECT_EQ(ask(0x0008, Bytes(64)), kRefused);
}

TEST_F(RecorderTest, AnOldTimerDoesNotEndTheNextRecording) {
  ask(0x402B, {2});
  ask(0x0008, Bytes(64));
  world.pass(1500ms);
  ask(0x0009);
  ask(0x0008, Bytes(64));
  world.pass(1999ms);
  EXPECT_THAT(world.told, IsEmpty());
  world.pass(1ms);
  EXPECT_THAT(world.told, SizeIs(1));
}

}  // namespace
}  // namespace zel::simulator
