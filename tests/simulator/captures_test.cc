#include "simulator/captures.h"

#include <bit>

#include "simulator/exif.h"
#include "tests/simulator/camera_test.h"
#include "tests/simulator/decoded_jpeg.h"

namespace zel::simulator {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const Bytes kShutterBusy = {9, 0, 0, 0, 4, 0, 0x0C, 0x60, 1};
const Bytes kShutterDone = {9, 0, 0, 0, 4, 0, 0x0C, 0x60, 0};
const Bytes kCardFullEvent = {9, 0, 0, 0, 4, 0, 0x06, 0x60, 2};

struct Photo {
  std::string name;
  Bytes jpeg;
};

class CapturesTest : public CameraTest {
 protected:
  CapturesTest() { small(); }

  void small() {
    ask(0x4002, {2});
    host->replies.clear();
  }

  std::vector<Photo> photos() const {
    std::vector<Photo> list;
    for (const Bytes& frame : host->frames) {
      EXPECT_GE(frame.size(), 70u);
      EXPECT_EQ(numberAt<std::uint32_t>(frame, 0), frame.size());
      EXPECT_EQ(numberAt<std::uint16_t>(frame, 4), 3);
      const std::span<const std::uint8_t> all = frame;
      list.push_back({textIn(all.subspan(6, 64)), copyOf(all.subspan(70))});
    }
    return list;
  }

  static double brightness(const Bytes& jpeg) {
    const auto picture = decodeJpeg(jpeg);
    if (!picture) return -1;
    double sum = 0;
    for (const std::uint8_t value : picture->rgb) sum += value;
    return sum / static_cast<double>(picture->rgb.size());
  }
};

TEST_F(CapturesTest, AnswersTheFileAndThenSendsThePicture) {
  const Bytes reply = ask(0x0007, counting(64));
  ASSERT_THAT(photos(), SizeIs(1));
  const Photo photo = photos()[0];
  EXPECT_EQ(photo.name, "IMG_20260102_030405_00_001.jpg");
  Bytes expected = {0xA5, 0x35, 0x57, 0x69};  // 2026-01-02 03:04:05
  put(expected, std::uint64_t{photo.jpeg.size()});
  EXPECT_EQ(reply, joined(expected, joined(ofText("IMG_20260102_030405_00_001.jpg"), {0})));
  EXPECT_THAT(world.told, ElementsAre(kShutterBusy, kShutterDone));
}

TEST_F(CapturesTest, SendsAPictureOfTheAskedSize) {
  ask(0x0007, Bytes(64));
  const auto picture = decodeJpeg(photos()[0].jpeg);
  ASSERT_TRUE(picture.has_value());
  EXPECT_EQ(picture->width, 640);
  EXPECT_EQ(picture->height, 320);
  EXPECT_GT(brightness(photos()[0].jpeg), 20);  // two lit circles
  const std::size_t corner = indexOf(*picture, 2, 2);
  EXPECT_LT(picture->rgb[corner] + picture->rgb[corner + 1] + picture->rgb[corner + 2], 24);  // black around them
}

TEST_F(CapturesTest, CountsFilesShotsAndRoom) {
  ask(0x0007, Bytes(64));
  ask(0x0011, counting(66));
  EXPECT_EQ(photos()[1].name, "IMG_20260102_030405_00_002.jpg");
  EXPECT_EQ(ask(0x4043), (Bytes{1, 0xFE, 0x7F, 0, 0}));  // two less than 32768
  const Bytes card = ask(0x400E);
  EXPECT_EQ(Bytes(card.begin() + 9, card.end()), (Bytes{0, 0, 0xF8, 0xFF, 1, 0, 0, 0}));  // 512 KiB less than 8 GiB
}

TEST_F(CapturesTest, NamesFilesByTheTimeThatTheHostSet) {
  ask(0x4006, {0xA5, 0x35, 0x57, 0x69, 0xC4, 0xFF, 0xFF, 0xFF});  // an hour east of UTC
  world.pass(std::chrono::seconds(61));
  const Bytes reply = ask(0x0007, Bytes(64));
  EXPECT_EQ(photos()[0].name, "IMG_20260102_040506_00_001.jpg");
  EXPECT_EQ(Bytes(reply.begin(), reply.begin() + 4), (Bytes{0xE2, 0x35, 0x57, 0x69}));
}

TEST_F(CapturesTest, NamesFilesOutsideAsciiWhereThatIsTheFault) {
  faults.nameLetters = "_\xC3\xA9";
  const Bytes reply = ask(0x0007, Bytes(64));
  const std::string name = "IMG_20260102_030405_00_001_\xC3\xA9.jpg";
  EXPECT_EQ(Bytes(reply.begin() + 12, reply.end()), joined(ofText(name), {0}));
  EXPECT_EQ(photos()[0].name, name);
  EXPECT_THAT(ask(0x4028, ofText(name)), SizeIs(193));
}

TEST_F(CapturesTest, TellsInThePhotoWhenAndWhereItWasTaken) {
  Bytes sensors;
  for (const double value : {48.5, -11.25, 519.5}) put(sensors, std::bit_cast<std::uint64_t>(value));
  sensors.resize(64);
  ask(0x4006, {0xA5, 0x35, 0x57, 0x69, 0xC4, 0xFF, 0xFF, 0xFF});  // an hour east of UTC
  ask(0x0007, sensors);
  const Bytes expected = exifSegment("2026:01:02 04:04:05", Position{48.5, -11.25, 519.5});
  const Bytes photo = photos()[0].jpeg;
  ASSERT_GT(photo.size(), 2 + expected.size());
  EXPECT_EQ(Bytes(photo.begin() + 2, photo.begin() + 2 + static_cast<std::ptrdiff_t>(expected.size())), expected);
}

TEST_F(CapturesTest, KeepsThePhotosSensorData) {
  ask(0x0007, counting(64));
  const Bytes record = ask(0x4028, ofText("IMG_20260102_030405_00_001.jpg"));
  ASSERT_THAT(record, SizeIs(193));
  EXPECT_EQ(Bytes(record.begin() + 97, record.begin() + 161), counting(64));
}

TEST_F(CapturesTest, BracketsExposeEachStepDifferently) {
  Bytes bracket = {3, 0xFE, 0, 2, 0, 0, 0, 0, 0, 0};  // -2, 0 and 2 stops
  const Bytes reply = ask(0x000F, joined(counting(64), bracket));
  ASSERT_THAT(photos(), SizeIs(3));
  EXPECT_EQ(photos()[0].name, "IMG_20260102_030405_00_001.jpg");
  EXPECT_EQ(photos()[2].name, "IMG_20260102_030405_00_003.jpg");
  EXPECT_EQ(Bytes(reply.begin() + 12, reply.end()), joined(ofText(photos()[0].name), {0}));
  EXPECT_LT(brightness(photos()[0].jpeg) + 20, brightness(photos()[1].jpeg));
  EXPECT_LT(brightness(photos()[1].jpeg) + 20, brightness(photos()[2].jpeg));
  EXPECT_EQ(ask(0x4043), (Bytes{1, 0xFD, 0x7F, 0, 0}));  // three shots
}

TEST_F(CapturesTest, ExposesByTheBiasThatIsSet) {
  ask(0x0007, Bytes(64));
  ask(0x4015, {6, 0});  // two stops, in thirds
  ask(0x0007, Bytes(64));
  EXPECT_LT(brightness(photos()[0].jpeg) + 20, brightness(photos()[1].jpeg));
}

TEST_F(CapturesTest, RefusesByAnEmptyReplyABodyOfAnotherLength) {
  EXPECT_THAT(ask(0x0007, Bytes(63)), IsEmpty());
  EXPECT_THAT(ask(0x0007, Bytes(65)), IsEmpty());
  EXPECT_THAT(ask(0x0011, Bytes(63)), IsEmpty());
  EXPECT_THAT(ask(0x0011, Bytes(64 + 65537)), IsEmpty());
  EXPECT_THAT(ask(0x000F, Bytes(73)), IsEmpty());
  EXPECT_THAT(photos(), IsEmpty());
  EXPECT_THAT(world.told, IsEmpty());
}

TEST_F(CapturesTest, RefusesABracketOfNoStepOrMoreThanNine) {
  Bytes body(74);
  EXPECT_THAT(ask(0x000F, body), IsEmpty());
  body[64] = 10;
  EXPECT_THAT(ask(0x000F, body), IsEmpty());
  body[64] = 9;
  EXPECT_THAT(ask(0x000F, body), SizeIs(43));
  EXPECT_THAT(photos(), SizeIs(9));
}

TEST_F(CapturesTest, RefusesACaptureDuringAnother) {
  request(0x0007, Bytes(64));
  request(0x0011, Bytes(64));
  EXPECT_THAT(host->replies, ElementsAre(Reply{0x0011, {}}));
  world.work();
  EXPECT_THAT(host->replies, SizeIs(2));
  EXPECT_THAT(ask(0x0007, Bytes(64)), SizeIs(43));
}

TEST_F(CapturesTest, RefusesACaptureWhileRecording) {
  ask(0x0008, Bytes(64));
  EXPECT_THAT(ask(0x0007, Bytes(64)), IsEmpty());
  ask(0x0009);
  EXPECT_THAT(ask(0x0007, Bytes(64)), SizeIs(43));
}

TEST_F(CapturesTest, FillsTheCardSaysSoAndRefusesWhatDoesNotFit) {
  CameraStart start;
  start.cardSize = 2 * 256 * 1024 + 1;
  makeCamera(start);
  small();
  EXPECT_THAT(ask(0x0007, Bytes(64)), SizeIs(43));
  Bytes three(74);
  three[64] = 2;
  EXPECT_THAT(ask(0x000F, three), IsEmpty());
  EXPECT_THAT(ask(0x0007, Bytes(64)), SizeIs(43));
  EXPECT_THAT(world.told, ElementsAre(kShutterBusy, kShutterDone, kShutterBusy, kShutterDone, kCardFullEvent));
  EXPECT_THAT(ask(0x0007, Bytes(64)), IsEmpty());
  EXPECT_EQ(ask(0x400E)[0], 2);
}

TEST_F(CapturesTest, RefusesWithoutACardThatCanBeUsed) {
  camera->setCard(1);
  EXPECT_THAT(ask(0x0007, Bytes(64)), IsEmpty());
  camera->setCard(0);
  EXPECT_THAT(ask(0x0007, Bytes(64)), SizeIs(43));
}

TEST_F(CapturesTest, SendsNoPictureWhereThatIsTheFault) {
  faults.noPhoto = true;
  EXPECT_THAT(ask(0x0007, Bytes(64)), SizeIs(43));
  EXPECT_THAT(host->frames, IsEmpty());
}

TEST_F(CapturesTest, EndsThePictureAfterItsNameWhereThatIsTheFault) {
  faults.shortPhoto = true;
  EXPECT_THAT(ask(0x0007, Bytes(64)), SizeIs(43));
  ASSERT_THAT(host->frames, SizeIs(1));
  EXPECT_THAT(host->frames[0], SizeIs(70));
  EXPECT_EQ(photos()[0].name, "IMG_20260102_030405_00_001.jpg");
}

}  // namespace
}  // namespace zel::simulator
