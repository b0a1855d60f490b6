#include <ZELTarkaSDK/zel.h>

#include <cstdlib>
#include <tuple>

#include "bindings/c/ask.h"
#include "bindings/c/call_object.h"
#include "bindings/c/formats.h"
#include "bindings/c/stitching.h"
#include "bindings/c/stream_object.h"

// A stream and its outputs.

namespace zel::c {

const StreamHeaders& StreamObject::keepHeaders() {
  StreamHeaders now = stream.headers();
  const std::lock_guard lock(mutex_);
  if (given_.empty() || !(given_.back() == now)) given_.push_back(std::move(now));
  return given_.back();
}

namespace {

std::optional<StitchedPictures> stitchedOf(const zel_stream_options& given) {
  if (given.stitched == 0) return std::nullopt;
  StitchedPictures pictures;
  std::tie(pictures.width, pictures.height) = stitchedSize(given.stitched_width, given.stitched_height);
  if (given.stitched_bitrate < 0) refuse("a bitrate is not below 0");
  if (given.stitched_bitrate > 0) pictures.bitrate = given.stitched_bitrate;
  pictures.logo = logoOf(given.logo, given.logo_width, given.logo_height);
  pictures.logoAngle = given.logo_angle;
  pictures.removePurple = given.remove_purple != 0;
  return pictures;
}

StreamOptions streamOf(const zel_stream_options& given, const CameraObject& camera) {
  StreamOptions options;
  options.resolution = resolutionOf(given.format);
  options.stitched = stitchedOf(given);
  if (given.addresses == nullptr && given.address_count > 0) refuse("options->addresses is NULL, and has a count");
  for (std::size_t at = 0; at < given.address_count; ++at)
    options.outputs.push_back(textIn(given.addresses[at], "an address"));
  options.tell = camera.log();
  return options;
}

zel_output_report reportOf(const OutputReport& from) {
  zel_output_report to{};
  to.id = from.id;
  to.state = static_cast<zel_output_state>(from.state);
  to.pictures = from.pictures;
  to.audio_frames = from.audioFrames;
  to.bytes = from.bytes;
  to.dropped = from.dropped;
  to.connections = from.connections;
  to.median_latency = from.medianLatency.value_or(-1);
  to.latency_99 = from.latency99.value_or(-1);
  copyText(from.name, to.name);
  copyText(from.fault.value_or(std::string()), to.fault);
  return to;
}
static_assert(static_cast<int>(OutputState::waiting) == ZEL_OUTPUT_WAITING);
static_assert(static_cast<int>(OutputState::connecting) == ZEL_OUTPUT_CONNECTING);
static_assert(static_cast<int>(OutputState::writing) == ZEL_OUTPUT_WRITING);
static_assert(static_cast<int>(OutputState::retrying) == ZEL_OUTPUT_RETRYING);
static_assert(static_cast<int>(OutputState::finished) == ZEL_OUTPUT_FINISHED);
static_assert(static_cast<int>(OutputState::failed) == ZEL_OUTPUT_FAILED);

}  // namespace

}  // namespace zel::c

using namespace zel::c;

zel_status zel_stream_start(zel_camera* camera, const zel_stream_options* options, int time_limit, zel_stream** stream,
                            zel_error* error) {
  return guarded(error, [&] {
    checkGiven(stream, "stream");
    const zel_stream_options given = takenOrZero(options, "options");
    const zel::RequestOptions request = withTimeLimit(time_limit);
    checkMayWait();
    auto object = objectOf<CameraObject>(camera);
    const zel::StreamOptions how = streamOf(given, *object);
    auto pending = object->with([&](zel::Camera& asked) { return asked.stream(how, request); });
    const bool isOnCameraThread = object->callsOnCameraThread();
    object = nullptr;
    *stream = newHandle(std::make_shared<StreamObject>(valueOf(pending.get()), isOnCameraThread));
  });
}

zel_status zel_begin_stream_start(zel_camera* camera, const zel_stream_options* options, int time_limit,
                                  zel_stream** stream, zel_done_callback callback, void* user, zel_call** call,
                                  zel_error* error) {
  return guarded(error, [&] {
    checkGiven(stream, "stream");
    const Done done{callback, user, call};
    done.check();
    const zel_stream_options given = takenOrZero(options, "options");
    const zel::RequestOptions request = withTimeLimit(time_limit);
    const auto object = objectOf<CameraObject>(camera);
    const zel::StreamOptions how = streamOf(given, *object);
    const bool isOnCameraThread = object->callsOnCameraThread();
    startCall(object->with([&](zel::Camera& asked) { return asked.stream(how, request); }), isOnCameraThread, done,
              [stream, isOnCameraThread](zel::CameraStream started) {
                *stream = newHandle(std::make_shared<StreamObject>(std::move(started), isOnCameraThread));
              });
  });
}

zel_status zel_stream_stop(zel_stream* stream, zel_error* error) {
  return guarded(error, [&] { objectOf<StreamObject>(stream)->stream.stop(); });
}

zel_status zel_stream_free(zel_stream* stream) {
  return guarded(nullptr, [&] {
    if (stream != nullptr) takeObject<StreamObject>(stream)->stream.stop();
  });
}

zel_status zel_stream_get_headers(zel_stream* stream, zel_stream_headers* headers, zel_error* error) {
  return guarded(error, [&] {
    checkSized(headers, "headers");
    const auto object = objectOf<StreamObject>(stream);
    const zel::StreamHeaders& from = object->keepHeaders();
    const auto sps = from.sps.bytes(), pps = from.pps.bytes(), sound = from.audioConfig.bytes();
    give(headers, zel_stream_headers{0, from.width, from.height, from.spherical ? 1 : 0, sps.data(), sps.size(),
                                     pps.data(), pps.size(), sound.data(), sound.size()});
  });
}

zel_status zel_stream_get_statistics(zel_stream* stream, zel_stream_statistics* statistics, zel_error* error) {
  return guarded(error, [&] {
    checkSized(statistics, "statistics");
    const auto now = objectOf<StreamObject>(stream)->stream.statistics();
    give(statistics,
         zel_stream_statistics{0, now.pictures, now.audioFrames, now.videoBytes, now.audioBytes, now.droppedAudio});
  });
}

zel_status zel_stream_add_output(zel_stream* stream, const char* address, int* id, zel_error* error) {
  return guarded(error, [&] {
    checkGiven(id, "id");
    const std::string text = textIn(address, "address");
    *id = valueOf(objectOf<StreamObject>(stream)->stream.addOutput(text));
  });
}

zel_status zel_stream_remove_output(zel_stream* stream, int id, zel_output_report* report, zel_error* error) {
  return guarded(error, [&] {
    if (report != nullptr) checkSized(report, "report");
    const auto removed = valueOf(objectOf<StreamObject>(stream)->stream.removeOutput(id));
    if (report != nullptr) give(report, reportOf(removed));
  });
}

zel_status zel_stream_get_output(zel_stream* stream, size_t index, zel_output_report* report, zel_error* error) {
  return guarded(error, [&] {
    checkSized(report, "report");
    const auto reports = objectOf<StreamObject>(stream)->stream.outputs();
    if (index >= reports.size()) refuse("the stream has " + std::to_string(reports.size()) + " outputs");
    give(report, reportOf(reports[index]));
  });
}
