#include "tests/bindings/c/calls.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <utility>

#include "tests/bindings/c/open_camera.h"

namespace zel::test {
namespace {

constexpr std::uint16_t kBattery = 0x4001, kSetWhiteBalance = 0x401A;

class CCallsTest : public OpenCamera {};

TEST_F(CCallsTest, RequestsOfEveryShapeGiveTheirResults) { EXPECT_STREQ(requests_of_every_shape(open()), nullptr); }
TEST_F(CCallsTest, RecordsComeBackAsTheyWereSet) { EXPECT_STREQ(records_come_back(open()), nullptr); }
TEST_F(CCallsTest, ARecordingTellsItsNameAndWhatItWasGiven) {
  EXPECT_STREQ(a_recording_tells_its_name(open()), nullptr);
}
TEST_F(CCallsTest, TellsWhichCameraItIs) { EXPECT_STREQ(the_identity(open()), nullptr); }

TEST_F(CCallsTest, WrongArgumentsAreRefusedInWords) { EXPECT_STREQ(wrong_arguments(open()), nullptr); }
TEST_F(CCallsTest, WrongHandlesAreRefusedInWords) { EXPECT_STREQ(wrong_handles(open()), nullptr); }
TEST_F(CCallsTest, WrongSizesAreRefusedInWords) { EXPECT_STREQ(wrong_sizes(open()), nullptr); }
TEST_F(CCallsTest, StructsOfLaterVersionsAreUnderstood) { EXPECT_STREQ(later_versions(open()), nullptr); }
TEST_F(CCallsTest, CallsAfterTheCloseAreToldSo) { EXPECT_STREQ(calls_after_close(open()), nullptr); }

TEST_F(CCallsTest, APhotoComesWithWhatItIsStoredAs) { EXPECT_STREQ(photos(open()), nullptr); }
TEST_F(CCallsTest, APhotoInALoopOfOnesOwnTellsItsProgressThere) {
  EXPECT_STREQ(photos(open({.isDispatched = true})), nullptr);
}
TEST_F(CCallsTest, ABracketComesWithAllItsPictures) { EXPECT_STREQ(brackets(open()), nullptr); }
TEST_F(CCallsTest, AnUploadTellsItsProgress) { EXPECT_STREQ(uploads(open()), nullptr); }
TEST_F(CCallsTest, AnUploadInALoopOfOnesOwnTellsItsProgressThere) {
  EXPECT_STREQ(uploads(open({.isDispatched = true})), nullptr);
}
TEST_F(CCallsTest, APictureOutlivesTheCamera) { EXPECT_STREQ(pictures_outlive_the_camera(open()), nullptr); }
TEST_F(CCallsTest, AStreamGivesPacketsToSubscribersAndOutputs) {
  const std::string first = folder_.path() + "-first.mp4", second = folder_.path() + "-second.ts";
  EXPECT_STREQ(streams(open(), first.c_str(), second.c_str()), nullptr);
  EXPECT_GT(std::filesystem::file_size(first), 10'000u);
  EXPECT_GT(std::filesystem::file_size(second), 10'000u);
}
TEST_F(CCallsTest, AStreamOutlivesTheCameraAndIsClosed) { EXPECT_STREQ(a_stream_after_close(open()), nullptr); }

TEST_F(CCallsTest, TellsARefusalWithTheCamerasCode) {
  simulator::Faults faults;
  faults.refuse = {kSetWhiteBalance};
  zel_camera* const camera = open({.faults = faults});
  zel_error error{};
  error.size = sizeof error;
  EXPECT_EQ(zel_set_white_balance(camera, 2, 0, &error), ZEL_REFUSED);
  EXPECT_EQ(error.status, ZEL_REFUSED);
  EXPECT_EQ(error.code, 101);
  EXPECT_STREQ(error.domain, "NSOSStatusErrorDomain");
  EXPECT_STREQ(error.message, "setWhiteBalance: the camera refused, or its answer cannot be read");
}

TEST_F(CCallsTest, EndsARequestWithoutAnAnswerInTime) {
  simulator::Faults faults;
  faults.noReply = {kBattery};
  zel_camera* const camera = open({.faults = faults});
  zel_battery_result battery{};
  battery.size = sizeof battery;
  EXPECT_EQ(zel_battery(camera, 20, &battery, nullptr), ZEL_TIME_LIMIT);
}

TEST_F(CCallsTest, TellsWhereItLookedForACameraThatIsNotThere) {
  zel_options options = this->options({});
  options.open_time_limit = 50;
  zel_camera* camera = nullptr;
  zel_error error{};
  error.size = sizeof error;
  EXPECT_EQ(zel_open(&options, &camera, &error), ZEL_NO_CAMERA);
  EXPECT_EQ(error.message, "no camera was attached in time; looked in " + folder_.path());
  EXPECT_EQ(camera, nullptr);
}

TEST_F(CCallsTest, CutsASentenceThatIsTooLongAtAWholeCharacter) {
  zel_options options = this->options({});
  options.open_time_limit = 1;
  std::string serial;
  while (serial.size() < 1000) serial += "\xC3\xA9";  // two bytes each
  options.serial_number = serial.c_str();
  zel_camera* camera = nullptr;
  zel_error error{};
  error.size = sizeof error;
  EXPECT_EQ(zel_open(&options, &camera, &error), ZEL_NO_CAMERA);
  const std::string said = error.message;
  // "no camera " is ten bytes; 511 fit, so that the last character would be cut in two.
  EXPECT_EQ(said.size(), 510u);
  EXPECT_EQ(said, "no camera " + serial.substr(0, 500));
}

}  // namespace
}  // namespace zel::test
