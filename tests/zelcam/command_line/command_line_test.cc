#include "apps/zelcam/command_line/command_line.h"

#include <gmock/gmock.h>

#include "tests/zelcam/zelcam_test.h"

namespace zel::test {
namespace {

class CommandLineTest : public ZelcamTest {
 protected:
  std::string complaint(const Arguments& arguments) const {
    Process host(zelcamProgram(), arguments, folder.path());
    EXPECT_EQ(host.wait(), 2);
    return host.errors();
  }
};

TEST_F(CommandLineTest, NamesTheWordThatIsNoCommand) {
  EXPECT_EQ(complaint({"photos", "-o", "x"}),
            "zelcam: there is no command \"photos\"\n\"zelcam --help\" tells what it takes\n");
}

TEST_F(CommandLineTest, MissesACommand) {
  EXPECT_EQ(complaint({}), "zelcam: a command is missing\n\"zelcam --help\" tells what it takes\n");
}

TEST_F(CommandLineTest, ANumberIsFinite) {
  for (const char* number : {"nan", "-nan", "inf", "infinity", "1e999"}) {
    EXPECT_THAT(complaint({"--timeout", number, "info"}), testing::HasSubstr("is not a number from 0 to 86400"))
        << number;
    EXPECT_THAT(complaint({"monitor", "--seconds", number}), testing::HasSubstr("is not a number from 0 to")) << number;
    EXPECT_THAT(complaint({"photo", "--gps", std::string("1,2,") + number}),
                testing::HasSubstr("--gps takes 3 numbers"))
        << number;
  }
}

TEST_F(CommandLineTest, SendsToTheHelpOfTheCommandThatWasUsedWrongly) {
  EXPECT_EQ(complaint({"photo", "--extras"}),
            "zelcam: photo: The following argument was not expected: --extras\n"
            "\"zelcam photo --help\" tells what it takes\n");
  EXPECT_EQ(complaint({"record"}),
            "zelcam: record: ACTION is required\n\"zelcam record --help\" tells what it takes\n");
}

}  // namespace
}  // namespace zel::test
