#include "tests/platform/ffmpeg/streams/decoded_stream.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <utility>

#include "tests/platform/ffmpeg/md5.h"

namespace zel::test {
namespace {

using platform::DecodedPicture;
using platform::DecodeStatus;
using platform::PixelPlane;

void addLuma(Md5& sum, const PixelPlane& plane) {
  for (std::size_t row = 0; row < plane.rows; ++row) sum.add(plane.data + row * plane.stride, plane.rowBytes);
}

void addChroma(Md5& sum, const PixelPlane& plane, std::size_t component) {
  std::vector<std::uint8_t> line(plane.rowBytes / 2);
  for (std::size_t row = 0; row < plane.rows; ++row) {
    for (std::size_t x = 0; x < line.size(); ++x) line[x] = plane.data[row * plane.stride + 2 * x + component];
    sum.add(line.data(), line.size());
  }
}

// The session in use, and the sequence parameter set that it was made of.
class Sessions {
 public:
  Sessions(platform::VideoDecoders& decoders, DecodedStream& into) : decoders_(decoders), into_(into) {}

  void take(const Unit& unit) {
    const int type = typeOf(unit);
    if (type == 7 && unit != sps_) {
      end();
      sps_ = unit;
    } else if (type == 8 && !session_ && !sps_.empty()) {
      session_ = decoders_.create(sps_, unit).decoder;
      if (session_) ++into_.sessions;
    } else if ((type == 1 || type == 5) && session_) {
      decode(unit);
    }
  }

  void end() {
    if (!session_) return;
    for (DecodedPicture rest = session_->flush(); rest.pixelBuffer; rest = session_->flush()) keep(std::move(rest));
    session_.reset();
  }

 private:
  void decode(const Unit& unit) {
    auto result = session_->decode(lengthPrefixed(unit), static_cast<std::int64_t>(1000 * slices_));
    if (result.status == DecodeStatus::picture) keep(std::move(result.picture));
    ++slices_;
  }

  void keep(DecodedPicture picture) {
    into_.pictures.push_back(std::move(picture));
    into_.unitOfPicture.push_back(slices_);
  }

  platform::VideoDecoders& decoders_;
  DecodedStream& into_;
  Unit sps_;
  std::unique_ptr<platform::VideoDecoder> session_;
  std::size_t slices_ = 0;
};

}  // namespace

DecodedStream decodeAll(platform::VideoDecoders& decoders, const std::vector<Unit>& units) {
  DecodedStream result;
  Sessions sessions(decoders, result);
  for (const Unit& unit : units) sessions.take(unit);
  sessions.end();
  return result;
}

std::string md5Of(const std::vector<DecodedPicture>& pictures) {
  Md5 sum;
  for (const DecodedPicture& picture : pictures) {
    addLuma(sum, picture.pixelBuffer->luma());
    for (const std::size_t component : {0u, 1u}) addChroma(sum, picture.pixelBuffer->chroma(), component);
  }
  return sum.text();
}

std::string realMediaPath(const std::string& name) {
  const char* folder = std::getenv("ZEL_TEST_MEDIA");
  return std::string(folder != nullptr ? folder : ZEL_TEST_MEDIA) + "/" + name;
}

std::vector<std::uint8_t> realMedia(const std::string& name) {
  std::ifstream file(realMediaPath(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace zel::test
