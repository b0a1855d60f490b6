#include "capture/zel_ucd_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <string>
#include <vector>

#include "platform/simulated/simulated_platform.h"
#include "tests/link/bytes.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

Bytes pathField(std::string_view path) {
  Bytes field = text(path);
  field.resize(64);
  return field;
}

// The camera's answer: two bytes that nobody reads, kind, status, path.
Bytes reply(int kind, int status, const Bytes& path) { return join(bytes({9, 9, kind, 0, status, 0}), path); }

class ZELUCDFileTest : public testing::Test {
 protected:
  RebackBlock<> into(const std::string& who) {
    return [this, who](const std::optional<ZELError>& error) {
      log.push_back(who + (error ? " " + std::to_string(error->code) : " done"));
    };
  }
  void send(const std::string& path, const std::string& who) { file.sendFileWithType(1, path, ZELData(), into(who)); }

  platform::SimulatedPlatform host;
  std::vector<Bytes> written;
  std::function<void()> onWrite = [] {};
  ZELUCDFile file{[this](const ZELData& data) {
                    written.emplace_back(data.bytes().begin(), data.bytes().end());
                    onWrite();
                  },
                  host.ports().queues.mainQueue()};
  std::vector<std::string> log;
};

TEST_F(ZELUCDFileTest, SendsTheWholeFileInOneFrame) {
  file.sendFileWithType(0x10302, "a.jpg", ZELData(bytes({1, 2, 3})), into("a"));
  EXPECT_THAT(written, ElementsAre(join(bytes({77, 0, 0, 0,  // length: 74 and the file
                                               9, 0,         // data type: file
                                               2, 3,         // the type's low 16 bits
                                               0, 0}),       // reserved
                                        pathField("a.jpg"), bytes({1, 2, 3}))));
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(ZELUCDFileTest, CutsADriveOffThePathAndTheKey) {
  send("C:/photos/a.jpg", "a");
  EXPECT_EQ(Bytes(written[0].begin() + 10, written[0].begin() + 74), pathField("photos/a.jpg"));
  file.parserUCD(reply(2, 0, pathField("photos/a.jpg")));
  EXPECT_THAT(log, ElementsAre("a done"));
}

TEST_F(ZELUCDFileTest, CutsThreeCharactersWhereverTheDriveStands) {
  const std::pair<const char*, const char*> kPaths[] = {
      {"x/C:/a", ":/a"}, {"C:\\a", "a"}, {"c:\\a", "a"}, {"c:/a", "a"}, {"D:/a", "D:/a"}, {"\xC3\xA9xyC:/a", "C:/a"}};
  for (const auto& [path, sent] : kPaths) {
    written.clear();
    send(path, "a");
    EXPECT_EQ(Bytes(written[0].begin() + 10, written[0].begin() + 74), pathField(sent)) << path;
  }
}

TEST_F(ZELUCDFileTest, KeepsNoHandlerForAPathThatNormalisesToNothing) {
  for (const char* path : {"C:/", "c:\\", ""}) {
    send(path, "nobody");
    EXPECT_EQ(Bytes(written.back().begin() + 10, written.back().end()), Bytes(64)) << path;
  }
  send("b", "b");
  file.parserUCD(reply(2, 1, pathField("")));
  file.replyAllBlockWithErrorCode(100);
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("b 101"));
}

TEST_F(ZELUCDFileTest, SendsTheFirstSixtyFourBytesOfALongPath) {
  send(std::string(70, 'p'), "a");
  EXPECT_EQ(Bytes(written[0].begin() + 10, written[0].end()), Bytes(64, 'p'));
}

TEST_F(ZELUCDFileTest, AnswersALongPathThroughTheReplyThatNamesNobody) {
  send(std::string(70, 'p'), "a");
  file.parserUCD(reply(2, 0, Bytes(64, 'p')));
  EXPECT_THAT(log, IsEmpty());  // on the main queue
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("a done"));
}

// The field of the reply has no zero at its end then.
TEST_F(ZELUCDFileTest, MatchesAPathOfExactlySixtyFourBytes) {
  send(std::string(64, 'p'), "a");
  send("b", "b");
  file.parserUCD(reply(2, 0, Bytes(64, 'p')));
  EXPECT_THAT(log, ElementsAre("a done"));
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("a done"));
}

TEST_F(ZELUCDFileTest, ReadsAPathNoFurtherThanTheReply) {
  send("ab", "short");
  send("abc", "long");
  const Bytes whole = reply(2, 0, text("abc"));
  file.parserUCD(ByteView(whole).first(8));
  EXPECT_THAT(log, ElementsAre("short done"));
}

TEST_F(ZELUCDFileTest, ReadsAPathNoFurtherThanItsField) {
  send(std::string(64, 'p'), "a");
  file.parserUCD(reply(2, 0, join(Bytes(64, 'p'), text("q"))));
  EXPECT_THAT(log, ElementsAre("a done"));
}

TEST_F(ZELUCDFileTest, AnswersAMatchedPathAtOnceOnTheSessionThread) {
  send("a", "a");
  send("b", "b");
  file.parserUCD(reply(2, 0, pathField("b")));
  EXPECT_THAT(log, ElementsAre("b done"));
  file.parserUCD(reply(2, 1, pathField("a")));
  EXPECT_THAT(log, ElementsAre("b done", "a 101"));
}

TEST_F(ZELUCDFileTest, TakesAnyStatusButOneForSuccess) {
  send("a", "a");
  file.parserUCD(join(bytes({0, 0, 2, 0, 1, 1}), pathField("a")));  // status 0x0101
  EXPECT_THAT(log, ElementsAre("a done"));
}

TEST_F(ZELUCDFileTest, AnswersOnlyTheSecondOfTwoWithTheSamePath) {
  send("a", "first");
  send("a", "second");
  file.parserUCD(reply(2, 0, pathField("a")));
  file.parserUCD(reply(2, 0, pathField("a")));
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("second done"));
}

TEST_F(ZELUCDFileTest, IgnoresAReplyOfAnotherKind) {
  send("a", "a");
  file.parserUCD(reply(3, 1, pathField("a")));
  file.parserUCD(join(bytes({0, 0, 2, 1, 0, 0}), pathField("a")));  // kind 0x0102
  host.runUntilIdle();
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(ZELUCDFileTest, ReportsSuccessToEverybodyForAReplyOfSixBytes) {
  send("a", "a");
  send("b", "b");
  file.parserUCD(bytes({0, 0, 2, 0, 0, 0}));
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("a done", "b done"));
}

TEST_F(ZELUCDFileTest, FailsEverybodyForAReplyOfFiveBytes) {
  send("a", "a");
  file.parserUCD(bytes({0, 0, 2, 0, 0}));
  EXPECT_THAT(log, IsEmpty());
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("a 101"));
}

TEST_F(ZELUCDFileTest, FailsEverybodyForAFailureThatNamesNobody) {
  send("a", "a");
  file.parserUCD(reply(2, 1, pathField("other")));
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("a 101"));
}

TEST_F(ZELUCDFileTest, FailsEverybodyOnceWhereTheConnectionIsLost) {
  send("a", "a");
  file.replyAllBlockWithErrorCode(100);
  file.replyAllBlockWithErrorCode(100);
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("a 100"));
}

TEST_F(ZELUCDFileTest, KeepsNoHandlerWithoutAPath) {
  file.sendFileWithType(1, std::nullopt, ZELData(bytes({1})), into("a"));
  file.replyAllBlockWithErrorCode(100);
  host.runUntilIdle();
  EXPECT_EQ(written.size(), 1u);
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(ZELUCDFileTest, SendsAFileForWhoseReplyNobodyWaits) {
  file.sendFileWithType(1, "a", ZELData(bytes({5})), nullptr);
  EXPECT_THAT(written, ElementsAre(join(bytes({75, 0, 0, 0, 9, 0, 1, 0, 0, 0}), pathField("a"), bytes({5}))));
}

// The longest frame is one of 0xFFFFFFFF bytes, of which 74 stand before the file.
TEST(ZELUCDFileSize, FitsAFrameUpTo4294967221Bytes) {
  EXPECT_TRUE(ZELUCDFile::fitsAFrame(0));
  EXPECT_TRUE(ZELUCDFile::fitsAFrame(4'294'967'221));
  EXPECT_FALSE(ZELUCDFile::fitsAFrame(4'294'967'222));
}

TEST_F(ZELUCDFileTest, RefusesAFileForWhichThereIsNoMemoryOnTheMainQueue) {
  onWrite = [] { throw std::bad_alloc(); };
  send("a", "a");
  EXPECT_THAT(log, IsEmpty());
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("a 101"));
}

// A reply that names a file for which nobody waits completes all the others.
TEST_F(ZELUCDFileTest, ExpectsNoReplyToAFileForWhichThereWasNoMemory) {
  send("b", "b");
  onWrite = [] { throw std::bad_alloc(); };
  send("a", "a");
  file.parserUCD(reply(2, 0, pathField("a")));
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("a 101", "b done"));
}

TEST_F(ZELUCDFileTest, LosesNoAnswerThatComesBeforeTheHandlerIsStored) {
  onWrite = [&] { file.parserUCD(reply(2, 1, pathField("a"))); };
  send("a", "a");
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("a 101"));
}

TEST_F(ZELUCDFileTest, KeepsAnEarlyAnswerFromOthersThatWait) {
  send("b", "b");
  onWrite = [&] { file.parserUCD(reply(2, 1, pathField("a"))); };
  send("a", "a");
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("a 101"));
}

TEST_F(ZELUCDFileTest, GivesAnEarlyAnswerToTheHandlerThatStillWaits) {
  send("a", "first");
  onWrite = [&] { file.parserUCD(reply(2, 0, pathField("a"))); };
  send("a", "second");
  EXPECT_THAT(log, ElementsAre("first done"));
  file.parserUCD(reply(2, 0, pathField("a")));
  EXPECT_THAT(log, ElementsAre("first done", "second done"));
}

TEST_F(ZELUCDFileTest, FailsATransferThatIsCaughtBetweenWritingAndStoring) {
  onWrite = [&] { file.replyAllBlockWithErrorCode(100); };
  send("a", "a");
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("a 100"));
}

TEST_F(ZELUCDFileTest, AnswersALongPathThatIsCaughtBetweenWritingAndStoring) {
  onWrite = [&] { file.parserUCD(reply(2, 0, Bytes(64, 'p'))); };
  send(std::string(70, 'p'), "a");
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("a done"));
}

}  // namespace
}  // namespace zel::test
