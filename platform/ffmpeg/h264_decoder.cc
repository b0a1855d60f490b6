#include "platform/ffmpeg/h264_decoder.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

#include "platform/ffmpeg/libav.h"
#include "platform/ffmpeg/owed_pictures.h"
#include "platform/ffmpeg/picture_conversion.h"
#include "platform/ffmpeg/picture_memory.h"
#include "platform/h264/h264_headers.h"

namespace zel::platform {
namespace {

using Bytes = VideoDecoder::Bytes;

constexpr std::uint8_t kDelimiter[] = {9, 0xF0};        // an access-unit delimiter before a picture of any kind
constexpr std::size_t kLargestUnit = 64u << 20;         // bytes
constexpr std::size_t kLargestParameterSet = 1u << 16;  // bytes

bool setHeaders(AVCodecContext& context, Bytes sps, Bytes pps) {
  std::vector<std::uint8_t> headers;
  appendUnit(headers, sps);
  appendUnit(headers, pps);
  context.extradata = static_cast<std::uint8_t*>(av_mallocz(headers.size() + AV_INPUT_BUFFER_PADDING_SIZE));
  if (context.extradata == nullptr) return false;
  std::memcpy(context.extradata, headers.data(), headers.size());
  context.extradata_size = static_cast<int>(headers.size());
  return true;
}

std::size_t lengthPrefix(Bytes unit) {
  return std::size_t{unit[0]} << 24 | std::size_t{unit[1]} << 16 | std::size_t{unit[2]} << 8 | std::size_t{unit[3]};
}

// The unit after its length; nothing when the length does not match.
std::optional<Bytes> unitIn(Bytes prefixed) {
  if (prefixed.size() <= kLengthPrefix || prefixed.size() > kLargestUnit) return std::nullopt;
  const Bytes unit = prefixed.subspan(kLengthPrefix);
  return lengthPrefix(prefixed) == unit.size() ? std::optional(unit) : std::nullopt;
}

// The next picture; null while there is none.
FramePtr receivedFrom(AVCodecContext& context) {
  FramePtr frame(av_frame_alloc());
  return frame && avcodec_receive_frame(&context, frame.get()) >= 0 ? std::move(frame) : nullptr;
}

// Units in a packet of the codec's, so that sending it copies nothing more.
class UnitPacket {
 public:
  std::size_t size() const { return packet_ ? static_cast<std::size_t>(packet_->size) : 0; }

  // FFmpeg searches for start codes itself, so those that are left inside a unit do no harm.
  // Errors: false where there is no memory; the unit is left out.
  bool append(Bytes unit) {
    if (!packet_) packet_.reset(av_packet_alloc());
    const std::size_t held = size();
    if (!packet_ || av_grow_packet(packet_.get(), static_cast<int>(sizeof kStartCode + unit.size())) < 0) return false;
    std::memcpy(packet_->data + held, kStartCode.data(), sizeof kStartCode);
    std::memcpy(packet_->data + held + sizeof kStartCode, unit.data(), unit.size());
    return true;
  }

  // Sends what it holds, and is empty afterwards. FFmpeg's code for the fault, 0 for none.
  int sendTo(AVCodecContext& context, std::int64_t timestamp) {
    if (size() == 0) return AVERROR(ENOMEM);  // no unit could be kept; an empty packet would end the stream
    packet_->pts = timestamp;
    const int fault = avcodec_send_packet(&context, packet_.get());
    clear();
    return fault;
  }

  void clear() {
    if (packet_) av_packet_unref(packet_.get());
  }

 private:
  PacketPtr packet_;
};

DecodeResult resultOf(FramePtr frame, std::int64_t timestamp) {
  PixelBufferRef pixels = pixelsOf(std::move(frame));
  if (!pixels) return {};
  return {DecodeStatus::picture, {std::move(pixels), timestamp}};
}

bool isDecodable(const H264Sequence& sequence) {
  const std::int64_t macroblocks = std::int64_t{sequence.widthInMacroblocks} * sequence.heightInMacroblocks;
  return sequence.chromaFormat <= 1 && sequence.bitDepth == 8 && 256 * macroblocks <= LibavVideoDecoders::kMostPixels;
}

// How units are grouped into packets.
enum class Feeding {
  undecided,         // unit by unit; the first keyframe decides how to continue
  unitByUnit,        // each unit at once: FFmpeg returns a picture as soon as its last macroblock is decoded
  pictureByPicture,  // all units of a picture together, once the next picture shows that it is complete
};

class H264Decoder final : public VideoDecoder {
 public:
  H264Decoder(std::unique_ptr<PictureMemory> memory, CodecContextPtr context, const H264Sequence& sequence,
              Feeding feeding)
      : memory_(std::move(memory)), context_(std::move(context)) {
    note(sequence);
    feed(feeding);
  }

  DecodeResult decode(Bytes prefixed, std::int64_t timestamp) override {
    if (ended_) return {DecodeStatus::sessionInvalid, {}};
    const auto unit = unitIn(prefixed);
    if (!unit) return {};
    if (typeOf(unit->front()) == H264UnitType::sequence && !followSequence(*unit)) return {};
    const auto slice = parseH264SliceStart(*unit);
    if (slice && slice->bidirectional) expectReordering();
    if (slice && slice->beginsPicture) kept_ = 0;
    DecodeResult result = feeding_ == Feeding::pictureByPicture ? collect(*unit, slice, timestamp)
                                                                : decodeAtOnce(*unit, slice, timestamp);
    if (result.status == DecodeStatus::kept && ++kept_ > macroblocks_) result.status = DecodeStatus::noPicture;
    return result;
  }

  DecodedPicture flush() override {
    if (!std::exchange(ended_, true)) {
      if (hasSlice_) sendCollected();
      avcodec_send_packet(context_.get(), nullptr);
    }
    while (FramePtr frame = receivedFrom(*context_)) {
      if (DecodeResult result = shown(std::move(frame)); result.status == DecodeStatus::picture)
        return std::move(result.picture);
    }
    return {};
  }

 private:
  void feed(Feeding feeding) {
    feeding_ = feeding;
    int& flags = context_->flags2;
    flags = feeding == Feeding::pictureByPicture ? flags & ~AV_CODEC_FLAG2_CHUNKS : flags | AV_CODEC_FLAG2_CHUNKS;
  }

  void note(const H264Sequence& sequence) {
    macroblocks_ = std::int64_t{sequence.widthInMacroblocks} * sequence.heightInMacroblocks;
    heldBackIfReordered_ = mostReorderedPictures(sequence);
    reorderingIsKnown_ = sequence.reordersNever || sequence.reorderingIsDeclared;
  }

  // False for an invalid SPS: FFmpeg might accept it and hold pictures back forever.
  bool followSequence(Bytes unit) {
    const auto sequence = parseH264Sequence(unit);
    if (!sequence || !isDecodable(*sequence)) return false;
    note(*sequence);
    return true;
  }

  // FFmpeg would raise this by itself, step by step, and lose a picture at each step.
  void expectReordering() {
    if (std::exchange(reorderingIsKnown_, true)) return;
    context_->has_b_frames = std::max(context_->has_b_frames, heldBackIfReordered_);
  }

  DecodeResult decodeAtOnce(Bytes unit, const std::optional<H264SliceStart>& slice, std::int64_t timestamp) {
    const bool decides = feeding_ == Feeding::undecided && slice && slice->key;
    if (decides && !slice->beginsPicture) return collectFromNowOn(unit, slice, timestamp);
    if (slice && !slice->beginsPicture && !pictureBegun_) return {};  // its first slice is missing
    const bool lostOne = slice && slice->beginsPicture && beginPicture(timestamp);
    const int fault = sendAlone(unit, timestamp);
    FramePtr frame = receivedFrom(*context_);
    if (slice && (fault < 0 || frame)) pictureBegun_ = false;
    if (decides && !frame && context_->has_b_frames == 0) return collectFromNowOn(unit, slice, timestamp);
    if (decides) feed(Feeding::unitByUnit);
    if (frame) return shown(std::move(frame));
    if (slice && fault < 0) owed_.dropNewest();
    return withoutPicture(slice && fault >= 0 && !lostOne);
  }

  // The first keyframe consists of several units. It is decoded again when all of them have arrived.
  DecodeResult collectFromNowOn(Bytes unit, const std::optional<H264SliceStart>& slice, std::int64_t timestamp) {
    forgetPictures();
    feed(Feeding::pictureByPicture);
    packet_.clear();
    return collect(unit, slice, timestamp);
  }

  DecodeResult collect(Bytes unit, const std::optional<H264SliceStart>& slice, std::int64_t timestamp) {
    const bool endsPicture = hasSlice_ && (!slice || slice->beginsPicture);
    DecodeResult result = endsPicture ? decodeCollected() : withoutPicture(slice.has_value());
    if (slice && !hasSlice_) timestamp_ = timestamp;
    if (slice && slice->key && std::exchange(failed_, false)) forgetPictures();
    hasSlice_ = hasSlice_ || slice;
    if (packet_.size() + unit.size() <= kLargestUnit) packet_.append(unit);
    return result;
  }

  // With several threads FFmpeg sometimes gets an unusable reference list. A keyframe needs none, but only a flush
  // resets it.
  DecodeResult decodeCollected() {
    const bool taken = sendCollected();
    hasSlice_ = false;
    if (!taken) failed_ = true;
    if (FramePtr frame = receivedFrom(*context_)) return shown(std::move(frame));
    const bool lostOne = owed_.loseBeyond(mostHeldBack());
    return withoutPicture(taken && !lostOne);
  }

  // With several threads an error belongs to an earlier picture.
  bool sendCollected() {
    const bool taken = packet_.sendTo(*context_, timestamp_) >= 0;
    if (taken || context_->thread_count > 1) owed_.add(timestamp_);
    return taken;
  }

  void forgetPictures() {
    avcodec_flush_buffers(context_.get());
    owed_.clear();
  }

  std::size_t mostHeldBack() {
    const AVCodecContext& context = *context_;
    return static_cast<std::size_t>(context.has_b_frames + context.thread_count - 1);
  }

  DecodeResult shown(FramePtr frame) {
    const std::int64_t time = owed_.take(frame->pts, context_->has_b_frames > 0);
    return resultOf(std::move(frame), time);
  }

  static DecodeResult withoutPicture(bool kept) { return {kept ? DecodeStatus::kept : DecodeStatus::noPicture, {}}; }

  // While FFmpeg waits for units of a picture, it accepts none of the next one. A packet that is marked complete ends
  // that. True when an earlier picture was lost; the new one may be incomplete, and others may be held back.
  bool beginPicture(std::int64_t timestamp) {
    owed_.add(timestamp);
    if (std::exchange(pictureBegun_, true)) {
      int& flags = context_->flags2;
      flags &= ~AV_CODEC_FLAG2_CHUNKS;
      sendAlone(kDelimiter, AV_NOPTS_VALUE);
      flags |= AV_CODEC_FLAG2_CHUNKS;
    }
    return owed_.loseBeyond(mostHeldBack() + 1);
  }

  int sendAlone(Bytes unit, std::int64_t timestamp) {
    packet_.clear();
    return packet_.append(unit) ? packet_.sendTo(*context_, timestamp) : AVERROR(ENOMEM);
  }

  const std::unique_ptr<PictureMemory> memory_;  // outlives the context, which takes from it
  CodecContextPtr context_;
  Feeding feeding_ = Feeding::undecided;
  std::int64_t macroblocks_ = 1;  // of a picture
  std::int64_t kept_ = 0;         // units of the newest picture
  OwedPictures owed_;
  int heldBackIfReordered_ = 1;
  bool reorderingIsKnown_ = false;
  UnitPacket packet_;           // units of the picture being collected
  std::int64_t timestamp_ = 0;  // of its first slice
  bool hasSlice_ = false;
  bool failed_ = false;        // a picture failed since the last keyframe
  bool pictureBegun_ = false;  // unit by unit: a first slice was decoded, and no picture was returned since
  bool ended_ = false;
};

CodecContextPtr makeContext(Bytes sps, Bytes pps, int threads) {
  CodecContextPtr context = silentContext(avcodec_find_decoder(AV_CODEC_ID_H264));
  if (!context || !setHeaders(*context, sps, pps)) return nullptr;
  context->max_pixels = LibavVideoDecoders::kMostPixels;
  context->thread_count = threads;
  context->thread_type = FF_THREAD_FRAME;
  return context;
}

DecoderCreation refused(DecoderCreationStage stage, int status) { return {nullptr, stage, status}; }

}  // namespace

DecoderCreation LibavVideoDecoders::create(VideoDecoder::Bytes sps, VideoDecoder::Bytes pps) {
  const auto sequence = parseH264Sequence(sps);
  const bool plausible = sequence && !pps.empty() && typeOf(pps[0]) == H264UnitType::picture &&
                         std::max(sps.size(), pps.size()) <= kLargestParameterSet;
  if (!plausible) return refused(DecoderCreationStage::description, AVERROR_INVALIDDATA);
  if (!isDecodable(*sequence)) return refused(DecoderCreationStage::session, AVERROR_PATCHWELCOME);

  const int threads = std::clamp(options_.threads, 1, kMostThreads);
  auto memory = std::make_unique<PictureMemory>(options_.mostHeld);
  CodecContextPtr context = makeContext(sps, pps, threads);
  if (!context) return refused(DecoderCreationStage::session, AVERROR(ENOMEM));
  memory->serve(*context);
  context->err_recognition = AV_EF_EXPLODE;  // while the parameter sets are parsed
  const int status = avcodec_open2(context.get(), context->codec, nullptr);
  if (status < 0) return refused(DecoderCreationStage::description, status);
  context->err_recognition = 0;
  const Feeding feeding = threads == 1 ? Feeding::undecided : Feeding::pictureByPicture;
  return {std::make_unique<H264Decoder>(std::move(memory), std::move(context), *sequence, feeding), {}, 0};
}

}  // namespace zel::platform
