#include "bench/live_stages.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

#include "platform/ffmpeg/h264_decoder.h"
#include "platform/ffmpeg/h264_encoder.h"
#include "platform/render/stitcher.h"

namespace zel::bench {
namespace {

using Pictures = std::vector<platform::PixelBufferRef>;

// As the simulated camera's, but straight, so that it can be written down.
constexpr const char* kOffset =
    "2_760.000_760.000_760.000_0.000_0.000_0.000_760.000_2280.000_760.000_180.000_0.000_0.000_3040_1520_7";

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

std::unique_ptr<platform::VideoDecoder> openDecoder(const Film& film) {
  platform::LibavVideoDecoders decoders;
  auto decoder = decoders.create(film.sps, film.pps).decoder;
  if (!decoder) fail("the film cannot be decoded");
  return decoder;
}

std::unique_ptr<platform::VideoEncoder> openEncoder(int width, int bitrate) {
  platform::LibavVideoEncoders encoders;
  auto encoder = encoders.create({width, width / 2, bitrate, 30});
  if (!encoder || !encoder->open()) fail("the encoder does not open");
  return encoder;
}

std::unique_ptr<render::Stitcher> openStitcher(const platform::PixelBuffer& picture, int width) {
  auto stitcher = render::Stitcher::create(kOffset, {width, width / 2}).stitcher;
  if (!stitcher || !stitcher->prepare({picture.width(), picture.height()})) fail("there is no stitcher");
  return stitcher;
}

Pictures decode(const Film& film) {
  const auto decoder = openDecoder(film);
  Pictures pictures;
  for (const Film::Bytes& slice : film.slices) pictures.push_back(decoder->decode(slice, 0).picture.pixelBuffer);
  return pictures;
}

void encode(const Pictures& pictures, int width, int bitrate) {
  const auto encoder = openEncoder(width, bitrate);
  std::int64_t number = 0;
  for (const auto& picture : pictures)
    if (!encoder->encodeImage(picture, {number++, 30})) fail("a picture was not encoded");
}

}  // namespace

StageCosts measureStages(const Film& film, int width, int bitrate) {
  StageCosts costs;
  Pictures decoded;
  costs.decode = bestOfThree(film.slices.size(), [&] { decoded = decode(film); });
  const auto stitcher = openStitcher(*decoded[0], width);
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

BareStages::BareStages(const Film& film, int width, int bitrate)
    : film_(film),
      decoder_(openDecoder(film)),
      encoder_(openEncoder(width, bitrate)),
      panorama_(platform::MemoryPixelBuffer::create(width, width / 2)) {}

void BareStages::run(std::size_t number) {
  const auto picture = decoder_->decode(film_.slices[number], 0).picture.pixelBuffer;
  if (!picture) fail("a picture was not decoded");
  if (!stitcher_) stitcher_ = openStitcher(*picture, panorama_->width());
  if (!stitcher_->stitch(*picture, render::outputOf(*panorama_))) fail("a picture was not stitched");
  if (!encoder_->encodeImage(panorama_, {pictures_++, 30})) fail("a picture was not encoded");
}

}  // namespace zel::bench
