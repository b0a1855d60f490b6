#include "simulator/camera_connection.h"

#include "tests/simulator/connected_test.h"

namespace zel::simulator {
namespace {

using testing::AnyOf;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint16_t kPicture = 1, kSound = 2, kStamp = 8;
constexpr std::uint8_t kVideoStream = 0;

class CameraConnectionTest : public ConnectedTest {
 protected:
  // The data types of the next frames until so many pictures have come; each timestamp as type 8 and its stream.
  std::vector<std::pair<std::uint16_t, std::uint8_t>> untilPictures(int count) {
    std::vector<std::pair<std::uint16_t, std::uint8_t>> types;
    while (count > 0) {
      const auto frame = host->anyFrame();
      if (!frame) break;
      types.emplace_back(frame->type, frame->type == kStamp ? frame->payload.at(0) : std::uint8_t{0});
      if (frame->type == kPicture) --count;
    }
    EXPECT_EQ(count, 0);
    return types;
  }

  bool soundIsAmong(const std::vector<std::pair<std::uint16_t, std::uint8_t>>& types) const {
    return std::ranges::any_of(types,
                               [](const auto& one) { return one.first == kSound || one.second != kVideoStream; });
  }

  // Reads frames until one of that type comes; false after the camera has closed or half a minute of silence.
  bool waitForType(std::uint16_t type) {
    auto frame = host->anyFrame();
    while (frame && frame->type != type) frame = host->anyFrame();
    return frame.has_value();
  }

  // The next three frames are timestamps and nothing else.
  void expectTimestampsAlone() {
    for (int i = 0; i < 3; ++i) {
      const auto frame = host->anyFrame();
      ASSERT_TRUE(frame.has_value());
      EXPECT_EQ(frame->type, kStamp);
      EXPECT_THAT(frame->payload, SizeIs(9));
    }
  }
};

// Where whole frames lead to when they are read from there.
std::size_t endOfFrames(const Bytes& bytes, std::size_t at, std::size_t end) {
  while (at + 6 <= end) {
    const std::size_t length = numberAt<std::uint32_t>(bytes, at);
    if (length < 6 || length > end - at) return 0;
    at += length;
  }
  return at;
}

// -- the beginning

TEST_F(CameraConnectionTest, StartsInTheMiddleOfAFrame) {
  start();
  ASSERT_TRUE(host->receiveAtLeast(10'000));
  EXPECT_EQ(endOfFrames(host->received, 0, 10'000), 0u);
}

TEST_F(CameraConnectionTest, PutsTheMarkerOnceBetweenTwoFrames) {
  start();
  host->send(kStartPreview);
  ASSERT_TRUE(host->receiveAtLeast(100'000));  // at least one picture behind the torn frame
  host->send(kSyncRequest);
  const auto marker = host->waitFor(kMarker);
  ASSERT_TRUE(marker.has_value());
  std::size_t begin = 1;
  while (begin < *marker && endOfFrames(host->received, begin, *marker) != *marker) ++begin;
  EXPECT_LT(begin + 300, *marker);  // from there on, whole frames lead to the marker
  host->drop(*marker + kMarker.size());
  EXPECT_EQ(host->frame(), reply({0x2E, 0xC0, 1}));
}

TEST_F(CameraConnectionTest, SendsAnEarlyMarkerUnaskedAndNotAgain) {
  start({"early-marker"});
  const auto marker = host->waitFor(kMarker);
  ASSERT_TRUE(marker.has_value());
  host->drop(*marker + kMarker.size());
  EXPECT_EQ(answerTo(kSyncRequest), reply({0x2E, 0xC0, 1}));
  EXPECT_EQ(answerTo(ask(0x01, 0x40)), reply({0x01, 0xC0, 1, 100}));
}

// -- pictures and sound

TEST_F(CameraConnectionTest, SendsTimestampsAloneUntilItIsAskedForPictures) {
  start();
  synchronise();
  expectTimestampsAlone();
}

TEST_F(CameraConnectionTest, SendsTimestampsTwiceASecondAndNotMore) {
  start();
  synchronise();
  const auto first = host->anyFrame(), second = host->anyFrame();
  ASSERT_TRUE(first && second);
  EXPECT_GE(numberAt<std::uint64_t>(second->payload, 1), numberAt<std::uint64_t>(first->payload, 1) + 499);
}

TEST_F(CameraConnectionTest, SendsPicturesFromTheRequestToTheStop) {
  start();
  synchronise();
  EXPECT_EQ(answerTo(kStartPreview), reply({0x04, 0x80, 1, 3}));
  for (const auto& [type, stream] : untilPictures(20)) EXPECT_THAT(type, AnyOf(kPicture, kStamp));
  EXPECT_EQ(answerTo(kStopPreview), reply({0x06, 0x80, 1}));
  expectTimestampsAlone();
}

TEST_F(CameraConnectionTest, StartsAStoppedPreviewFromItsFirstPicture) {
  start();
  synchronise();
  host->send(kStartPreview);
  untilPictures(5);
  EXPECT_EQ(answerTo(kStopPreview), reply({0x06, 0x80, 1}));
  host->send(kStartPreview);
  auto frame = host->anyFrame();
  while (frame && frame->type != kPicture) frame = host->anyFrame();
  ASSERT_TRUE(frame.has_value());
  EXPECT_EQ(frame->payload.at(4), 0x65);  // the loop's key picture
}

TEST_F(CameraConnectionTest, BeginsOnceForTwoStartsInARow) {
  start();
  synchronise();
  host->send(kStartPreview);
  host->send(kStartPreview);
  int keys = 0;
  for (int pictures = 0; pictures < 29;) {  // of the loop's thirty from one key picture to the next
    const auto frame = host->anyFrame();
    ASSERT_TRUE(frame.has_value());
    if (frame->type != kPicture) continue;
    ++pictures;
    keys += frame->payload.at(4) == 0x65 ? 1 : 0;
  }
  EXPECT_EQ(keys, 1);
}

TEST_F(CameraConnectionTest, SendsNoSoundUntilItIsSwitchedOn) {
  start();
  synchronise();
  host->send(kStartPreview);
  EXPECT_FALSE(soundIsAmong(untilPictures(20)));
  host->send(soundSwitch(1));
  EXPECT_TRUE(waitForType(kSound));
}

TEST_F(CameraConnectionTest, SendsNoSoundOnceItIsSwitchedOff) {
  start();
  synchronise();
  host->send(soundSwitch(1));
  host->send(kStartPreview);
  EXPECT_TRUE(waitForType(kSound));
  host->send(soundSwitch(0));
  ASSERT_TRUE(host->waitFor({9, 0, 0, 0, 4, 0, 0x0E, 0x80, 1}).has_value());
  EXPECT_TRUE(waitForType(4));
  EXPECT_FALSE(soundIsAmong(untilPictures(20)));
}

TEST_F(CameraConnectionTest, SendsNoSoundWithoutPictures) {
  start();
  synchronise();
  EXPECT_EQ(answerTo(soundSwitch(1)), reply({0x0E, 0x80, 1}));
  expectTimestampsAlone();
}

TEST_F(CameraConnectionTest, LeavesTheNextHostToAskForItself) {
  start();
  synchronise();
  host->send(kStartPreview);
  host->send(soundSwitch(1));
  EXPECT_TRUE(waitForType(kSound));
  host = std::make_unique<HostSocket>(path);
  synchronise();
  expectTimestampsAlone();
}

// -- faults

TEST_F(CameraConnectionTest, SendsUnknownTypesWithoutPicturesToo) {
  start({"unknown-types"});
  synchronise();
  EXPECT_THAT(host->frame().type, AnyOf(0, 5, 6, 10, 99, 0xFFFF));
}

TEST_F(CameraConnectionTest, RaisesFlagsAndAddsBytesWhereThatIsTheFault) {
  start({"high-flags=0x4024", "trailing-bytes=0x4024"});
  synchronise();
  const Frame answer = answerTo(ask(0x24, 0x40));
  ASSERT_GT(answer.payload.size(), 4u);
  EXPECT_EQ(numberAt<std::uint16_t>(answer.payload, 0), 0xC024);
  EXPECT_GT(answer.payload[2], 1);
  EXPECT_EQ(answer.payload[3], 0);  // the value
  EXPECT_EQ(answerTo(ask(0x30, 0x40)), reply({0x30, 0xC0, 1, 0}));
}

}  // namespace
}  // namespace zel::simulator
