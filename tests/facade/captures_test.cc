#include <ZELTarkaSDK/Camera.h>
#include <gmock/gmock.h>

#include <fstream>
#include <iterator>

#include "tests/facade/bus_camera.h"

namespace zel::test {
namespace {

using Reason = CameraError::Reason;
using std::chrono::milliseconds;

class CapturesTest : public BusCamera {};

bool isJpeg(const ZELData& data) {
  const auto bytes = data.bytes();
  return bytes.size() > 1000 && bytes[0] == 0xFF && bytes[1] == 0xD8 && bytes[bytes.size() - 2] == 0xFF &&
         bytes[bytes.size() - 1] == 0xD9;
}

TEST_F(CapturesTest, APhotoComesWithWhatItIsStoredAs) {
  attach();
  Camera camera = opened();
  const auto photo = camera.photo().get();
  ASSERT_TRUE(photo) << photo.error().message;
  EXPECT_TRUE(isJpeg(photo->jpeg));
  EXPECT_EQ(photo->stored.sizeBytes, photo->jpeg.size());
  EXPECT_EQ(photo->name, photo->stored.name);
  EXPECT_TRUE(photo->name->ends_with(".jpg")) << *photo->name;
}

TEST_F(CapturesTest, PhotosAndBracketsWaitForEachOther) {
  attach();
  Camera camera = opened();
  auto first = camera.photo();
  auto series = camera.bracket({-2, 0, 2});
  auto last = camera.photo();
  const auto one = first.get();
  const auto three = series.get();
  const auto another = last.get();
  ASSERT_TRUE(one && three && another);
  ASSERT_EQ(three->jpegs.size(), 3u);
  EXPECT_EQ(three->names.size(), 3u);
  for (const ZELData& jpeg : three->jpegs) EXPECT_TRUE(isJpeg(jpeg));
  EXPECT_TRUE(isJpeg(one->jpeg) && isJpeg(another->jpeg));
  EXPECT_NE(one->name, another->name);
}

TEST_F(CapturesTest, ARefusalEndsThePhotoAtOnceAndTheNextOneGetsItsOwnPicture) {
  simulator::Faults faults;
  faults.refuse = {0x0011};  // photos with extra information
  attach(faults);
  Camera camera = opened();
  CaptureOptions extra;
  extra.extraInfo = ZELData(std::vector<std::uint8_t>{'{', '}'});
  auto refused = camera.photo(extra);
  auto next = camera.photo();
  EXPECT_EQ(refused.get().error().reason, Reason::refused);
  const auto photo = next.get();
  ASSERT_TRUE(photo) << photo.error().message;
  EXPECT_TRUE(isJpeg(photo->jpeg));
}

// Its picture has come when the camera tells what it is stored as.
TEST_F(CapturesTest, APhotoWhoseStoredNameIsNoTextIsRefused) {
  simulator::Faults faults;
  std::string error;
  ASSERT_TRUE(faults.add("latin1-names", error)) << error;
  attach(faults);
  Camera camera = opened();
  EXPECT_EQ(camera.photo().get().error().reason, Reason::refused);
  EXPECT_EQ(camera.bracket({0}).get().error().reason, Reason::refused);
}

TEST_F(CapturesTest, APhotoThatNeverComesEndsInTime) {
  simulator::Faults faults;
  faults.noPhoto = true;
  attach(faults);
  Camera camera = opened();
  EXPECT_EQ(camera.photo({}, {.timeLimit = milliseconds(100)}).get().error(),
            (CameraError{Reason::timeLimit, "photo: the camera did not answer in time", "", 0}));
}

TEST_F(CapturesTest, ALostCameraEndsAPhoto) {
  simulator::Faults faults;
  faults.noPhoto = true;
  attach(faults);
  Camera camera = opened();
  Recorded<TransferProgress> told;
  CaptureOptions options;
  options.progress = [&](const TransferProgress& progress) { told.add(progress); };
  auto photo = camera.photo(options);
  EXPECT_EQ(told.wait(1)[0], (TransferProgress{0, 1})) << "stored, and no picture yet";
  simulated().unplug();
  EXPECT_EQ(photo.get().error().reason, Reason::lost);
}

TEST_F(CapturesTest, ABracketHasOneToNineSteps) {
  attach();
  Camera camera = opened();
  const CameraError wrong{Reason::invalid, "bracket: give 1 to 9 exposure steps", "", 0};
  EXPECT_EQ(camera.bracket({}).get().error(), wrong);
  EXPECT_EQ(camera.bracket(std::vector<std::int8_t>(10)).get().error(), wrong);
  EXPECT_EQ(camera.bracket(std::vector<std::int8_t>(9)).get()->jpegs.size(), 9u);
}

TEST_F(CapturesTest, ACameraThatSendsMoreThanIsAllowedIsNotReadAnyMore) {
  attach();
  Camera camera = opened();
  CaptureOptions options;
  options.mostBytes = 1000;
  const CameraError wrong{Reason::platform, "bracket: the pictures come to more than is allowed", "", 0};
  EXPECT_EQ(camera.bracket({-2, 0, 2}, options).get().error(), wrong);
  EXPECT_EQ(camera.bracket({-2, 0, 2}).get().error().reason, Reason::lost) << "its link has ended";
}

TEST_F(CapturesTest, PicturesWithinTheBoundComeAsWithoutIt) {
  attach();
  Camera camera = opened();
  CaptureOptions options;
  options.mostBytes = 100'000'000;
  EXPECT_EQ(camera.bracket({-2, 0, 2}, options).get()->jpegs.size(), 3u);
  EXPECT_TRUE(camera.photo(options).get());
}

TEST_F(CapturesTest, AFileArrivesAsItWasSentAndTellsItsProgress) {
  attach();
  Camera camera = opened();
  std::vector<std::uint8_t> content(3'000'000);
  for (std::size_t at = 0; at < content.size(); ++at) content[at] = static_cast<std::uint8_t>(at * 31);
  Recorded<TransferProgress> told;
  const auto sent =
      camera.upload(1, "C:/update.bin", ZELData(content), [&](const TransferProgress& progress) { told.add(progress); })
          .get();
  ASSERT_TRUE(sent) << sent.error().message;
  std::ifstream file(simulated().storageFolder() + "/update.bin", std::ios::binary);
  EXPECT_EQ(std::vector<std::uint8_t>(std::istreambuf_iterator(file), {}), content);
  for (const TransferProgress& progress : told.wait(1)) EXPECT_EQ(progress.total, 3'000'000u);
}

TEST_F(CapturesTest, AFileWithoutANameIsNotSent) {
  attach();
  Camera camera = opened();
  EXPECT_EQ(camera.upload(1, "C:/", {}).get().error(),
            (CameraError{Reason::invalid, "upload: \"C:/\" leaves no name for the file", "", 0}));
  EXPECT_EQ(camera.upload(1, "", {}).get().error().reason, Reason::invalid);
  EXPECT_TRUE(camera.upload(1, "a:b", {}).get()) << "no drive, so the whole is the name";
}

TEST_F(CapturesTest, ARefusedFileFails) {
  simulator::Faults faults;
  faults.uploadFail = true;
  attach(faults);
  Camera camera = opened();
  EXPECT_EQ(camera.upload(1, "a.bin", ZELData(std::vector<std::uint8_t>(10))).get().error().reason, Reason::refused);
}

}  // namespace
}  // namespace zel::test
