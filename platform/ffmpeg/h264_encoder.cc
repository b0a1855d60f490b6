#include "platform/ffmpeg/h264_encoder.h"

#include <algorithm>
#include <deque>
#include <limits>
#include <span>
#include <utility>
#include <vector>

#include "platform/ffmpeg/annex_b.h"
#include "platform/ffmpeg/libav.h"
#include "platform/ffmpeg/matrix_conversion.h"
#include "platform/h264/h264_headers.h"

namespace zel::platform {
namespace {

using EncodedBytes = std::span<std::uint8_t>;
using Encoders = LibavVideoEncoders;

bool isSide(std::int32_t side) {
  return side >= Encoders::kSmallestSide && side <= Encoders::kLargestSide && side % 2 == 0;
}

bool canBeMet(const VideoEncoderSettings& settings) {
  return isSide(settings.width) && isSide(settings.height) &&
         std::int64_t{settings.width} * settings.height <= Encoders::kMostPixels &&
         settings.bitrate >= Encoders::kLeastBitrate && settings.fps >= 1 && settings.fps <= Encoders::kMostFps;
}

void describePictures(AVCodecContext& context, const VideoEncoderSettings& settings, const PictureColour& colour) {
  context.width = settings.width;
  context.height = settings.height;
  context.pix_fmt = AV_PIX_FMT_NV12;
  context.color_range = AVCOL_RANGE_JPEG;
  context.colorspace = static_cast<AVColorSpace>(colour.matrix);
  context.color_primaries = static_cast<AVColorPrimaries>(colour.primaries);
  context.color_trc = static_cast<AVColorTransferCharacteristic>(colour.transfer);
  context.framerate = {settings.fps, 1};
  context.time_base = {1, settings.fps};
}

// Sliced threads would cut each picture into as many slices.
void describeStream(AVCodecContext& context, const VideoEncoderSettings& settings, int threads) {
  context.bit_rate = settings.bitrate;
  context.rc_max_rate = settings.bitrate;
  context.rc_buffer_size = settings.bitrate;  // bits: a second of them
  context.gop_size = settings.fps;
  context.max_b_frames = 0;
  context.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
  context.thread_count = threads;
  context.thread_type = FF_THREAD_FRAME;
  context.slices = 1;
}

bool setOption(AVCodecContext& context, const char* name, const char* value) {
  return av_opt_set(context.priv_data, name, value, 0) >= 0;
}

CodecContextPtr openContext(const VideoEncoderSettings& settings, const LibavEncoderOptions& options,
                            const PictureColour& colour) {
  CodecContextPtr context = silentContext(avcodec_find_encoder_by_name("libx264"));
  if (!context) return nullptr;
  describePictures(*context, settings, colour);
  describeStream(*context, settings, std::clamp(options.threads, 1, Encoders::kMostThreads));
  const bool isSet = setOption(*context, "preset", options.preset) && setOption(*context, "tune", "zerolatency") &&
                     setOption(*context, "sc_threshold", "0");  // keyframes at each second, not at scene cuts
  if (!isSet || avcodec_open2(context.get(), nullptr, nullptr) < 0) return nullptr;
  return context;
}

// Whether the plane has all bytes that will be read.
bool holds(const PixelPlane& plane, std::size_t rowBytes, std::size_t rows) {
  return plane.data != nullptr && plane.rowBytes >= rowBytes && plane.rows >= rows && plane.stride >= plane.rowBytes &&
         plane.stride <= std::numeric_limits<std::int32_t>::max() / rows;
}

// The plane without a copy. The reference keeps the picture alive; FFmpeg treats the bytes as read-only.
bool setPlane(AVFrame& frame, std::size_t index, const PixelPlane& plane, const PixelBufferRef& picture) {
  auto owner = std::make_unique<PixelBufferRef>(picture);
  const auto letGo = [](void* kept, std::uint8_t*) { delete static_cast<PixelBufferRef*>(kept); };
  frame.data[index] = const_cast<std::uint8_t*>(plane.data);
  frame.linesize[index] = static_cast<int>(plane.stride);
  const std::size_t size = plane.stride * (plane.rows - 1) + plane.rowBytes;
  frame.buf[index] = av_buffer_create(frame.data[index], size, letGo, owner.get(), AV_BUFFER_FLAG_READONLY);
  if (frame.buf[index] == nullptr) return false;
  static_cast<void>(owner.release());
  return true;
}

FramePtr frameOf(const PixelBufferRef& picture, std::int64_t number) {
  FramePtr frame(av_frame_alloc());
  if (!frame) return nullptr;
  frame->format = AV_PIX_FMT_NV12;
  frame->width = picture->width();
  frame->height = picture->height();
  frame->color_range = AVCOL_RANGE_JPEG;
  frame->pts = number;
  if (!setPlane(*frame, 0, picture->luma(), picture) || !setPlane(*frame, 1, picture->chroma(), picture))
    return nullptr;
  return frame;
}

class H264Encoder final : public VideoEncoder {
 public:
  H264Encoder(const VideoEncoderSettings& settings, const LibavEncoderOptions& options)
      : settings_(settings), options_(options) {}

  bool open() override {
    if (context_ || !canBeMet(settings_)) return false;
    packet_.reset(av_packet_alloc());
    return packet_ && openFor(completed({}));
  }

  void setSpsPpsCallback(SpsPpsCallback callback) override { parameterSets_ = std::move(callback); }
  void setNaluCallback(NaluCallback callback) override { nalu_ = std::move(callback); }

  bool encodeImage(const PixelBufferRef& picture, MediaTime time) override {
    if (!context_ || !picture || !fits(*picture)) return false;
    const PictureColour colour = completed(picture->colour());
    if (nextNumber_ == 0 && colour != colour_ && !openFor(colour)) return false;
    const PixelBufferRef converted = inMatrix(picture, colour_.matrix);
    if (!converted) return false;
    const std::int64_t number = nextNumber_++;
    const FramePtr frame = frameOf(converted, number);
    if (!frame) return false;
    waiting_.push_back({number, time});  // before the picture is taken, so that none is taken whose time is not known
    if (const int fault = avcodec_send_frame(context_.get(), frame.get()); fault < 0) {
      waiting_.pop_back();
      // libx264 that has found no memory once reads what it has not got when it is called again.
      if (fault == AVERROR_EXTERNAL) context_.reset();
      return false;
    }
    int status = 0;
    while ((status = avcodec_receive_packet(context_.get(), packet_.get())) >= 0) {
      handOn();
      av_packet_unref(packet_.get());
    }
    return status == AVERROR(EAGAIN);
  }

 private:
  struct Waiting {
    std::int64_t number;
    MediaTime time;
  };

  bool fits(const PixelBuffer& picture) const {
    const auto width = static_cast<std::size_t>(settings_.width), height = static_cast<std::size_t>(settings_.height);
    return picture.width() == settings_.width && picture.height() == settings_.height &&
           holds(picture.luma(), width, height) && holds(picture.chroma(), width, height / 2);
  }

  // The parameter sets, which are read here, declare the colours, which are known only with the first picture.
  bool openFor(const PictureColour& colour) {
    context_.reset();  // its memory and threads are freed before the next one's are created
    context_ = openContext(settings_, options_, colour);
    colour_ = colour;
    return context_ && readParameterSets();
  }

  bool readParameterSets() {
    forEachUnit(EncodedBytes(context_->extradata, static_cast<std::size_t>(context_->extradata_size)),
                [this](EncodedBytes unit) {
                  if (typeOf(unit[0]) == H264UnitType::sequence) sps_.assign(unit.begin(), unit.end());
                  if (typeOf(unit[0]) == H264UnitType::picture) pps_.assign(unit.begin(), unit.end());
                });
    if (sps_.empty() || pps_.empty()) context_.reset();
    return context_ != nullptr;
  }

  // The packet belongs to this encoder until it is unreferenced: its bytes may be overwritten.
  void handOn() {
    if (!parameterSetsSent_ && parameterSets_) {
      parameterSets_(sps_.data(), static_cast<std::int32_t>(sps_.size()), pps_.data(),
                     static_cast<std::int32_t>(pps_.size()));
    }
    parameterSetsSent_ = true;  // not before: a receiver that found no memory gets them with the next unit
    const MediaTime time = timeOf(packet_->pts);
    if (!nalu_ || av_packet_make_writable(packet_.get()) < 0) return;
    const EncodedBytes stream(packet_->data, static_cast<std::size_t>(packet_->size));
    forEachUnit(stream, [&](EncodedBytes unit) {
      const H264UnitType type = typeOf(unit[0]);
      if (type == H264UnitType::slice || type == H264UnitType::keySlice)
        send(stream, unit, type == H264UnitType::keySlice, time);
    });
  }

  // The length overwrites the start code. A start code of three bytes at the packet's begin has no space for it.
  void send(EncodedBytes stream, EncodedBytes unit, bool key, MediaTime time) {
    std::uint8_t* prefixed = unit.data() - kLengthPrefix;
    if (unit.data() - stream.data() < static_cast<std::ptrdiff_t>(kLengthPrefix)) {
      moved_.assign(kLengthPrefix, 0);
      moved_.insert(moved_.end(), unit.begin(), unit.end());
      prefixed = moved_.data();
    }
    for (std::size_t i = 0; i < kLengthPrefix; ++i)
      prefixed[i] = static_cast<std::uint8_t>(unit.size() >> (24 - 8 * i));
    nalu_(prefixed, static_cast<std::int32_t>(kLengthPrefix + unit.size()), key, time);
  }

  // A picture that failed inside the encoder leaves its timestamp in the queue.
  MediaTime timeOf(std::int64_t number) {
    while (!waiting_.empty() && waiting_.front().number < number) waiting_.pop_front();
    return waiting_.empty() ? MediaTime() : waiting_.front().time;
  }

  const VideoEncoderSettings settings_;
  const LibavEncoderOptions options_;
  CodecContextPtr context_;
  PictureColour colour_;  // as declared in the parameter sets
  PacketPtr packet_;
  std::vector<std::uint8_t> sps_, pps_, moved_;
  SpsPpsCallback parameterSets_;
  NaluCallback nalu_;
  bool parameterSetsSent_ = false;
  std::int64_t nextNumber_ = 0;
  std::deque<Waiting> waiting_;  // pictures inside the encoder
};

}  // namespace

std::unique_ptr<VideoEncoder> LibavVideoEncoders::create(const VideoEncoderSettings& settings) {
  return std::make_unique<H264Encoder>(settings, options_);
}

}  // namespace zel::platform
