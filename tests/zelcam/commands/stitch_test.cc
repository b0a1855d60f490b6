// Panoramas by the real program of the simulated camera's pictures, compared with the world that it shows.

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <span>

#include "pictures/jpeg_file.h"
#include "platform/ffmpeg/h264_encoder.h"
#include "simulator/exif.h"
#include "simulator/fisheye.h"
#include "simulator/jpeg.h"
#include "simulator/lens_offset.h"
#include "simulator/scene.h"
#include "tests/pictures/likeness.h"
#include "tests/platform/render/pictures.h"
#include "tests/simulator/decoded_jpeg.h"
#include "tests/zelcam/png_picture.h"
#include "tests/zelcam/zelcam_test.h"

namespace zel::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

using Bytes = std::vector<std::uint8_t>;

constexpr const char* kNonsense = "2_0_0_0_0_0_0_0_0_0_0_0_0_3040_1520_7";

Bytes contents(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::optional<simulator::Picture> jpegIn(const std::string& path) { return simulator::decodeJpeg(contents(path)); }

simulator::Picture worldOf(int width, double seconds = 0) { return simulator::Scene(width, width / 2).at(seconds); }

// What a command without a result tells of its own fault.
nlohmann::json failure(const std::string& message) {
  return {{"error", {{"code", 1}, {"domain", "zelcam"}, {"message", message}}}};
}

class StitchTest : public ZelcamTest {
 protected:
  // A camera with the smallest photos, of 640 x 320.
  std::unique_ptr<Process> camera() {
    auto process = simulator({"--storage", folder.path() + "/card"});
    EXPECT_EQ(zelcam({"call", "msgReqSetPhotoSize", "2"})->wait(), 0);
    return process;
  }
  std::string pictures() const { return folder.path() + "/pictures"; }
  std::string png() const { return folder.path() + "/picture.png"; }

  std::vector<Json> run(Arguments arguments, int status = 0) {
    arguments.insert(arguments.begin(), {"--json", "--timeout", "30"});
    const auto host = zelcam(arguments);
    EXPECT_EQ(host->wait(), status) << host->errors();
    errors = host->errors();
    return lines(*host);
  }
  std::string beside(const std::string& photo) const {
    const fs::path path(photo);
    return (path.parent_path() / (path.stem().string() + "-360.jpg")).string();
  }

  std::string errors;
};

// -- photo

TEST_F(StitchTest, APanoramaStandsBesideThePhotoAndShowsTheWorld) {
  const auto process = camera();
  const auto told = run({"photo", "-o", pictures(), "--stitch"});
  ASSERT_THAT(told, SizeIs(2));
  const std::string photo = told[0]["photo"], panorama = beside(photo);
  EXPECT_EQ(told[1], Json({{"panorama", panorama}, {"of", photo}, {"width", 640}, {"height", 320}}));
  const auto picture = jpegIn(panorama);
  ASSERT_TRUE(picture);
  // Above 14 degrees nothing moves.
  EXPECT_GT(likeness(*picture, worldOf(640), 0, 135), 27);
  const Bytes bytes = contents(panorama);
  EXPECT_THAT(std::string(bytes.begin(), bytes.end()), HasSubstr("GPano:ProjectionType=\"equirectangular\""));
  EXPECT_EQ(errors, "");
}

TEST_F(StitchTest, APanoramaKeepsThePhotosTimeAndPlace) {
  const auto process = camera();
  const auto told = run({"photo", "-o", pictures(), "--stitch", "--gps", "48.5,-11.25,519.5"});
  ASSERT_THAT(told, SizeIs(2));
  const Bytes photo = contents(told[0]["photo"]), panorama = contents(told[1]["panorama"]);
  const auto ofPhoto = exifSegmentIn(photo), ofPanorama = exifSegmentIn(panorama);
  EXPECT_EQ(Bytes(ofPanorama.begin(), ofPanorama.end()), Bytes(ofPhoto.begin(), ofPhoto.end()));
  // The same but for the time, which the test cannot know.
  const Bytes expected = simulator::exifSegment("0000:00:00 00:00:00", simulator::Position{48.5, -11.25, 519.5});
  ASSERT_EQ(ofPanorama.size(), expected.size());
  EXPECT_TRUE(std::ranges::equal(ofPanorama.last(140), std::span(expected).last(140)));
}

TEST_F(StitchTest, EachPictureOfABracketGetsAPanorama) {
  const auto process = camera();
  const auto told = run({"photo", "-o", pictures(), "--stitch", "--bracket", "-2,0,1"});
  ASSERT_THAT(told, SizeIs(6));
  const int steps[] = {-2, 0, 1};
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(told[3 + i]["of"], told[i]["photo"]);
    const auto picture = jpegIn(told[3 + i]["panorama"]);
    ASSERT_TRUE(picture);
    EXPECT_GT(likeness(*picture, simulator::exposed(worldOf(640), steps[i])), 25) << steps[i];
  }
}

// Photos of the common size take long enough for the signal to come between two of them.
TEST_F(StitchTest, AnInterruptLeavesThePanoramasThatAreFinished) {
  const auto process = simulator({"--storage", folder.path() + "/card"});
  const auto host = zelcam({"--timeout", "30", "photo", "-o", pictures(), "--stitch", "--bracket", "-2,0,1"});
  ASSERT_TRUE(host->waitForOutput("-360.jpg")) << host->errors();
  host->signal(SIGINT);
  EXPECT_EQ(host->wait(), 130);
  int whole = 0;
  for (const auto& file : fs::directory_iterator(pictures())) {
    if (!file.path().string().ends_with("-360.jpg")) continue;
    EXPECT_TRUE(jpegIn(file.path())) << file.path();
    ++whole;
  }
  EXPECT_GE(whole, 1);
}

TEST_F(StitchTest, WithoutAskingThereIsNoPanorama) {
  const auto process = camera();
  const auto told = run({"photo", "-o", pictures()});
  ASSERT_THAT(told, SizeIs(1));
  EXPECT_FALSE(fs::exists(beside(told[0]["photo"])));
}

TEST_F(StitchTest, AnOffsetThatMakesNoSenseLeavesThePhotos) {
  const auto process = camera();
  ASSERT_EQ(zelcam({"call", "msgReqSetMediaOffset", "0", "0", kNonsense})->wait(), 0);
  const auto told = run({"photo", "-o", pictures(), "--stitch", "--bracket", "-1,1"}, 1);
  ASSERT_THAT(told, SizeIs(3));
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_TRUE(jpegIn(told[i]["photo"]));
    EXPECT_FALSE(fs::exists(beside(told[i]["photo"])));
  }
  EXPECT_EQ(told[2], failure("lens offset: the radius of lens 0 makes no sense"));
  EXPECT_EQ(errors, "zelcam: lens offset: the radius of lens 0 makes no sense\n");
}

TEST_F(StitchTest, ACameraThatDoesNotTellItsOffsetLeavesThePhoto) {
  const auto process = simulator({"--storage", folder.path() + "/card", "--fault", "refuse=0x400F"});
  ASSERT_EQ(zelcam({"call", "msgReqSetPhotoSize", "2"})->wait(), 0);
  const auto told = run({"photo", "-o", pictures(), "--stitch"}, 1);
  ASSERT_THAT(told, SizeIs(2));
  EXPECT_TRUE(jpegIn(told[0]["photo"]));
  EXPECT_EQ(told[1]["error"]["code"], 101);
  EXPECT_THAT(errors, HasSubstr("photo: the lens offset: the camera refused"));
}

// -- preview

TEST_F(StitchTest, APreviewsSnapshotIsUnwrapped) {
  const auto process = camera();
  const auto told = run({"preview", "--snapshot", png(), "--stitch", "--frames", "4"});
  ASSERT_THAT(told, SizeIs(1));
  EXPECT_EQ(told[0]["snapshot"], png());
  const auto picture = pngIn(png());
  ASSERT_TRUE(picture);
  ASSERT_EQ(picture->width, 1440);
  ASSERT_EQ(picture->height, 720);
  // Above 14 degrees nothing moves.
  EXPECT_GT(likeness(*picture, worldOf(1440), 0, 304), 30.5);
}

TEST_F(StitchTest, APreviewByAnOffsetThatMakesNoSenseSavesNothing) {
  const auto process = camera();
  ASSERT_EQ(zelcam({"call", "msgReqSetMediaOffset", "0", "3", kNonsense})->wait(), 0);
  EXPECT_THAT(run({"preview", "--snapshot", png(), "--stitch"}, 1),
              ElementsAre(failure("lens offset: the radius of lens 0 makes no sense")));
  EXPECT_EQ(errors, "zelcam: lens offset: the radius of lens 0 makes no sense\n");
  EXPECT_FALSE(fs::exists(png()));
}

TEST_F(StitchTest, APreviewIsStitchedForASnapshotAlone) {
  const auto host = zelcam({"preview", "--stitch"});
  EXPECT_EQ(host->wait(), 2);
  EXPECT_THAT(host->errors(), HasSubstr("--stitch is for the picture that --snapshot saves"));
}

// -- thumbnail

class StitchedThumbnailTest : public StitchTest {
 protected:
  // A key frame of what the lenses see of the world after 2.5 seconds, as a file with start codes.
  std::string keyFrame() const {
    const auto seen =
        simulator::FisheyeProjector(simulator::factoryLensOffset(), 1280, 640, 1280, 640).project(worldOf(1280, 2.5));
    platform::LibavVideoEncoders encoders;
    const auto encoder = encoders.create({.width = 1280, .height = 640, .bitrate = 50'000'000, .fps = 10});
    EXPECT_TRUE(encoder->open());
    const std::string path = folder.path() + "/key.h264";
    std::ofstream file(path, std::ios::binary);
    const auto write = [&file](const std::uint8_t* data, std::int32_t size) {
      file.write("\0\0\0\1", 4).write(reinterpret_cast<const char*>(data), size);
    };
    encoder->setSpsPpsCallback(
        [&](const std::uint8_t* sps, std::int32_t spsSize, const std::uint8_t* pps, std::int32_t ppsSize) {
          write(sps, spsSize);
          write(pps, ppsSize);
        });
    encoder->setNaluCallback(
        [&](std::uint8_t* data, std::int32_t size, bool, platform::MediaTime) { write(data + 4, size - 4); });
    EXPECT_TRUE(encoder->encodeImage(render::nv12Of(seen), {}));
    return path;
  }
};

TEST_F(StitchedThumbnailTest, IsUnwrappedByItsOffset) {
  const auto told =
      run({"thumbnail", keyFrame(), "-o", png(), "--offset", render::kFactoryOffset, "--size", "640x320"});
  EXPECT_THAT(told, ElementsAre(Json({{"thumbnail", png()}, {"width", 640}, {"height", 320}})));
  const auto picture = pngIn(png());
  ASSERT_TRUE(picture);
  EXPECT_GT(likeness(*picture, worldOf(640, 2.5)), 28);
}

TEST_F(StitchedThumbnailTest, IsAsLargeAsIsUsual) {
  const auto told = run({"thumbnail", keyFrame(), "-o", png(), "--offset", render::kFactoryOffset});
  EXPECT_THAT(told, ElementsAre(Json({{"thumbnail", png()}, {"width", 1440}, {"height", 720}})));
}

TEST_F(StitchedThumbnailTest, SaysWhatIsWrongWithItsOffset) {
  for (const auto& [offset, fault] :
       {std::pair("", "the text is empty"), std::pair("2_1", "16 fields are needed, not 2"),
        std::pair(kNonsense, "the radius of lens 0 makes no sense")}) {
    EXPECT_THAT(run({"thumbnail", keyFrame(), "-o", png(), "--offset", offset}, 1),
                ElementsAre(failure(std::string("lens offset: ") + fault)));
    EXPECT_EQ(errors, std::string("zelcam: lens offset: ") + fault + "\n");
  }
  EXPECT_FALSE(fs::exists(png()));
}

}  // namespace
}  // namespace zel::test
