#include "simulator/media/scene_film.h"

#include <cmath>
#include <utility>

#include "simulator/media/luma_and_chroma.h"

namespace zel::simulator {

using platform::CodecContextPtr;
using platform::FramePtr;
using platform::PacketPtr;

namespace {

CodecContextPtr openEncoder(const PreviewFormat& format) {
  CodecContextPtr context = platform::silentContext(avcodec_find_encoder_by_name("libx264"));
  if (!context) return nullptr;
  context->width = format.width;
  context->height = format.height;
  context->time_base = {1, format.rate};
  context->framerate = {format.rate, 1};
  context->gop_size = format.rate;
  context->pix_fmt = AV_PIX_FMT_YUVJ420P;
  context->color_range = AVCOL_RANGE_JPEG;
  // Declares all of them: some players ignore a matrix without primaries and transfer.
  context->colorspace = AVCOL_SPC_SMPTE170M;
  context->color_primaries = AVCOL_PRI_SMPTE170M;
  context->color_trc = AVCOL_TRC_SMPTE170M;
  context->thread_count = 1;  // several threads would add slices
  context->slices = format.slices;
  av_opt_set(context.get(), "preset", "superfast", AV_OPT_SEARCH_CHILDREN);
  av_opt_set(context.get(), "tune", "zerolatency", AV_OPT_SEARCH_CHILDREN);
  if (format.bitrate > 0) {
    context->bit_rate = context->rc_max_rate = context->rc_buffer_size = format.bitrate;
  } else {
    av_opt_set(context.get(), "qp", "20", AV_OPT_SEARCH_CHILDREN);
  }
  av_opt_set(context.get(), "forced-idr", "1", AV_OPT_SEARCH_CHILDREN);
  av_opt_set(context.get(), "x264-params", "scenecut=0:repeat-headers=1:annexb=1", AV_OPT_SEARCH_CHILDREN);
  return avcodec_open2(context.get(), nullptr, nullptr) == 0 ? std::move(context) : nullptr;
}

FisheyeProjector::Rows movingRows(int sceneHeight) {
  const auto row = [sceneHeight](double latitude) { return sceneHeight * (0.5 - latitude / 180); };
  return {static_cast<int>(std::floor(row(kMovingLatitude))), static_cast<int>(std::ceil(row(-kMovingLatitude)))};
}

// libx264 writes three-byte start codes within a picture; the camera writes only four-byte ones.
VideoPicture withLongStartCodes(const AVPacket& packet) {
  const std::span<const std::uint8_t> stream(packet.data, static_cast<std::size_t>(packet.size));
  VideoPicture picture;
  for (const UnitPlace& unit : unitsIn(stream)) {
    picture.bytes.insert(picture.bytes.end(), {0, 0, 0, 1});
    picture.bytes.insert(picture.bytes.end(), stream.begin() + static_cast<std::ptrdiff_t>(unit.header),
                         stream.begin() + static_cast<std::ptrdiff_t>(unit.end));
  }
  picture.key = (packet.flags & AV_PKT_FLAG_KEY) != 0;
  return picture;
}

}  // namespace

SceneFilm::SceneFilm(const PreviewFormat& format)
    : format_(format),
      scene_(format.width, format.height),
      lenses_(factoryLensOffset(), format.width, format.height, format.width, format.height),
      moving_(lenses_.rowsShowing(movingRows(format.height))),
      encoder_(openEncoder(format)) {
  if (format.bitrate > 0) grain_.emplace();
}

void SceneFilm::see() {
  const Picture scene = scene_.at(static_cast<double>(number_) / format_.rate);
  if (number_ == 0) {
    seen_ = lenses_.project(scene);
  } else {
    lenses_.renew(scene, moving_, seen_);
  }
}

void SceneFilm::addGrain(AVFrame& frame) const {
  std::uint64_t row = 0;
  for (int plane = 0; plane < 3; ++plane) {
    const int half = plane == 0 ? 1 : 2;
    for (int y = 0; y < frame.height / half; ++y) {
      std::uint8_t* const first = frame.data[plane] + std::ptrdiff_t{y} * frame.linesize[plane];
      grain_->add(static_cast<std::uint64_t>(number_), row++, {first, static_cast<std::size_t>(frame.width / half)});
    }
  }
}

FramePtr SceneFilm::view() const {
  FramePtr frame(av_frame_alloc());
  frame->format = AV_PIX_FMT_YUVJ420P;
  frame->width = format_.width;
  frame->height = format_.height;
  frame->pts = number_;
  if (av_frame_get_buffer(frame.get(), 0) < 0) return nullptr;
  convert(seen_, *frame);
  if (grain_) addGrain(*frame);
  return frame;
}

VideoPicture SceneFilm::next() {
  see();
  const PacketPtr packet(av_packet_alloc());
  const FramePtr frame = view();
  ++number_;
  if (!encoder_ || !frame || avcodec_send_frame(encoder_.get(), frame.get()) < 0) return {};
  if (avcodec_receive_packet(encoder_.get(), packet.get()) < 0) return {};
  return withLongStartCodes(*packet);
}

}  // namespace zel::simulator
