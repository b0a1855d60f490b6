#include "simulator/faults.h"

#include <gmock/gmock.h>

namespace zel::simulator {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

class FaultsTest : public testing::Test {
 protected:
  bool add(const std::string& spec) { return faults.add(spec, error); }

  Faults faults;
  std::string error;
};

TEST_F(FaultsTest, TakesTheUsualValueWhereNoneIsGiven) {
  for (const char* spec : {"garbage", "stall", "length-zero", "length-4gib", "storm", "slow-sync"})
    EXPECT_TRUE(add(spec)) << error;
  EXPECT_EQ(faults.garbage, 1000u);
  EXPECT_EQ(faults.stall->seconds, 3.5);
  EXPECT_EQ(faults.stall->every, 10.0);
  EXPECT_EQ(faults.lengthZero, 1);
  EXPECT_EQ(faults.length4GiB, 1);
  EXPECT_EQ(faults.storm, 20);
  EXPECT_EQ(faults.slowSync, 50);
}

TEST_F(FaultsTest, TakesTheGivenValue) {
  for (const char* spec : {"garbage=7", "stall=1.5/2", "length-zero=3", "length-4gib=4", "storm=5", "slow-sync=6",
                           "disconnect=18446744073709551615"})
    EXPECT_TRUE(add(spec)) << error;
  EXPECT_EQ(faults.garbage, 7u);
  EXPECT_EQ(faults.stall->seconds, 1.5);
  EXPECT_EQ(faults.stall->every, 2.0);
  EXPECT_EQ(faults.lengthZero, 3);
  EXPECT_EQ(faults.length4GiB, 4);
  EXPECT_EQ(faults.storm, 5);
  EXPECT_EQ(faults.slowSync, 6);
  EXPECT_EQ(faults.disconnect, 18446744073709551615u);
}

TEST_F(FaultsTest, TurnsSwitchesOn) {
  for (const char* spec : {"one-byte-writes", "split", "unknown-types", "no-photo", "short-photo", "upload-fail",
                           "early-marker", "file-kinds", "unmatched-paths"})
    EXPECT_TRUE(add(spec)) << error;
  EXPECT_TRUE(faults.oneByteWrites && faults.split && faults.unknownTypes);
  EXPECT_TRUE(faults.noPhoto && faults.shortPhoto && faults.uploadFail);
  EXPECT_TRUE(faults.earlyMarker && faults.fileKinds && faults.unmatchedPaths);
}

TEST_F(FaultsTest, CollectsCodesInBothNotations) {
  for (const char* spec : {"no-reply=0x402E", "no-reply=7", "refuse=0X4001", "refuse=0xffff"}) EXPECT_TRUE(add(spec));
  EXPECT_THAT(faults.noReply, ElementsAre(7, 0x402E));
  EXPECT_THAT(faults.refuse, ElementsAre(0x4001, 0xFFFF));
}

TEST_F(FaultsTest, AimsAtOneRequestOrAtAll) {
  EXPECT_TRUE(add("short-reply=0x4001"));
  EXPECT_TRUE(faults.shortReply.contains(0x4001));
  EXPECT_FALSE(faults.shortReply.contains(0x4002));
  EXPECT_TRUE(add("duplicate-reply"));
  EXPECT_TRUE(faults.duplicateReply.contains(0x4002));
}

TEST_F(FaultsTest, AimsFlagsAndTrailingBytesAtOneRequestOrAtAll) {
  EXPECT_TRUE(add("high-flags=0x4001"));
  EXPECT_TRUE(add("trailing-bytes"));
  EXPECT_TRUE(faults.highFlags.contains(0x4001));
  EXPECT_FALSE(faults.highFlags.contains(0x4002));
  EXPECT_TRUE(faults.trailingBytes.contains(0x4002));
}

TEST_F(FaultsTest, NamesFilesOutsideAscii) {
  EXPECT_TRUE(add("utf8-names"));
  EXPECT_EQ(faults.nameLetters, "_\u00E9\u5317");
  EXPECT_TRUE(add("latin1-names"));
  EXPECT_EQ(faults.nameLetters, "_\xE9");
}

TEST_F(FaultsTest, ReadsWhichReplyIsLateAndByHowMuch) {
  EXPECT_TRUE(add("late-reply=0x4001/250"));
  EXPECT_TRUE(add("late-reply=7/1"));
  EXPECT_THAT(faults.lateReply, ElementsAre(Pair(7, 1), Pair(0x4001, 250)));
}

TEST_F(FaultsTest, RefusesAnUnknownNameAndSaysWhich) {
  EXPECT_FALSE(add("gremlins=2"));
  EXPECT_THAT(error, HasSubstr("gremlins=2"));
}

TEST_F(FaultsTest, RefusesValuesThatAreMissingMalformedOrOutOfRange) {
  for (const char* spec : {"",
                           "=",
                           "garbage=",
                           "garbage=0",
                           "garbage=-1",
                           "garbage=1x",
                           "garbage=100000001",
                           "split=1",
                           "stall=3601",
                           "stall=1/0.05",
                           "stall=nan",
                           "stall=1/",
                           "disconnect",
                           "disconnect=0",
                           "disconnect=18446744073709551616",
                           "no-reply",
                           "no-reply=0x",
                           "no-reply=0x10000",
                           "no-reply=65536",
                           "refuse=-1",
                           "refuse=0x-1",
                           "late-reply=0x4001",
                           "late-reply=0x4001/0",
                           "late-reply=/5",
                           "late-reply=0x4001/3600001",
                           "no-photo=1",
                           "high-flags=none",
                           "trailing-bytes=",
                           "utf8-names=1",
                           "latin1-names=1",
                           "early-marker=1",
                           "file-kinds=3",
                           "unmatched-paths=x",
                           "short-reply=none"})
    EXPECT_FALSE(add(spec)) << spec;
}

TEST_F(FaultsTest, HelpNamesEveryFault) {
  for (const char* name : {"garbage",        "one-byte-writes", "split",           "stall",        "unknown-types",
                           "length-zero",    "length-4gib",     "disconnect",      "storm",        "slow-sync",
                           "no-reply",       "refuse",          "duplicate-reply", "short-reply",  "late-reply",
                           "no-photo",       "short-photo",     "upload-fail",     "early-marker", "high-flags",
                           "trailing-bytes", "utf8-names",      "latin1-names",    "file-kinds",   "unmatched-paths"})
    EXPECT_THAT(kFaultHelp, HasSubstr("\n  " + std::string(name)));
}

}  // namespace
}  // namespace zel::simulator
