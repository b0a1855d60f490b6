#include <ZELTarkaSDK/ZELThumbnailRender.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "media/c_buffer.h"
#include "media/nal_unit.h"
#include "media/parameter_sets.h"
#include "media/start_code.h"
#include "media/zel_h264_decoder.h"

using zel::ByteView;
using zel::NalType;
using zel::platform::PixelBufferRef;

namespace {

constexpr std::size_t kShortestData = 7;
constexpr std::size_t kLongestSingleUnit = 8;

// The data of one call.
class Fragment {
 public:
  explicit Fragment(zel::platform::VideoDecoders& decoders) : decoders_(decoders) {}

  // appendBytes:length: - deliberate: as in the preview, a start code that begins in the last four bytes is not
  // recognised.
  void appendBytes(ByteView bytes) {
    if (bytes.size() < kShortestData) return;
    const std::uint8_t* last = bytes.data();
    const std::uint8_t* const end = bytes.data() + bytes.size();
    if (bytes.size() > kLongestSingleUnit) {
      const std::uint8_t* const stop = end - zel::kStartCodeSize;
      for (const auto* at = zel::findStartCode(last + zel::kStartCodeSize, stop); at < stop;
           at = zel::findStartCode(at + 1, stop)) {
        decoderData({last, at});
        last = at;
      }
    }
    decoderData({last, end});
  }

  // The last keyframe's picture. With reordering, the decoder returns it only after flush().
  PixelBufferRef picture() {
    for (auto late = flush(); late; late = flush()) pixelBuffer_ = late;
    return pixelBuffer_;
  }

 private:
  // decoderData:length: - one NAL unit with its start code.
  void decoderData(ByteView unit) {
    if (unit.size() <= zel::kNalHeaderAt) return;
    switch (zel::nalType(unit[zel::kNalHeaderAt])) {
      case NalType::sps:
        return sets_.offerSps(unit);
      case NalType::pps:
        return takePps(unit);
      case NalType::idrSlice:
        return decode(unit);
      case NalType::slice:
        return;
    }
  }

  void takePps(ByteView unit) {
    if (!zel::isValidParameterSetHeader(unit[zel::kNalHeaderAt])) return;
    sets_.offerPps(unit);
    if (decoder_ || !sets_.areComplete()) return;
    decoder_ = ZELH264Decoder::initWidthSps(decoders_, sets_.sps(), sets_.pps());
  }

  void decode(ByteView unit) {
    if (!decoder_) return;
    CBuffer copy(unit.data(), unit.size());
    zel::writeLengthPrefix(copy.data(), copy.size());
    pixelBuffer_ = decoder_->createPixelBufferUseDecodedData(copy.bytes(), 0).pixelBuffer;
  }

  PixelBufferRef flush() { return decoder_ ? decoder_->flush().pixelBuffer : nullptr; }

  zel::platform::VideoDecoders& decoders_;
  zel::ParameterSets sets_;
  std::unique_ptr<ZELH264Decoder> decoder_;
  PixelBufferRef pixelBuffer_;
};

}  // namespace

ZELThumbnailRender::ZELThumbnailRender(const zel::platform::Ports& ports, std::int32_t width, std::int32_t height)
    : ports_(std::make_unique<const zel::platform::Ports>(ports)), width_(width), height_(height) {}

ZELThumbnailRender::~ZELThumbnailRender() = default;

std::unique_ptr<ZELThumbnailRender> ZELThumbnailRender::initWithRenderWidth(const zel::platform::Ports& ports,
                                                                            std::int32_t width, std::int32_t height) {
  return std::unique_ptr<ZELThumbnailRender>(new ZELThumbnailRender(ports, width, height));
}

PixelBufferRef ZELThumbnailRender::copyPixelBufferWithDecodeH264Data(const ZELData& data) {
  if (ports_->videoDecoders == nullptr) return nullptr;
  Fragment fragment(*ports_->videoDecoders);
  fragment.appendBytes(data.bytes());
  return fragment.picture();
}

PixelBufferRef ZELThumbnailRender::renderWithh264Data(const ZELData& data, const std::optional<std::string>& offset) {
  if (!offset) return nullptr;
  const PixelBufferRef picture = copyPixelBufferWithDecodeH264Data(data);
  if (!picture || ports_->mediaLibrary == nullptr) return nullptr;
  const auto render = ports_->mediaLibrary->createFlatOffscreenRender(width_, height_);
  if (!render) return nullptr;
  render->setOffset(*offset);
  return render->renderVideo(picture);
}

bool ZELThumbnailRender::isInValid(std::uint8_t nalHeader) { return !zel::isValidParameterSetHeader(nalHeader); }
