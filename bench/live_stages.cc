#include "bench/live_stages.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <memory>
#include <span>

#include "platform/ffmpeg/h264_decoder.h"
#include "platform/ffmpeg/h264_encoder.h"
#include "platform/ffmpeg/h264_headers.h"
#include "platform/render/stitcher.h"
#include "simulator/media/annex_b.h"
#include "tests/platform/render/pictures.h"

namespace zel::bench {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Pictures = std::vector<platform::PixelBufferRef>;

// As the simulated camera's, but straight, so that it can be written down.
constexpr const char* kOffset =
    "2_760.000_760.000_760.000_0.000_0.000_0.000_760.000_2280.000_760.000_180.000_0.000_0.000_3040_1520_7";

Bytes lengthPrefixed(std::span<const std::uint8_t> unit) {
  Bytes bytes;
  for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<std::uint8_t>(unit.size() >> shift));
  bytes.insert(bytes.end(), unit.begin(), unit.end());
  return bytes;
}

[[noreturn]] void fail(const char* what) {
  std::fprintf(stderr, "%s\n", what);
  std::exit(1);
}

double bestOfThree(std::size_t pictures, const std::function<void()>& turn) {
  double best = std::numeric_limits<double>::infinity();
  for (int i = 0; i < 3; ++i) {
    const auto start = std::chrono::steady_clock::now();
    turn();
    best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
  return 1e3 * best / static_cast<double>(pictures);
}

Pictures decode(const StageInput& input) {
  platform::LibavVideoDecoders decoders;
  const auto decoder = decoders.create(input.sps, input.pps).decoder;
  if (!decoder) fail("the film cannot be decoded");
  Pictures pictures;
  for (const Bytes& slice : input.slices) pictures.push_back(decoder->decode(slice, 0).picture.pixelBuffer);
  return pictures;
}

void encode(const Pictures& pictures, int width, int bitrate) {
  platform::LibavVideoEncoders encoders;
  const auto encoder = encoders.create({width, width / 2, bitrate, 30});
  if (!encoder || !encoder->open()) fail("the encoder does not open");
  std::int64_t number = 0;
  for (const auto& picture : pictures)
    if (!encoder->encodeImage(picture, {number++, 30})) fail("a picture was not encoded");
}

}  // namespace

StageInput stageInput(const std::string& stream) {
  const std::span bytes(reinterpret_cast<const std::uint8_t*>(stream.data()), stream.size());
  StageInput input;
  for (const auto& place : simulator::unitsIn(bytes)) {
    const auto unit = bytes.subspan(place.header, place.end - place.header);
    const platform::H264UnitType type = platform::typeOf(unit[0]);
    if (type == platform::H264UnitType::sequence) input.sps.assign(unit.begin(), unit.end());
    if (type == platform::H264UnitType::picture) input.pps.assign(unit.begin(), unit.end());
    if (type == platform::H264UnitType::slice || type == platform::H264UnitType::keySlice)
      input.slices.push_back(lengthPrefixed(unit));
  }
  return input;
}

StageCosts measureStages(const StageInput& input, int width, int bitrate) {
  StageCosts costs;
  Pictures decoded;
  costs.decode = bestOfThree(input.slices.size(), [&] { decoded = decode(input); });
  const auto stitcher = render::Stitcher::create(kOffset, {width, width / 2}).stitcher;
  if (!stitcher || !stitcher->prepare({decoded[0]->width(), decoded[0]->height()})) fail("there is no stitcher");
  std::vector<std::shared_ptr<platform::MemoryPixelBuffer>> stitched;
  for (std::size_t i = 0; i < decoded.size(); ++i)
    stitched.push_back(platform::MemoryPixelBuffer::create(width, width / 2));
  costs.stitch = bestOfThree(decoded.size(), [&] {
    for (std::size_t i = 0; i < decoded.size(); ++i)
      if (!stitcher->stitch(*decoded[i], render::outputOf(*stitched[i]))) fail("a picture was not stitched");
  });
  const Pictures toEncode(stitched.begin(), stitched.end());
  costs.encode = bestOfThree(toEncode.size(), [&] { encode(toEncode, width, bitrate); });
  return costs;
}

}  // namespace zel::bench
