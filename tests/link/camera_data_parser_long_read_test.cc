// Reads of real size, whose whole frames are taken from where they were read.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "tests/link/long_stream.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CameraDataParserLongReadTest : public testing::Test {
 protected:
  static Bytes payloadOf(const Bytes& frame) { return Bytes(frame.begin() + 6, frame.end()); }
  template <class... Frames>
  static std::vector<Bytes> payloadsOf(const Frames&... frames) {
    return {payloadOf(frames)...};
  }
  static Bytes firstBytes(const Bytes& bytes, std::size_t count) {
    return Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count));
  }
  static Bytes bytesFrom(const Bytes& bytes, std::size_t start) {
    return Bytes(bytes.begin() + static_cast<std::ptrdiff_t>(start), bytes.end());
  }

  std::vector<bool> fromTheRead() const {
    std::vector<bool> result;
    for (const Delivered& frame : reader.delivered) result.push_back(frame.fromTheRead);
    return result;
  }
  // What the consumer does inside the frame of that number, counted from 1.
  void atFrame(std::size_t number, std::function<void()> act) {
    reader.onFrame = [this, number, act = std::move(act)] {
      if (reader.delivered.size() == number) act();
    };
  }

  // Longer than the shortest read that is not copied, and different.
  const Bytes one = videoFrame(5000, 1);
  const Bytes two = videoFrame(5001, 2);
  const Bytes three = videoFrame(5002, 3);
  const Bytes badLength = bytes({5, 0, 0, 0, 1, 0});
  LongReader reader;
};

TEST_F(CameraDataParserLongReadTest, DeliversWholeFramesFromWhereTheyLie) {
  reader.read(join(one, two, three));
  EXPECT_EQ(reader.payloads(), payloadsOf(one, two, three));
  EXPECT_THAT(fromTheRead(), ElementsAre(true, true, true));
  EXPECT_THAT(reader.held(), IsEmpty());
  EXPECT_EQ(reader.statistics().bytesReceived, 15'003u);
}

TEST_F(CameraDataParserLongReadTest, BeginsAtFourThousandAndNinetySixBytes) {
  reader.read(videoFrame(4095, 1));
  reader.read(videoFrame(4096, 2));
  EXPECT_THAT(fromTheRead(), ElementsAre(false, true));
}

TEST_F(CameraDataParserLongReadTest, KeepsATailThatIsCutAtAnyByteOfTheHeaderAndBeside) {
  for (const std::size_t cut : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 2500u, 5000u}) {
    LongReader fresh;
    fresh.read(join(one, firstBytes(two, cut)));
    EXPECT_EQ(fresh.held(), firstBytes(two, cut)) << "cut at " << cut;
    fresh.read(join(bytesFrom(two, cut), three));
    EXPECT_EQ(fresh.payloads(), payloadsOf(one, two, three)) << "cut at " << cut;
    EXPECT_THAT(fresh.held(), IsEmpty()) << "cut at " << cut;
    EXPECT_TRUE(fresh.delivered[2].fromTheRead) << "cut at " << cut;
  }
}

TEST_F(CameraDataParserLongReadTest, CompletesATailWithShortReadsAsWell) {
  reader.read(join(one, firstBytes(two, 3)));
  reader.readAll(join(bytesFrom(two, 3), three), 1000);
  EXPECT_EQ(reader.payloads(), payloadsOf(one, two, three));
}

TEST_F(CameraDataParserLongReadTest, CopiesNoMoreThanTheFrameThatWasCut) {
  reader.read(join(one, firstBytes(two, 100)));
  reader.read(join(bytesFrom(two, 100), one, three));
  EXPECT_THAT(fromTheRead(), ElementsAre(true, false, true, true));
}

TEST_F(CameraDataParserLongReadTest, CopiesNoMoreThanTheFrameWhoseBeginningAShortReadBrought) {
  reader.read(firstBytes(one, 100));
  reader.read(join(bytesFrom(one, 100), two));
  EXPECT_THAT(fromTheRead(), ElementsAre(false, true));
}

TEST_F(CameraDataParserLongReadTest, DeliversHeldFramesBeforeTheReadsOwn) {
  const Bytes held = join(one, firstBytes(two, 3000));
  reader.parser.appendBytes(held.data(), held.size());
  reader.read(join(bytesFrom(two, 3000), three, three));
  EXPECT_EQ(reader.payloads(), payloadsOf(one, two, three, three));
  EXPECT_THAT(fromTheRead(), ElementsAre(false, false, true, true));
  EXPECT_THAT(reader.held(), IsEmpty());
}

TEST_F(CameraDataParserLongReadTest, GathersAFrameOverSeveralReadsAndCopiesNothingBehindIt) {
  const Bytes photo = frameOf(3, patterned(5'000'000, 9));
  const Bytes stream = join(one, photo, two, three);
  reader.readAll(stream, kReadBuffer);
  EXPECT_EQ(reader.payloads(), payloadsOf(one, photo, two, three));
  EXPECT_THAT(fromTheRead(), ElementsAre(true, false, true, true));
}

TEST_F(CameraDataParserLongReadTest, WaitsForMoreThanItsReadBringsAndLosesNothing) {
  reader.read(join(one, firstBytes(two, 10)));
  reader.read(Bytes());
  EXPECT_EQ(reader.held(), firstBytes(two, 10));
  reader.read(bytesFrom(two, 10));
  EXPECT_EQ(reader.payloads(), payloadsOf(one, two));
}

TEST_F(CameraDataParserLongReadTest, LosesThePositionBehindAFrameOfTheRead) {
  reader.read(join(one, badLength, two));
  EXPECT_EQ(reader.payloads(), payloadsOf(one));
  EXPECT_EQ(reader.link.positionsLost, 1);
  EXPECT_THAT(reader.held(), IsEmpty());
  EXPECT_TRUE(reader.parser.isNeedDataSynchronism());
}

TEST_F(CameraDataParserLongReadTest, LosesThePositionInWhatWasHeldAndDropsTheReadToo) {
  const Bytes held = join(one, badLength);
  reader.parser.appendBytes(held.data(), held.size());
  reader.read(join(two, three));
  EXPECT_EQ(reader.payloads(), payloadsOf(one));
  EXPECT_EQ(reader.link.positionsLost, 1);
  EXPECT_THAT(reader.held(), IsEmpty());
}

TEST_F(CameraDataParserLongReadTest, LosesThePositionInAHeaderThatTheReadCompletes) {
  reader.read(join(one, bytes({5, 0, 0})));
  reader.read(join(bytes({0, 1, 0}), two, three));
  EXPECT_EQ(reader.payloads(), payloadsOf(one));
  EXPECT_EQ(reader.link.positionsLost, 1);
  EXPECT_THAT(reader.held(), IsEmpty());
}

TEST_F(CameraDataParserLongReadTest, DropsTheRestWhereAConsumerClosesInsideAFrameOfTheRead) {
  atFrame(2, [this] { reader.parser.clearData(); });
  reader.read(join(one, two, three, firstBytes(one, 100)));
  EXPECT_EQ(reader.payloads(), payloadsOf(one, two));
  EXPECT_THAT(reader.held(), IsEmpty());
  reader.read(join(three, one));
  EXPECT_EQ(reader.delivered.size(), 4u);
  EXPECT_EQ(reader.delivered[2].payload, payloadOf(three));
}

TEST_F(CameraDataParserLongReadTest, DropsTheRestWhereAConsumerClosesInsideTheFrameThatTheReadCompletes) {
  atFrame(2, [this] { reader.parser.clearData(); });
  reader.read(join(one, firstBytes(two, 100)));
  reader.read(join(bytesFrom(two, 100), three, firstBytes(one, 100)));
  EXPECT_EQ(reader.payloads(), payloadsOf(one, two));
  EXPECT_THAT(reader.held(), IsEmpty());
}

TEST_F(CameraDataParserLongReadTest, DropsTheReadWhereAConsumerClosesInsideAFrameThatWasHeld) {
  atFrame(1, [this] { reader.parser.clearData(); });
  reader.parser.appendBytes(one.data(), one.size());
  reader.read(join(two, three));
  EXPECT_EQ(reader.payloads(), payloadsOf(one));
  EXPECT_THAT(reader.held(), IsEmpty());
}

TEST_F(CameraDataParserLongReadTest, LooksForTheMarkerWhereAConsumerReopens) {
  atFrame(1, [this] {
    reader.parser.clearData();
    reader.parser.setIsNeedDataSynchronism(true);
  });
  reader.read(join(one, two));
  reader.read(join(patterned(6000, 8), kMarker, two, firstBytes(three, 100)));
  EXPECT_FALSE(reader.parser.isNeedDataSynchronism());
  EXPECT_EQ(reader.payloads(), payloadsOf(one));
  reader.read(join(bytesFrom(three, 100), one));
  EXPECT_EQ(reader.payloads(), payloadsOf(one, two, three, one));
}

TEST_F(CameraDataParserLongReadTest, FindsAMarkerThatTwoReadsShare) {
  for (std::size_t cut = 1; cut < 10; ++cut) {
    LongReader fresh;
    fresh.parser.setIsNeedDataSynchronism(true);
    fresh.read(join(repeated(5000, 1), firstBytes(kMarker, cut)));
    fresh.read(join(bytesFrom(kMarker, cut), one));
    fresh.read(two);
    EXPECT_EQ(fresh.payloads(), payloadsOf(one, two)) << "cut at " << cut;
    EXPECT_EQ(fresh.statistics().bytesDiscarded, 5000u) << "cut at " << cut;
  }
}

// On both sides of what a session reads at once, and of what is copied.
TEST_F(CameraDataParserLongReadTest, DeliversTheSameForEverySizeOfReads) {
  Bytes stream;
  std::vector<Bytes> expected;
  std::uint32_t seed = 1;
  for (const std::size_t length :
       {6u, 7u, 4095u, 4096u, 4097u, 100'000u, 2'097'151u, 2'097'152u, 2'097'153u, 6u, 50u}) {
    const Bytes frame = videoFrame(length, seed++);
    expected.push_back(payloadOf(frame));
    stream = join(std::move(stream), frame);
  }
  for (const std::size_t size : {4095u, 4096u, 4097u, 65'536u, 2'097'151u, 2'097'152u, 2'097'153u}) {
    LongReader fresh;
    fresh.readAll(stream, size);
    EXPECT_TRUE(fresh.payloads() == expected) << "reads of " << size;
    EXPECT_THAT(fresh.held(), IsEmpty()) << "reads of " << size;
    EXPECT_EQ(fresh.statistics().bytesReceived, stream.size()) << "reads of " << size;
    EXPECT_EQ(fresh.link.received, 11) << "reads of " << size;
  }
}

}  // namespace
}  // namespace zel::test
