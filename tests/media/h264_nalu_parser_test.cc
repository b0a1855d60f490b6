#include "media/h264_nalu_parser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/media/nal_bytes.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class H264NaluParserTest : public testing::Test {
 protected:
  std::vector<Bytes> append(const Bytes& chunk) {
    return all(parser.AppendData(chunk.data(), static_cast<int>(chunk.size())));
  }
  static std::vector<Bytes> all(const orq::H264NaluParser::Units& units) {
    std::vector<Bytes> result;
    for (const auto& each : units) result.push_back(bytesOf(*each));
    return result;
  }
  // What is held back, which the next start code brings out.
  Bytes pending() { return append(unit({})).at(0); }

  orq::H264NaluParser parser;
};

const Bytes kParsedSps = unit({0x67, 1, 2});
const Bytes kParsedPps = unit({0x68, 3});
const Bytes kParsedIdr = unit({0x65, 4, 5, 6});

TEST_F(H264NaluParserTest, GivesAnEmptyUnitFirstAndHoldsTheLastBack) {
  EXPECT_THAT(append(join(kParsedSps, kParsedPps, kParsedIdr)), ElementsAre(Bytes(), kParsedSps, kParsedPps));
  EXPECT_THAT(append(kParsedSps), ElementsAre(kParsedIdr));
  EXPECT_THAT(append(join(kParsedPps, kParsedIdr)), ElementsAre(kParsedSps, kParsedPps));
}

TEST_F(H264NaluParserTest, GivesUnitsWithoutATimestamp) {
  parser.AppendData(kParsedIdr.data(), 8);
  EXPECT_EQ(parser.AppendData(kParsedIdr.data(), 8).at(0)->timestamp(), 0u);
}

TEST_F(H264NaluParserTest, HoldsAWholeChunkOfFourToEightBytesBack) {
  EXPECT_THAT(append(kParsedSps), ElementsAre(Bytes()));
  const Bytes two = join(unit({}), unit({}));  // eight bytes: the second start code is not looked for
  EXPECT_THAT(append(two), ElementsAre(kParsedSps));
  EXPECT_THAT(append(unit({})), ElementsAre(two));
  EXPECT_THAT(append(unit({7})), ElementsAre(unit({})));
}

TEST_F(H264NaluParserTest, CutsAChunkOfNineBytes) {
  EXPECT_THAT(append(join(unit({}), unit({9}))), ElementsAre(Bytes(), unit({})));
  EXPECT_EQ(pending(), unit({9}));
}

TEST_F(H264NaluParserTest, ContinuesTheUnitWithAChunkBelowFourBytes) {
  append(kParsedIdr);
  EXPECT_THAT(append(bytes({0})), IsEmpty());
  EXPECT_THAT(append(bytes({0, 0})), IsEmpty());
  EXPECT_THAT(append(bytes({3, 3, 3})), IsEmpty());
  EXPECT_EQ(pending(), join(kParsedIdr, bytes({0, 0, 0, 3, 3, 3})));
}

TEST_F(H264NaluParserTest, LeavesAStartCodeInAChunksLastFourBytesInsideTheUnit) {
  const Bytes chunk = join(unit({0x65, 1, 1, 1, 1}), unit({}));
  EXPECT_THAT(append(chunk), ElementsAre(Bytes()));
  EXPECT_EQ(pending(), chunk);
}

// Large units are cut while their room grows: 120 KiB, 240 KiB and so on.
TEST_F(H264NaluParserTest, CutsUnitsOfAnySizeAroundThoseOfItsRoom) {
  append(kParsedSps);
  Bytes last = kParsedSps;
  for (const std::size_t room : {122'880u, 245'760u, 491'520u}) {
    for (std::size_t size = room - 6; size <= room + 6; ++size) {
      const Bytes large = join(unit({0x65}), repeated(size - 5, 7));
      EXPECT_EQ(append(large), std::vector<Bytes>{last}) << size;
      EXPECT_EQ(append(join(large, kParsedPps, kParsedSps)), (std::vector<Bytes>{large, large, kParsedPps})) << size;
      last = kParsedSps;
    }
  }
}

TEST_F(H264NaluParserTest, FindsAStartCodeOneByteBeforeAChunksLastFour) {
  EXPECT_THAT(append(join(unit({0x65, 1, 1, 1}), unit({9}))), ElementsAre(Bytes(), unit({0x65, 1, 1, 1})));
}

TEST_F(H264NaluParserTest, OnlyGrowsWhereTheScannedRangeHoldsNoStartCode) {
  append(kParsedIdr);
  EXPECT_THAT(append(repeated(20, 7)), IsEmpty());
  EXPECT_EQ(parser.pendingSize(), 28);
  EXPECT_EQ(pending(), join(kParsedIdr, repeated(20, 7)));
}

TEST_F(H264NaluParserTest, NeverSplitsAtAStartCodeOfThreeBytes) {
  const Bytes chunk = unit({0x67, 0, 0, 1, 0x68, 0, 0, 1, 0x65, 1, 1, 1, 1});
  EXPECT_THAT(append(chunk), ElementsAre(Bytes()));
  EXPECT_THAT(append(bytes({5, 0, 0, 1, 0x41, 1, 1, 1, 1})), IsEmpty());
  EXPECT_EQ(pending(), join(chunk, bytes({5, 0, 0, 1, 0x41, 1, 1, 1, 1})));
}

// Held: 7 bytes, appended: 4. The start code at 6 is the last that is looked for; its first piece would begin at 7.
TEST_F(H264NaluParserTest, FindsAStartCodeAcrossTheSeamWithOneByteBehindIt) {
  append(unit({0x65, 1, 0}));
  EXPECT_THAT(append(bytes({0, 0, 1, 0x41})), ElementsAre(Bytes()));
  EXPECT_EQ(pending(), unit({0x41}));
}

TEST_F(H264NaluParserTest, LeavesAStartCodeAcrossTheSeamWithNothingBehindItInsideTheUnit) {
  append(unit({0x65, 1, 0}));
  EXPECT_THAT(append(bytes({0, 0, 1})), IsEmpty());
  EXPECT_EQ(pending(), unit({0x65, 1, 0, 0, 0, 1}));
}

// Held: 12 bytes, appended: 10. The look-back is 13, the scan begins at 9 and finds the start code at 14, and so the
// first piece is the one byte from 13 to 14.
TEST_F(H264NaluParserTest, BeginsTheFirstPieceOfAContinuationAtTheLookBack) {
  append(unit({0x65, 1, 2, 3, 4, 5, 6, 7}));
  EXPECT_THAT(append(bytes({8, 9, 0, 0, 0, 1, 0x41, 1, 2, 3})), ElementsAre(bytes({9})));
  EXPECT_EQ(pending(), unit({0x41, 1, 2, 3}));
}

// Held: 8 bytes, appended: 12. The look-back of 15 lies behind the start code at 10.
TEST_F(H264NaluParserTest, GivesAnEmptyPieceWhereTheLookBackLiesBehindTheStartCode) {
  append(unit({0x65, 1, 2, 3}));
  EXPECT_THAT(append(bytes({8, 9, 0, 0, 0, 1, 0x41, 1, 2, 3, 4, 5})), ElementsAre(Bytes()));
  EXPECT_EQ(pending(), unit({0x41, 1, 2, 3, 4, 5}));
}

// Held: 40 bytes, appended: 20. The look-back is 23; start codes stand at 44 and at 52.
TEST_F(H264NaluParserTest, CutsAtEveryStartCodeOfAContinuation) {
  append(join(unit({0x65}), repeated(35, 7)));
  const auto units = append(join(repeated(4, 7), unit({0x41, 1, 1, 1}), unit({0x41, 2, 2, 2})));
  EXPECT_THAT(units, ElementsAre(repeated(21, 7), unit({0x41, 1, 1, 1})));
  EXPECT_EQ(pending(), unit({0x41, 2, 2, 2}));
}

TEST_F(H264NaluParserTest, FindsAStartCodeThatStraddlesTheSeam) {
  for (int before = 1; before <= 3; ++before) {
    parser = {};
    append(join(unit({0x65}), repeated(15, 7), Bytes(static_cast<std::size_t>(before), 0)));
    Bytes rest = Bytes(static_cast<std::size_t>(3 - before), 0);
    rest = join(rest, bytes({1, 0x41, 1, 1, 1, 1}));
    // The look-back is the 3 bytes held and those appended.
    const auto lookBack = static_cast<std::ptrdiff_t>(3 + rest.size());
    const Bytes first = join(unit({0x65}), repeated(15, 7));
    EXPECT_THAT(append(rest), ElementsAre(Bytes(first.begin() + lookBack, first.end())));
    EXPECT_EQ(pending(), unit({0x41, 1, 1, 1, 1})) << before;
  }
}

TEST_F(H264NaluParserTest, KeepsGarbageBeforeTheFirstStartCode) {
  EXPECT_THAT(append(bytes({7, 7, 7, 7, 7})), IsEmpty());
  EXPECT_THAT(append(kParsedSps), ElementsAre(bytes({7, 7, 7, 7, 7})));
}

TEST_F(H264NaluParserTest, IgnoresNullAndCountsBelowOne) {
  append(kParsedSps);
  EXPECT_THAT(all(parser.AppendData(nullptr, 5)), IsEmpty());
  EXPECT_THAT(all(parser.AppendData(kParsedIdr.data(), 0)), IsEmpty());
  EXPECT_THAT(all(parser.AppendData(kParsedIdr.data(), -4)), IsEmpty());
  EXPECT_EQ(pending(), kParsedSps);
}

TEST_F(H264NaluParserTest, FindsNothingInAnEmptyPendingBuffer) {
  for (const int lookBack : {-2147483647 - 1, -1, 0, 3, 100, 2147483647}) {
    EXPECT_THAT(all(parser.ProcessBuffer(lookBack)), IsEmpty());
  }
}

TEST_F(H264NaluParserTest, RefersToNoBytesOfTheCallerAfterwards) {
  Bytes chunk = join(kParsedSps, kParsedPps, kParsedIdr);
  const auto units = parser.AppendData(chunk.data(), static_cast<int>(chunk.size()));
  std::ranges::fill(chunk, std::uint8_t{0xEE});
  EXPECT_THAT(all(units), ElementsAre(Bytes(), kParsedSps, kParsedPps));
  EXPECT_EQ(pending(), kParsedIdr);
}

// A chunk may hold millions of units, of which each takes many times its own bytes.
TEST_F(H264NaluParserTest, HasNoUnitInMemoryButTheOneThatIsTaken) {
  Bytes chunk;
  for (int number = 0; number < 1000; ++number) chunk = join(chunk, unit({0x41}));
  std::vector<std::weak_ptr<orq::MediaBuffer>> taken;
  std::size_t most = 0;
  const auto take = [&](const std::shared_ptr<orq::MediaBuffer>& each) {
    taken.push_back(each);
    const auto isThere = [](const auto& one) { return !one.expired(); };
    most = std::max(most, static_cast<std::size_t>(std::ranges::count_if(taken, isThere)));
  };
  parser.AppendData(chunk.data(), static_cast<int>(chunk.size()), take);
  EXPECT_EQ(taken.size(), 1000u);
  EXPECT_EQ(most, 1u);
}

TEST_F(H264NaluParserTest, HoldsNothingBackWhereTheTakerThrewAndGoesOnWithTheNextChunk) {
  append(kParsedSps);
  const Bytes chunk = join(kParsedPps, kParsedIdr);
  EXPECT_THROW(
      parser.AppendData(chunk.data(), static_cast<int>(chunk.size()), [](const auto&) { throw std::bad_alloc(); }),
      std::bad_alloc);
  EXPECT_EQ(parser.pendingSize(), 0);
  EXPECT_THAT(append(join(kParsedPps, kParsedIdr)), ElementsAre(Bytes(), kParsedPps));
}

TEST_F(H264NaluParserTest, DropsWhatGrowsBeyondASmallerUnitWhereThatWasSet) {
  parser.setLargestPending(100);
  append(join(kParsedSps, repeated(93, 7)));
  append(repeated(1, 7));
  EXPECT_EQ(parser.pendingSize(), 1);
}

TEST_F(H264NaluParserTest, DropsWhatGrowsBeyondAnyUnit) {
  append(kParsedSps);
  const Bytes block = repeated(1 << 20, 7);
  for (int i = 0; i < 63; ++i) append(block);
  EXPECT_EQ(parser.pendingSize(), (63 << 20) + 7);
  append(block);
  EXPECT_EQ(parser.pendingSize(), 1 << 20);
  EXPECT_THAT(append(kParsedSps), ElementsAre(block));
}

}  // namespace
}  // namespace zel::test
