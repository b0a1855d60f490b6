#include <gmock/gmock.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "gateway/json/printable.h"
#include "tests/zelcam/zelcam_test.h"

namespace zel::test {
namespace {

using testing::HasSubstr;

// Texts that come from outside and that a terminal might obey: the escape of colours, U+009B, and U+202E, which turns
// the writing round.
constexpr char kName[] =
    "E1\x1b[31m\xC2\x9B"
    "31m\xE2\x80\xAE"
    "360";
constexpr char kShownName[] = "E1?[31m?31m?360";

class TerminalTest : public ZelcamTest {
 protected:
  void SetUp() override {
    std::filesystem::create_directory(bus());
    ::chmod(bus().c_str(), 0700);
  }

  // An accessory that nobody can connect to.
  void attach(const std::string& file, std::uint64_t connection, const std::string& serial) const {
    const Json accessory = {{"connectionID", connection},
                            {"manufacturer", "Example"},
                            {"name", kName},
                            {"modelNumber", "E1"},
                            {"serialNumber", serial},
                            {"firmwareRevision", "E1_2.0.1_192"},
                            {"hardwareRevision", "1.0"},
                            {"protocolStrings", {"com.zelcam.ucd"}},
                            {"dockType", "usb"},
                            {"endpoint", {{"type", "unix"}, {"path", "/nowhere"}}}};
    std::ofstream(bus() + "/" + file) << accessory;
  }

  // Both streams, line by line.
  std::string shown(Arguments arguments) const {
    const auto host = zelcam(std::move(arguments));
    host->wait();
    std::string text = host->output() + host->errors();
    std::string lines = text;
    std::erase(lines, '\n');
    EXPECT_EQ(gateway::printable(lines), lines);
    return text;
  }
};

TEST_F(TerminalTest, ObeysNoAccessory) {
  attach("one.json", 1, kName);
  EXPECT_THAT(shown({"devices"}), HasSubstr(std::string("  name              ") + kShownName));
  EXPECT_THAT(shown({"--camera", "other", "--timeout", "0.1", "info"}), HasSubstr(std::string("  ") + kShownName));
}

TEST_F(TerminalTest, ObeysNoNameOfAFile) {
  std::ofstream(bus() + "/\x1b[31m\xC2\x9B.json") << "{";
  EXPECT_THAT(shown({"devices"}), HasSubstr("?[31m?.json skipped"));
}

TEST_F(TerminalTest, ObeysNoCommandLine) {
  EXPECT_THAT(shown({"--camera", kName, "--timeout", "0.1", "info"}),
              HasSubstr(std::string("no camera with the serial number ") + kShownName));
  EXPECT_THAT(shown({kName}), HasSubstr(std::string("there is no command \"") + kShownName));
  EXPECT_THAT(shown({"offset", "--record", "zz", "--\x1b[31m"}), HasSubstr("--?[31m"));
}

TEST_F(TerminalTest, GetsJsonThatMeansTheSame) {
  attach("one.json", 1, "ONE");
  const std::string text = shown({"--json", "devices"});
  EXPECT_THAT(text, HasSubstr(R"(E1\u001b[31m\u009b31m\u202e360)"));
  EXPECT_EQ(Json::parse(text)["name"], kName);
}

// -- several cameras

TEST_F(TerminalTest, SeesWhichOfSeveralCamerasIsUsed) {
  const auto one = simulator({"--serial", "ONE"}), two = simulator({"--serial", "TWO"});
  const auto host = zelcam({"--timeout", "30", "record", "start"});
  ASSERT_EQ(host->wait(), 0) << host->errors();
  EXPECT_THAT(host->errors(), testing::ContainsRegex("2 cameras are attached, and (ONE|TWO) is used; --camera takes"));
  EXPECT_THAT(host->errors(), HasSubstr("\n  ONE  "));
  EXPECT_THAT(host->errors(), HasSubstr("\n  TWO  "));
  const auto chosen = zelcam({"--camera", "TWO", "--timeout", "30", "info"});
  ASSERT_EQ(chosen->wait(), 0) << chosen->errors();
  EXPECT_EQ(chosen->errors(), "");
}

// -- standard output that takes nothing

TEST_F(TerminalTest, FailsWhereItCannotPrint) {
  for (const char* command : {"--help", "--version", "--describe man", "call --list", "offset 2_1", "info --help"}) {
    Process host("/bin/sh", {"-c", "exec \"$0\" " + std::string(command) + " > /dev/full", zelcamProgram()},
                 folder.path());
    EXPECT_EQ(host.wait(), 1) << command;
    EXPECT_EQ(host.errors(), "zelcam: cannot write standard output: No space left on device\n") << command;
  }
}

TEST_F(TerminalTest, WhatGoesOnForEverEndsWhereItCannotPrint) {
  const auto camera = simulator();
  Process host("/bin/sh",
               {"-c", "exec \"$0\" --accessories \"$1\" devices --watch > /dev/full", zelcamProgram(), bus()},
               folder.path());
  EXPECT_EQ(host.wait(), 1);
}

TEST_F(TerminalTest, AReaderThatHasGoneIsNoFault) {
  Process host("/bin/bash", {"-c", "\"$0\" call --list | true; exit ${PIPESTATUS[0]}", zelcamProgram()}, folder.path());
  EXPECT_EQ(host.wait(), 0) << host.errors();
}

}  // namespace
}  // namespace zel::test
