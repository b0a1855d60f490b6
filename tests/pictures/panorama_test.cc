#include <ZELTarkaSDK/Panorama.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <turbojpeg.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <vector>

#include <ZELTarkaSDK/platform/memory_pixel_buffer.h>

#include "pictures/exif_direction.h"
#include "pictures/jpeg_file.h"
#include "pictures/panorama_metadata.h"
#include "platform/render/stitching_library.h"
#include "simulator/photo_studio.h"
#include "simulator/scene.h"
#include "tests/pictures/likeness.h"
#include "tests/simulator/decoded_jpeg.h"

namespace zel::test {
namespace {

using Bytes = std::span<const std::uint8_t>;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kOffset =
    "2_750.000_760.000_760.000_0.000_0.300_-0.400_750.000_2280.000_760.000_179.800_-0.200_0.500_3040_1520_7";

JpegBytes photo(int width = 640, double seconds = 0) {
  return simulator::PhotoStudio().take(width, width / 2, seconds, {0}).at(0);
}

// A plain JPEG file of that sampling.
JpegBytes plainJpeg(int width, int height, int sampling, int red, int green, int blue) {
  std::vector<std::uint8_t> pixels;
  for (int i = 0; i < width * height; ++i)
    pixels.insert(pixels.end(),
                  {static_cast<std::uint8_t>(red), static_cast<std::uint8_t>(green), static_cast<std::uint8_t>(blue)});
  const auto encoder = tjInitCompress();
  unsigned char* file = nullptr;
  unsigned long size = 0;
  EXPECT_EQ(tjCompress2(encoder, pixels.data(), width, 0, height, TJPF_RGB, &file, &size, sampling, 95, 0), 0);
  const JpegBytes bytes(file, file + size);
  tjFree(file);
  tjDestroy(encoder);
  return bytes;
}

JpegBytes segment(int marker, const std::string& content) {
  const std::size_t length = content.size() + 2;
  JpegBytes bytes{0xFF, static_cast<std::uint8_t>(marker), static_cast<std::uint8_t>(length >> 8),
                  static_cast<std::uint8_t>(length)};
  bytes.insert(bytes.end(), content.begin(), content.end());
  return bytes;
}

const std::string kExifStart("Exif\0\0", 6);

JpegBytes joined(std::initializer_list<JpegBytes> parts) {
  JpegBytes all;
  for (const JpegBytes& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

std::string textOf(Bytes bytes) { return {bytes.begin(), bytes.end()}; }

// -- JPEG files

TEST(JpegFileTest, ReadsEverySampling) {
  for (const int sampling : {TJSAMP_420, TJSAMP_422, TJSAMP_444, TJSAMP_GRAY}) {
    for (const int width : {32, 33}) {
      std::string error;
      const auto picture = pictureOfJpeg(plainJpeg(width, 19, sampling, 200, 100, 50), error);
      ASSERT_NE(picture, nullptr) << error;
      EXPECT_EQ(picture->width(), width);
      EXPECT_EQ(picture->height(), 19);
      const auto luma = picture->luma(), chroma = picture->chroma();
      const std::size_t x = static_cast<std::size_t>(width) - 1;
      // 0.299 * 200 + 0.587 * 100 + 0.114 * 50; Cb 128 - 0.1687 * 200 - 0.3313 * 100 + 0.5 * 50; Cr likewise
      EXPECT_NEAR(luma.data[18 * luma.stride + x], 124, 2) << sampling;
      EXPECT_NEAR(chroma.data[9 * chroma.stride + 2 * (x / 2)], sampling == TJSAMP_GRAY ? 128 : 86, 2) << sampling;
      EXPECT_NEAR(chroma.data[9 * chroma.stride + 2 * (x / 2) + 1], sampling == TJSAMP_GRAY ? 128 : 182, 2) << sampling;
    }
  }
}

TEST(JpegFileTest, WritesWhatItReads) {
  std::string error;
  const auto picture = pictureOfJpeg(photo(), error);
  ASSERT_NE(picture, nullptr);
  const auto file = jpegOf(*picture, 95);
  ASSERT_TRUE(file);
  const auto again = simulator::decodeJpeg(*file), first = simulator::decodeJpeg(photo());
  ASSERT_TRUE(again && first);
  EXPECT_GT(likeness(*again, *first), 38);
}

// The format knows one matrix.
TEST(JpegFileTest, WritesThePicturesColoursWhateverItsMatrixIs) {
  // The yellow of the 75 % bars by either matrix.
  for (const auto& [matrix, luma, cb, cr] : {std::tuple(platform::ColourMatrix::bt601, 169, 33, 144),
                                             std::tuple(platform::ColourMatrix::bt709, 177, 33, 137)}) {
    const auto picture = platform::MemoryPixelBuffer::filled(
        32, 16, static_cast<std::uint8_t>(luma), static_cast<std::uint8_t>(cb), static_cast<std::uint8_t>(cr));
    picture->setColour({matrix});
    const auto file = jpegOf(*picture, 95);
    ASSERT_TRUE(file);
    const auto shown = simulator::decodeJpeg(*file);
    ASSERT_TRUE(shown);
    EXPECT_NEAR(shown->rgb[0], 191, 2);
    EXPECT_NEAR(shown->rgb[1], 191, 2);
    EXPECT_NEAR(shown->rgb[2], 0, 2);
  }
}

// What some editors write: the planes are red, green and blue themselves.
TEST(JpegFileTest, ReadsAFileWithoutLuma) {
  JpegBytes file = plainJpeg(32, 32, TJSAMP_420, 200, 100, 50);  // planes of 124, 86, 182
  const JpegBytes unmixed = segment(0xEE, std::string("Adobe\0\x64\0\0\0\0\0", 12));
  const std::size_t header = 2 + 2 + (std::size_t{file[4]} << 8 | file[5]);  // its JFIF segment says that there is luma
  file.erase(file.begin() + 2, file.begin() + static_cast<std::ptrdiff_t>(header));
  file.insert(file.begin() + 2, unmixed.begin(), unmixed.end());
  std::string error;
  const auto picture = pictureOfJpeg(file, error);
  ASSERT_NE(picture, nullptr) << error;
  EXPECT_NEAR(picture->luma().data[0], 108, 2);    // 0.299 * 124 + 0.587 * 86 + 0.114 * 182
  EXPECT_NEAR(picture->chroma().data[0], 170, 2);  // 128 + (182 - 108.3) / 1.772
  EXPECT_NEAR(picture->chroma().data[1], 139, 2);  // 128 + (124 - 108.3) / 1.402
}

TEST(JpegFileTest, WritesNoPictureOfOddSides) {
  EXPECT_FALSE(jpegOf(*platform::MemoryPixelBuffer::create(33, 32), 95));
  EXPECT_FALSE(jpegOf(*platform::MemoryPixelBuffer::create(32, 33), 95));
}

TEST(JpegFileTest, SaysWhatIsWrongWithAFile) {
  std::string error;
  EXPECT_EQ(pictureOfJpeg({}, error), nullptr);
  EXPECT_EQ(error, "it is no JPEG file");
  const std::string text = "no picture at all";
  EXPECT_EQ(pictureOfJpeg(JpegBytes(text.begin(), text.end()), error), nullptr);
  EXPECT_EQ(error, "it is no JPEG file");
  const JpegBytes whole = photo();
  EXPECT_EQ(pictureOfJpeg(Bytes(whole).first(whole.size() / 2), error), nullptr);
  EXPECT_EQ(error, "it is damaged");
}

TEST(JpegFileTest, RefusesASizeBeyondAllMemory) {
  JpegBytes file = photo();
  const std::uint8_t header[] = {0xFF, 0xC0};
  const auto frame = std::search(file.begin(), file.end(), std::begin(header), std::end(header));
  std::fill_n(frame + 5, 4, std::uint8_t{0xFF});  // height and width
  std::string error;
  EXPECT_EQ(pictureOfJpeg(file, error), nullptr);
  EXPECT_THAT(error, testing::AnyOf("its size makes no sense", "it is no JPEG file"));
}

// A grey picture without content, made in so many scans of a few bytes.
JpegBytes manyScans(int width, int height, int scans) {
  JpegBytes file = {0xFF,
                    0xD8,
                    0xFF,
                    0xC2,
                    0,
                    11,
                    8,
                    static_cast<std::uint8_t>(height >> 8),
                    static_cast<std::uint8_t>(height),
                    static_cast<std::uint8_t>(width >> 8),
                    static_cast<std::uint8_t>(width),
                    1,
                    1,
                    0x11,
                    0};
  for (int scan = 0; scan < scans; ++scan)
    file.insert(file.end(), {0xFF, 0xDA, 0, 8, 1, 1, 0, 0, 0, 0, 0x3F, 0xFF, 0x00});
  file.insert(file.end(), {0xFF, 0xD9});
  return file;
}

TEST(JpegFileTest, RefusesAPictureOfMorePassesThanItIsWorth) {
  std::string error;
  EXPECT_EQ(pictureOfJpeg(manyScans(8000, 5000, 11), error), nullptr);
  EXPECT_EQ(error, "it takes too much to decode");
  EXPECT_EQ(pictureOfJpeg(manyScans(8000, 5000, 10), error), nullptr);
  EXPECT_EQ(error, "it is damaged");  // its passes are looked at, and hold nothing
}

TEST(JpegFileTest, RefusesAPictureOfSeveralPassesThatIsLargerThanOthersMayBe) {
  std::string error;
  EXPECT_EQ(pictureOfJpeg(manyScans(8001, 5000, 2), error), nullptr);
  EXPECT_EQ(error, "it takes too much to decode");
  EXPECT_EQ(pictureOfJpeg(manyScans(12000, 6001, 1), error), nullptr);
  EXPECT_EQ(error, "its size makes no sense");
}

TEST(JpegFileTest, SurvivesAFileCutAnywhereOrFlipped) {
  const JpegBytes whole = photo(64);
  std::string error;
  for (std::size_t cut = 0; cut < whole.size(); ++cut) {
    exifSegmentIn(Bytes(whole).first(cut));
    withSegments(Bytes(whole).first(cut), {});
    if (cut % 16 != 0) continue;
    EXPECT_EQ(pictureOfJpeg(Bytes(whole).first(cut), error), nullptr) << cut;
  }
  for (std::size_t at = 0; at < whole.size(); at += 3) {
    JpegBytes flipped = whole;
    flipped[at] = static_cast<std::uint8_t>(flipped[at] ^ (1 << at % 8));
    exifSegmentIn(flipped);
    pictureOfJpeg(flipped, error);
  }
}

TEST(JpegFileTest, FindsTheFirstExifSegment) {
  const JpegBytes start{0xFF, 0xD8}, scan{0xFF, 0xDA, 0, 2};
  const JpegBytes header = segment(0xE0, "JFIF"), xmp = segment(0xE1, "http://"),
                  exif = segment(0xE1, kExifStart + "A");
  const auto found = [](const JpegBytes& file) {
    const Bytes at = exifSegmentIn(file);
    return JpegBytes(at.begin(), at.end());
  };
  EXPECT_EQ(found(joined({start, exif})), exif);
  EXPECT_EQ(found(joined({start, header, xmp, exif, segment(0xE1, kExifStart + "B"), scan})), exif);
  EXPECT_THAT(found(joined({start, header, xmp, scan, exif})), IsEmpty());  // within the picture
  EXPECT_THAT(found(joined({header, exif})), IsEmpty());
  JpegBytes cut = joined({start, exif});
  cut.pop_back();
  EXPECT_THAT(found(cut), IsEmpty());
  EXPECT_THAT(found(joined({start, {0xFF, 0xE1, 0, 1}, exif})), IsEmpty());  // shorter than its own length
  EXPECT_THAT(found(joined({start, {0xFF, 0xE1, 0, 2}, exif})), exif);
}

TEST(JpegFileTest, PutsSegmentsBehindTheHeader) {
  const JpegBytes start{0xFF, 0xD8}, header = segment(0xE0, "JFIF"), tables = segment(0xDB, "tables");
  const JpegBytes a = segment(0xE1, "a"), b = segment(0xE1, "b");
  const std::vector<Bytes> both = {a, b};
  EXPECT_EQ(withSegments(joined({start, header, tables}), both), joined({start, header, a, b, tables}));
  EXPECT_EQ(withSegments(joined({start, tables}), both), joined({start, a, b, tables}));
  EXPECT_EQ(withSegments(tables, both), tables);
}

TEST(JpegFileTest, AnXmpSegmentIsNamedAndNotTooLong) {
  EXPECT_EQ(textOf(xmpSegmentOf("packet")), std::string("\xFF\xE1\x00\x25http://ns.adobe.com/xap/1.0/\0packet", 39));
  EXPECT_THAT(xmpSegmentOf(std::string(65504, ' ')), testing::SizeIs(65537));
  EXPECT_THAT(xmpSegmentOf(std::string(65505, ' ')), IsEmpty());
}

TEST(PanoramaMetadataTest, TellsViewersWhatThePictureIs) {
  const auto packet = panoramaPacket(3040, 1520, std::nullopt);
  ASSERT_TRUE(packet);
  for (const char* property :
       {"xmlns:GPano=\"http://ns.google.com/photos/1.0/panorama/\"", "GPano:ProjectionType=\"equirectangular\"",
        "GPano:UsePanoramaViewer=\"True\"", "GPano:FullPanoWidthPixels=\"3040\"", "GPano:FullPanoHeightPixels=\"1520\"",
        "GPano:CroppedAreaImageWidthPixels=\"3040\"", "GPano:CroppedAreaImageHeightPixels=\"1520\"",
        "GPano:CroppedAreaLeftPixels=\"0\"", "GPano:CroppedAreaTopPixels=\"0\""})
    EXPECT_THAT(*packet, HasSubstr(property));
  EXPECT_THAT(*packet, testing::Not(HasSubstr("Pose")));
}

TEST(PanoramaMetadataTest, TellsWhereThePictureLooksAndNoTilt) {
  const auto packet = panoramaPacket(3040, 1520, 271.5);
  ASSERT_TRUE(packet);
  EXPECT_THAT(*packet, HasSubstr("GPano:PoseHeadingDegrees=\"271.50\""));
  EXPECT_THAT(*packet, testing::Not(testing::AnyOf(HasSubstr("PosePitch"), HasSubstr("PoseRoll"))));
}

// 271.5 degrees from true north.
const JpegBytes littleEndianExif = {
    0xFF, 0xE1, 0,    72,   'E', 'x', 'i', 'f', 0,   0,                           // 0   marker, length
    'I',  'I',  42,   0,    8,   0,   0,   0,                                     // 10  directory at 8 from here
    1,    0,    0x25, 0x88, 4,   0,   1,   0,   0,   0, 26, 0, 0, 0, 0, 0, 0, 0,  // 18  GPS directory at 26
    2,    0,                                                                      // 36  two entries
    0x10, 0,    2,    0,    2,   0,   0,   0,   'T', 0, 0,  0,                    // 38  from true north
    0x11, 0,    5,    0,    1,   0,   0,   0,   56,  0, 0,  0,                    // 50  the direction at 56
    0,    0,    0,    0,                                                          // 62
    0x9B, 0x0A, 0,    0,    10,  0,   0,   0};                                    // 66  2715 / 10
const JpegBytes bigEndianExif = {0xFF, 0xE1, 0,    72, 'E', 'x', 'i', 'f', 0,   0, 'M', 'M',  0,    42,   0, 0, 0, 8, 0,
                                 1,    0x88, 0x25, 0,  4,   0,   0,   0,   1,   0, 0,   0,    26,   0,    0, 0, 0, 0, 2,
                                 0,    0x10, 0,    2,  0,   0,   0,   2,   'T', 0, 0,   0,    0,    0x11, 0, 5, 0, 0, 0,
                                 1,    0,    0,    0,  56,  0,   0,   0,   0,   0, 0,   0x0A, 0x9B, 0,    0, 0, 10};

TEST(ExifDirectionTest, ReadsTheDirectionFromTrueNorth) {
  EXPECT_EQ(directionIn(littleEndianExif), 271.5);
  EXPECT_EQ(directionIn(bigEndianExif), 271.5);
}

TEST(ExifDirectionTest, WhatIsCutMissingOrOtherwiseCountedTellsNothing) {
  for (std::size_t size = 0; size < littleEndianExif.size(); ++size) {
    EXPECT_EQ(directionIn(Bytes(littleEndianExif).first(size)), std::nullopt) << size;
  }
  const auto changed = [](std::size_t at, std::uint8_t value) {
    JpegBytes exif = littleEndianExif;
    exif[at] = value;
    return directionIn(exif);
  };
  EXPECT_EQ(changed(12, 43), std::nullopt);    // no EXIF data
  EXPECT_EQ(changed(14, 0xFF), std::nullopt);  // no directory there
  EXPECT_EQ(changed(28, 0xFF), std::nullopt);  // no GPS there
  EXPECT_EQ(changed(46, 'M'), std::nullopt);   // magnetic north
  EXPECT_EQ(changed(52, 10), std::nullopt);    // a signed number
  EXPECT_EQ(changed(67, 0x0E), std::nullopt);  // 373.9 degrees
  EXPECT_EQ(changed(70, 0), std::nullopt);     // nothing divides
}

// -- panoramas

class PanoramaTest : public testing::Test {
 protected:
  std::vector<std::string> faults;
  render::StitchingLibrary library{[this](const std::string& fault) { faults.push_back(fault); }};
  std::string error;
};

TEST_F(PanoramaTest, ShowsTheWorldAsItIs) {
  PanoramaMaker maker(library, kOffset);
  const auto panorama = maker.panoramaOf(photo(1280, 2.5), error);
  ASSERT_TRUE(panorama) << error;
  EXPECT_EQ(panorama->width, 1280);
  EXPECT_EQ(panorama->height, 640);
  const auto picture = simulator::decodeJpeg(panorama->file);
  ASSERT_TRUE(picture);
  EXPECT_EQ(picture->width, 1280);
  auto truth = simulator::Scene(1280, 640).at(2.5);
  EXPECT_GT(likeness(*picture, truth), 28);  // the scene's lines are a pixel wide, and were interpolated twice
  std::rotate(truth.rgb.begin(), truth.rgb.begin() + 3, truth.rgb.end());
  EXPECT_LT(likeness(*picture, truth), 25);  // a pixel aside
  EXPECT_THAT(faults, IsEmpty());
}

TEST_F(PanoramaTest, CarriesTheExifDataOverByteForByte) {
  const JpegBytes exif = segment(0xE1, kExifStart + std::string("II*\0 and what the camera knows", 30));
  const std::vector<Bytes> segments = {exif};
  PanoramaMaker maker(library, kOffset);
  const auto panorama = maker.panoramaOf(withSegments(photo(), segments), error);
  ASSERT_TRUE(panorama) << error;
  const Bytes found = exifSegmentIn(panorama->file);
  EXPECT_EQ(JpegBytes(found.begin(), found.end()), exif);
  EXPECT_THAT(textOf(panorama->file), HasSubstr("GPano:FullPanoWidthPixels=\"640\""));
  EXPECT_TRUE(simulator::decodeJpeg(panorama->file));
}

TEST_F(PanoramaTest, TellsWhereThePhotoLooks) {
  const std::vector<Bytes> segments = {littleEndianExif};
  PanoramaMaker maker(library, kOffset);
  const auto panorama = maker.panoramaOf(withSegments(photo(), segments), error);
  ASSERT_TRUE(panorama) << error;
  EXPECT_THAT(textOf(panorama->file), HasSubstr("GPano:PoseHeadingDegrees=\"271.50\""));
}

TEST_F(PanoramaTest, ADarkPictureDoesNotChangeTheNextOne) {
  PanoramaMaker maker(library, kOffset), fresh(library, kOffset);
  const auto alone = fresh.panoramaOf(photo(), error);
  ASSERT_TRUE(maker.panoramaOf(simulator::PhotoStudio().take(640, 320, 0, {-3}).at(0), error));
  const auto behind = maker.panoramaOf(photo(), error);
  ASSERT_TRUE(alone && behind);
  EXPECT_EQ(alone->file, behind->file);
}

TEST_F(PanoramaTest, AnOffsetThatMakesNoSenseIsToldByTheRenderer) {
  PanoramaMaker maker(library, "2_0");
  for (int count = 0; count < 3; ++count) {
    EXPECT_FALSE(maker.panoramaOf(photo(), error));
    EXPECT_EQ(error, "");
  }
  EXPECT_THAT(faults, ElementsAre("lens offset: 16 fields are needed, not 2"));
}

TEST_F(PanoramaTest, AFileThatIsNoPictureIsTold) {
  PanoramaMaker maker(library, kOffset);
  EXPECT_FALSE(maker.panoramaOf({}, error));
  EXPECT_EQ(error, "it is no JPEG file");
  // Too narrow for a panorama.
  EXPECT_FALSE(maker.panoramaOf(plainJpeg(3, 8, TJSAMP_444, 1, 2, 3), error));
  EXPECT_THAT(faults, ElementsAre(HasSubstr("a panorama of 0 x 0 cannot be made")));
}

TEST_F(PanoramaTest, PhotosOfOtherSizesFollowEachOther) {
  PanoramaMaker maker(library, kOffset);
  for (const int width : {320, 642, 322, 320}) {
    const auto panorama = maker.panoramaOf(plainJpeg(width, width / 2, TJSAMP_420, 90, 90, 90), error);
    ASSERT_TRUE(panorama) << width << error;
    EXPECT_EQ(panorama->width, width - width % 4);
    EXPECT_EQ(panorama->height * 2, panorama->width);
  }
}

}  // namespace
}  // namespace zel::test
