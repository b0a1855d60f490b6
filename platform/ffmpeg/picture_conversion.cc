#include "platform/ffmpeg/picture_conversion.h"

#include <libyuv/planar_functions.h>

#include <array>
#include <cstddef>
#include <utility>

#include <ZELTarkaSDK/platform/memory_pixel_buffer.h>

namespace zel::platform {
namespace {

// FFmpeg's numbers are those of H.273.
PictureColour colourOf(const AVFrame& frame) {
  return {colourMatrixOf(frame.colorspace), static_cast<std::uint8_t>(frame.color_primaries),
          static_cast<std::uint8_t>(frame.color_trc)};
}

// Luma in the decoder's memory, and the two chroma planes merged into one.
class FramePixelBuffer final : public PixelBuffer {
 public:
  explicit FramePixelBuffer(FramePtr frame)
      : frame_(std::move(frame)),
        chromaStride_(2 * chromaSamples(frame_->width)),
        chroma_(std::make_unique_for_overwrite<std::uint8_t[]>(chromaStride_ * chromaSamples(frame_->height))) {
    libyuv::MergeUVPlane(frame_->data[1], frame_->linesize[1], frame_->data[2], frame_->linesize[2], chroma_.get(),
                         static_cast<int>(chromaStride_), static_cast<int>(chromaStride_ / 2),
                         static_cast<int>(chromaSamples(frame_->height)));
    giveBackChroma();
  }

  std::int32_t width() const override { return frame_->width; }
  std::int32_t height() const override { return frame_->height; }
  PixelPlane luma() const override {
    return {frame_->data[0], static_cast<std::size_t>(frame_->linesize[0]), static_cast<std::size_t>(frame_->width),
            static_cast<std::size_t>(frame_->height)};
  }
  PixelPlane chroma() const override {
    return {chroma_.get(), chromaStride_, chromaStride_, chromaSamples(frame_->height)};
  }
  PictureColour colour() const override { return colourOf(*frame_); }

 private:
  // Releases the decoder's chroma planes if they are separate buffers: a third of a picture's memory.
  void giveBackChroma() {
    for (const int plane : {1, 2}) {
      frame_->data[plane] = nullptr;
      av_buffer_unref(&frame_->buf[plane]);
    }
  }

  const FramePtr frame_;
  const std::size_t chromaStride_;
  const std::unique_ptr<std::uint8_t[]> chroma_;
};

const std::uint8_t* rowOf(const AVFrame& frame, int plane, std::size_t row) {
  return frame.data[plane] + static_cast<std::ptrdiff_t>(row) * frame.linesize[plane];
}

// A table look-up takes a third of the time of the computation.
using SampleTable = std::array<std::uint8_t, 256>;

constexpr SampleTable tableOf(std::uint8_t (*stretch)(std::uint8_t)) {
  SampleTable table{};
  for (std::size_t sample = 0; sample < table.size(); ++sample)
    table[sample] = stretch(static_cast<std::uint8_t>(sample));
  return table;
}

constexpr SampleTable kFullLuma = tableOf(fullRangeLuma), kFullChroma = tableOf(fullRangeChroma);

PixelBufferRef stretchedRange(const AVFrame& frame) {
  const auto picture = MemoryPixelBuffer::create(frame.width, frame.height);
  if (!picture) return nullptr;
  picture->setColour(colourOf(frame));
  for (std::size_t y = 0; y < static_cast<std::size_t>(frame.height); ++y) {
    const auto row = picture->lumaRow(y);
    const std::uint8_t* from = rowOf(frame, 0, y);
    for (std::size_t x = 0; x < row.size(); ++x) row[x] = kFullLuma[from[x]];
  }
  for (std::size_t y = 0; y < chromaSamples(frame.height); ++y) {
    const auto row = picture->chromaRow(y);
    const std::uint8_t *cb = rowOf(frame, 1, y), *cr = rowOf(frame, 2, y);
    for (std::size_t x = 0; x < row.size() / 2; ++x) {
      row[2 * x] = kFullChroma[cb[x]];
      row[2 * x + 1] = kFullChroma[cr[x]];
    }
  }
  return picture;
}

}  // namespace

PixelBufferRef pixelsOf(FramePtr frame) {
  if (frame->format != AV_PIX_FMT_YUV420P && frame->format != AV_PIX_FMT_YUVJ420P) return nullptr;
  if (frame->width < 1 || frame->height < 1) return nullptr;
  const bool isFull = frame->color_range == AVCOL_RANGE_JPEG || frame->format == AV_PIX_FMT_YUVJ420P;
  if (!isFull) return stretchedRange(*frame);
  return std::make_shared<FramePixelBuffer>(std::move(frame));
}

}  // namespace zel::platform
