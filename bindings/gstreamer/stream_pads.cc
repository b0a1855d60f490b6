#include "bindings/gstreamer/stream_pads.h"

#include <ZELTarkaSDK/AudioConfig.h>
#include <gst/video/video.h>

#include <array>

#include "bindings/gstreamer/caps.h"
#include "bindings/gstreamer/messages.h"

namespace zel::gst {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::array<std::uint8_t, 4> kStartCode = {0, 0, 0, 1};
constexpr std::size_t kUnitType = kStartCode.size();
constexpr int kTypeBits = 0x1F, kSequence = 7;

// Two seconds of H.264 at 30 pictures a second and as much sound; raw pictures have megabytes each.
constexpr std::size_t kMostPackets = 60, kMostFrames = 100, kMostPictures = 4;

int rateOf(const Settings& settings) { return previewFormat(settings.resolution)->fps; }

GstClockTime lengthOf(std::uint64_t count, int rate) { return gst_util_uint64_scale_int(count * GST_SECOND, 1, rate); }

GstBuffer* newParameterSets(const StreamHeaders& headers) {
  GstBuffer* const buffer =
      gst_buffer_new_allocate(nullptr, 2 * kStartCode.size() + headers.sps.size() + headers.pps.size(), nullptr);
  gsize at = 0;
  for (const ZELData& set : {headers.sps, headers.pps}) {
    at += gst_buffer_fill(buffer, at, kStartCode.data(), kStartCode.size());
    at += gst_buffer_fill(buffer, at, set.bytes().data(), set.size());
  }
  return buffer;
}

// A stream whose parameter sets have changed brings them itself.
bool bringsParameterSets(std::span<const std::uint8_t> picture) {
  return picture.size() > kUnitType && (picture[kUnitType] & kTypeBits) == kSequence;
}

}  // namespace

StreamPads::StreamPads(GstElement& element, const Settings& settings)
    : element_(element),
      settings_(settings),
      pictureLength_(lengthOf(1, rateOf(settings))),
      video_(element, {.name = "video",
                       .capacity = givesPictures() ? kMostPictures : kMostPackets,
                       .needsKeys = !givesPictures(),
                       .buffer = [this](const Item& item) { return videoBuffer(item); },
                       .pushed =
                           [this](GstPad* pad, GstFlowReturn flow) {
                             const bool isCounted = flow == GST_FLOW_OK && settings_.numBuffers >= 0;
                             if (isCounted && ++pushedPictures_ >= settings_.numBuffers) endAtOnce();
                             return pushed(pad, flow);
                           }}),
      audio_(element, {.name = "audio",
                       .capacity = kMostFrames,
                       .needsKeys = false,
                       .buffer = [](const Item& item) { return bufferOf(item.bytes); },
                       .pushed = [this](GstPad* pad, GstFlowReturn flow) { return pushed(pad, flow); }}) {
  gst_flow_combiner_add_pad(flows_, video_.pad());
  gst_flow_combiner_add_pad(flows_, audio_.pad());
  if (settings_.numBuffers == 0) end();
}

StreamPads::~StreamPads() {
  stop();
  gst_flow_combiner_free(flows_);
  gst_clear_buffer(&parameterSets_);
}

void StreamPads::show(const StreamHeaders& headers, const platform::PixelBufferRef& picture, Panoramas* panoramas) {
  const auto sound = parseAudioConfig(headers.audioConfig.bytes());
  frameLength_ = lengthOf(kSamplesPerFrame, sound ? sound->rate : 48'000);
  parameterSets_ = newParameterSets(headers);
  panoramas_ = panoramas;
  const int rate = rateOf(settings_);
  GstCaps* const video = picture ? capsOfPictures(*picture, rate) : capsOfVideo(headers, rate);
  GstCaps* const audio = capsOfAudio(headers);
  const guint group = gst_util_group_id_next();
  video_.show(*video, group);
  audio_.show(*audio, group);
  gst_caps_unref(video);
  gst_caps_unref(audio);
  gst_element_no_more_pads(&element_);
  gst_element_post_message(&element_, gst_message_new_latency(GST_OBJECT(&element_)));
  video_.start();
  audio_.start();
}

// -- What comes

// Whether the pipeline plays. What follows a pause has another place on its running time.
bool StreamPads::isHeard() {
  const int change = changes_.load();
  if (change != heardChange_) times_.restart();
  heardChange_ = change;
  return change % 2 != 0;
}

void StreamPads::packet(const MediaPacket& packet) {
  if (!isHeard()) return;
  const bool isVideo = packet.track == Track::video;
  times_.arrived(packet, isVideo && (packet.key || givesPictures()), runningTime(packet.arrival));
  if (isVideo && givesPictures()) return;
  const GstClockTime length = isVideo ? pictureLength_ : frameLength_;
  const auto placed = times_.place(packet.track, packet.time, length);
  if (!placed) return;
  (isVideo ? video_ : audio_)
      .append({.bytes = packet.data,
               .time = placed->time,
               .duration = length,
               .isKey = packet.key || !isVideo,
               .isFirst = placed->isFirst});
}

void StreamPads::picture(const platform::PixelBufferRef& picture, std::int64_t time) {
  if (!isHeard()) return;
  const auto placed = times_.place(Track::video, time, pictureLength_);
  if (!placed) return;
  video_.append({.picture = picture, .time = placed->time, .duration = pictureLength_, .isFirst = placed->isFirst});
}

// Of what arrived then; without a pipeline's clock, the time that has passed.
GstClockTime StreamPads::runningTime(std::optional<Clock::time_point> arrival) const {
  const auto since = arrival ? std::max(Clock::now() - *arrival, Clock::duration::zero()) : Clock::duration::zero();
  const auto ago = static_cast<GstClockTime>(std::chrono::nanoseconds(since).count());
  GstClock* const clock = gst_element_get_clock(&element_);
  if (clock == nullptr) return 0;
  const GstClockTime now = gst_clock_get_time(clock), base = gst_element_get_base_time(&element_);
  gst_object_unref(clock);
  return now > base + ago ? now - base - ago : 0;
}

void StreamPads::setPlaying(bool isPlaying) {
  if ((changes_.load() % 2 != 0) != isPlaying) ++changes_;
}

void StreamPads::end() {
  video_.end();
  audio_.end();
}

void StreamPads::endAtOnce() {
  video_.endAtOnce();
  audio_.end();
}

void StreamPads::flush() {
  video_.flush();
  audio_.flush();
}

void StreamPads::stop() {
  video_.stop();
  audio_.stop();
}

// A picture is known to be whole when the next one begins, and arrives as unevenly again. Each further thread of the
// decoder keeps a picture; stitching takes at most one.
StreamPads::Latency StreamPads::latency() const {
  GstClockTime pictures = 2;
  if (givesPictures()) pictures += settings_.decoderThreads - 1;
  if (settings_.output == Output::stitched) ++pictures;
  const GstClockTime least = pictures * pictureLength_;
  return {least, least + (givesPictures() ? kMostPictures : kMostPackets) * pictureLength_};
}

// -- What is pushed

GstBuffer* StreamPads::videoBuffer(const Item& item) {
  if (item.picture != nullptr) return pictureBuffer(item);
  GstBuffer* const picture = bufferOf(item.bytes);
  if (!item.isKey || bringsParameterSets(item.bytes.bytes())) return picture;
  return gst_buffer_append(gst_buffer_copy(parameterSets_), picture);
}

GstBuffer* StreamPads::pictureBuffer(const Item& item) {
  if (!readsStrides_ || gst_pad_check_reconfigure(video_.pad())) askForStrides();
  if (panoramas_ == nullptr) return pictures_.bufferOf(item.picture, *readsStrides_);
  const platform::PixelBufferRef panorama = panoramas_->stitched(item.picture);
  if (panorama != nullptr) return pictures_.bufferOf(panorama, *readsStrides_);
  if (const auto why = panoramas_->takeFailure()) {
    postError(element_, *why);
    endAtOnce();
  }
  return nullptr;
}

void StreamPads::askForStrides() {
  GstCaps* const caps = gst_pad_get_current_caps(video_.pad());
  GstQuery* const query = gst_query_new_allocation(caps, FALSE);
  readsStrides_ = gst_pad_peer_query(video_.pad(), query) &&
                  gst_query_find_allocation_meta(query, GST_VIDEO_META_API_TYPE, nullptr);
  gst_query_unref(query);
  gst_caps_unref(caps);
}

// A pad that nobody has linked does not stop the other one.
bool StreamPads::pushed(GstPad* pad, GstFlowReturn flow) {
  GstFlowReturn both = GST_FLOW_OK;
  {
    const std::lock_guard lock(flowMutex_);
    both = gst_flow_combiner_update_pad_flow(flows_, pad, flow);
  }
  if (both == GST_FLOW_OK) return flow == GST_FLOW_OK || flow == GST_FLOW_NOT_LINKED;
  if (both == GST_FLOW_FLUSHING || both == GST_FLOW_EOS) return false;
  GST_ELEMENT_FLOW_ERROR(&element_, both);
  endAtOnce();
  return true;  // to the end of the stream
}

}  // namespace zel::gst
