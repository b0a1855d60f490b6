#include <ZELTarkaSDK/ZELDateFormatter.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <ZELTarkaSDK/platform/documents.h>

#include "platform/simulated/simulated_platform.h"

namespace zel {
namespace {

constexpr double kMarch2 = 731'063'103.007;  // 2 March 2024 09:05:03.007 UTC, in seconds since 1 January 2001

// A device whose clock stands still, in a zone of its own.
class Device final : public platform::Clock {
 public:
  double absoluteTime() const override { return now; }
  void sleepFor(double) override {}
  std::int64_t localTimeOffset(double) const override { return offset; }

  double now = kMarch2;
  std::int64_t offset = 0;
};

class Folder final : public platform::Documents {
 public:
  std::string folder() override { return path; }
  std::string path;
};

class ZELDateFormatterTest : public testing::Test {
 protected:
  ZELDateFormatterTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "zel-documents-XXXXXX").string();
    documents.path = ::mkdtemp(pattern.data());
  }
  ~ZELDateFormatterTest() override { std::filesystem::remove_all(documents.path); }

  std::string currentTime() { return ZELDateFormatter(device, "").getCurrentTime(); }

  platform::Ports ports() {
    platform::Ports ports = host.ports();
    ports.documents = &documents;
    return ports;
  }

  std::string log() const {
    std::ifstream stream(documents.path + "/log.txt", std::ios::binary);
    return stream ? std::string(std::istreambuf_iterator<char>(stream), {}) : "no file";
  }

  platform::SimulatedPlatform host;
  Device device;
  Folder documents;
};

TEST_F(ZELDateFormatterTest, PutsAColonBeforeTheMilliseconds) { EXPECT_EQ(currentTime(), "2024-03-02 09:05:03:007"); }

TEST_F(ZELDateFormatterTest, TellsTheTimeOfTheDevicesZone) {
  device.offset = -5 * 3600;
  EXPECT_EQ(currentTime(), "2024-03-02 04:05:03:007");
  device.offset = 20'700;  // 5 h 45 min
  EXPECT_EQ(currentTime(), "2024-03-02 14:50:03:007");
}

TEST_F(ZELDateFormatterTest, TellsATimeAsTheZoneStoodThen) {
  // An hour ahead from one second after the epoch on.
  class SummerTime final : public platform::Clock {
   public:
    double absoluteTime() const override { return kMarch2; }
    void sleepFor(double) override {}
    std::int64_t localTimeOffset(double date) const override { return date < 1 ? 0 : 3600; }
  };
  const SummerTime clock;
  ZELDateFormatter formatter(clock, "");
  formatter.setDateFormat("HH:mm:ss");
  EXPECT_EQ(formatter.stringFromDate(0), "00:00:00");
  EXPECT_EQ(formatter.stringFromDate(1), "01:00:01");
}

TEST_F(ZELDateFormatterTest, ChangesTheDayWithTheZone) {
  device.offset = -10 * 3600;
  EXPECT_EQ(currentTime(), "2024-03-01 23:05:03:007");
  device.offset = 15 * 3600;
  EXPECT_EQ(currentTime(), "2024-03-03 00:05:03:007");
}

TEST_F(ZELDateFormatterTest, CutsTheMillisecondsOff) {
  device.now = 731'063'103.9999;
  EXPECT_EQ(currentTime(), "2024-03-02 09:05:03:999");
  device.now = 731'063'103.0;
  EXPECT_EQ(currentTime(), "2024-03-02 09:05:03:000");
}

TEST_F(ZELDateFormatterTest, TellsEachMillisecondOfASecond) {
  for (int millisecond = 0; millisecond < 1000; ++millisecond) {
    device.now = 731'063'103 + millisecond / 1000.0;
    EXPECT_EQ(std::stoi(currentTime().substr(20)), millisecond);
  }
}

// Times one million, this is 1000999.9999999999 as a double.
TEST_F(ZELDateFormatterTest, TellsAMillisecondThatADoubleFallsJustShortOf) {
  device.now = 1.001;
  EXPECT_EQ(currentTime(), "2001-01-01 00:00:01:001");
}

TEST_F(ZELDateFormatterTest, KnowsLeapDaysAndTheTimeBeforeItsEpoch) {
  device.now = 730'943'999.0;
  EXPECT_EQ(currentTime(), "2024-02-29 23:59:59:000");
  device.now = -0.001;
  EXPECT_EQ(currentTime(), "2000-12-31 23:59:59:999");
}

TEST_F(ZELDateFormatterTest, KeepsTheFormatThatTheTimeSet) {
  ZELDateFormatter formatter(device, "");
  EXPECT_EQ(formatter.dateFormat(), "");
  formatter.setDateFormat("HH");
  EXPECT_EQ(formatter.getCurrentTime(), "2024-03-02 09:05:03:007");
  EXPECT_EQ(formatter.dateFormat(), "yyyy-MM-dd HH:mm:ss:SSS");
}

TEST_F(ZELDateFormatterTest, WritesATimeInTheFormatOfTheHost) {
  ZELDateFormatter formatter(device, "");
  formatter.setDateFormat("d.M.y, H:mm:ss.S");
  EXPECT_EQ(formatter.stringFromDate(kMarch2 + 0.2), "2.3.2024, 9:05:03.2");
  formatter.setDateFormat("SSSSSSSS");
  EXPECT_EQ(formatter.stringFromDate(kMarch2), "00700000");
}

TEST_F(ZELDateFormatterTest, MakesTheLogInTheDocumentsFolderAndAppendsToIt) {
  ZELDateFormatter formatter(ports());
  formatter.writeLogToFile("first\n", 6);
  EXPECT_EQ(log(), "first\n");
  formatter.writeLogToFile("second, cut", 6);
  EXPECT_EQ(log(), "first\nsecond");
}

TEST_F(ZELDateFormatterTest, MakesAnEmptyLogOfNoBytes) {
  ZELDateFormatter(ports()).writeLogToFile(nullptr, 0);
  EXPECT_EQ(log(), "");
}

TEST_F(ZELDateFormatterTest, LeavesTheLogAsItIsForNoBytes) {
  ZELDateFormatter formatter(ports());
  formatter.writeLogToFile("first", 5);
  formatter.writeLogToFile("", 0);
  EXPECT_EQ(log(), "first");
}

TEST_F(ZELDateFormatterTest, LosesWhatIsWrittenWithoutADocumentsFolder) {
  ZELDateFormatter(host.ports()).writeLogToFile("lost", 4);  // its platform keeps no documents
  std::filesystem::remove(documents.path);
  ZELDateFormatter(ports()).writeLogToFile("lost", 4);
  documents.path.clear();
  ZELDateFormatter(ports()).writeLogToFile("lost", 4);
  EXPECT_FALSE(std::filesystem::exists("/log.txt"));
}

TEST_F(ZELDateFormatterTest, LosesBytesThatAreNowhere) {
  ZELDateFormatter(ports()).writeLogToFile(nullptr, 4);
  EXPECT_EQ(log(), "no file");
}

TEST_F(ZELDateFormatterTest, WritesToTheFileThatItWasMadeFor) {
  ZELDateFormatter(device, documents.path + "/log.txt").writeLogToFile("mine", 4);
  EXPECT_EQ(log(), "mine");
}

}  // namespace
}  // namespace zel
