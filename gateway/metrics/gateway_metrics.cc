#include "gateway/metrics/gateway_metrics.h"

#include <ZELTarkaSDK/Version.h>

#include <functional>
#include <optional>

#include "gateway/metrics/metrics_text.h"

namespace zel::gateway {
namespace {

using Type = MetricsText::Type;
using Cameras = std::vector<CameraMetrics>;

constexpr double kMilli = 1e-3;

// One metric with one value a camera. Nothing: the camera has none.
struct CameraRow {
  std::string_view name;
  Type type;
  std::string_view help;
  std::function<std::optional<double>(const CameraMetrics&)> value;
};

std::optional<double> number(std::uint64_t value) { return static_cast<double>(value); }

// A counter of the stream that runs, where one does.
std::function<std::optional<double>(const CameraMetrics&)> ofStream(std::uint64_t EncodedStreamStatistics::*member) {
  return [member](const CameraMetrics& camera) {
    const auto& stream = camera.statistics.stream;
    return stream ? number((*stream).*member) : std::nullopt;
  };
}

std::function<std::optional<double>(const CameraMetrics&)> ofLink(std::uint64_t LinkStatistics::*member) {
  return [member](const CameraMetrics& camera) { return number(camera.statistics.link.*member); };
}

std::function<std::optional<double>(const CameraMetrics&)> ofPreview(std::uint64_t PreviewStatistics::*member) {
  return [member](const CameraMetrics& camera) { return number(camera.statistics.preview.*member); };
}

std::function<std::optional<double>(const CameraMetrics&)> ofFeed(std::uint64_t FeedStatistics::*member) {
  return [member](const CameraMetrics& camera) { return number(camera.feed.*member); };
}

std::vector<CameraRow> cameraRows() {
  return {
      {"zelcam_link_received_bytes_total", Type::counter, "Bytes read from the camera.",
       ofLink(&LinkStatistics::bytesReceived)},
      {"zelcam_link_written_bytes_total", Type::counter, "Bytes that the camera has taken.",
       ofLink(&LinkStatistics::bytesWritten)},
      {"zelcam_link_discarded_bytes_total", Type::counter, "Bytes thrown away before the stream was synchronised.",
       ofLink(&LinkStatistics::bytesDiscarded)},
      {"zelcam_link_synchronisations_total", Type::counter, "How often the stream was synchronised.",
       ofLink(&LinkStatistics::markersFound)},
      {"zelcam_link_lost_positions_total", Type::counter,
       "Impossible frame lengths, each of which reopened the session.", ofLink(&LinkStatistics::positionsLost)},
      {"zelcam_link_errors_total", Type::counter, "Stream errors, each of which reopened the session.",
       ofLink(&LinkStatistics::streamErrors)},
      {"zelcam_link_round_trip_seconds", Type::gauge, "Round trip of the latest time synchronisation.",
       [](const CameraMetrics& camera) {
         const auto milliseconds = camera.statistics.link.roundTrip;
         return milliseconds < 0 ? std::nullopt : std::optional(static_cast<double>(milliseconds) * kMilli);
       }},
      {"zelcam_clock_offset_seconds", Type::gauge, "From the camera's clock to the host's; 0 where it is not known.",
       [](const CameraMetrics& camera) {
         return std::optional(static_cast<double>(camera.statistics.clockOffset) * kMilli);
       }},
      {"zelcam_preview_units_total", Type::counter, "Encoded slices received for pictures.",
       ofPreview(&PreviewStatistics::units)},
      {"zelcam_preview_dropped_units_total", Type::counter,
       "Of these, dropped because too many were queued for decoding.", ofPreview(&PreviewStatistics::dropped)},
      {"zelcam_stream_pictures_total", Type::counter, "Pictures of the camera's stream.",
       ofStream(&EncodedStreamStatistics::pictures)},
      {"zelcam_stream_audio_frames_total", Type::counter, "AAC frames of the camera's stream.",
       ofStream(&EncodedStreamStatistics::audioFrames)},
      {"zelcam_stream_video_bytes_total", Type::counter, "Bytes of these pictures.",
       ofStream(&EncodedStreamStatistics::videoBytes)},
      {"zelcam_stream_audio_bytes_total", Type::counter, "Bytes of these AAC frames.",
       ofStream(&EncodedStreamStatistics::audioBytes)},
      {"zelcam_viewer_read_bytes_total", Type::counter, "Bytes that viewers of the live picture have read.",
       ofFeed(&FeedStatistics::bytes)},
      {"zelcam_viewer_skipped_pictures_total", Type::counter,
       "Pictures that viewers lost because they read too slowly.", ofFeed(&FeedStatistics::skipped)},
  };
}

void writeRows(MetricsText& text, const Cameras& cameras) {
  for (const CameraRow& row : cameraRows()) {
    text.family(row.name, row.type, row.help);
    for (const CameraMetrics& camera : cameras)
      if (const auto value = row.value(camera)) text.sample(*value, {{"camera", camera.serialNumber}});
  }
}

// Each state has a sample, so that a graph shows when it changed.
void writeStatus(MetricsText& text, const Cameras& cameras) {
  using enum CameraStatus;
  text.family("zelcam_camera_status", Type::gauge, "1 for the status that the camera has.");
  for (const CameraMetrics& camera : cameras)
    for (const CameraStatus status : {absent, opening, streaming, silent})
      text.sample(camera.status == status ? 1 : 0, {{"camera", camera.serialNumber}, {"status", toString(status)}});
}

void writeDrops(MetricsText& text, const Cameras& cameras) {
  struct Cause {
    std::string_view name;
    std::uint64_t DroppedFrames::*count;
  };
  static constexpr Cause kCauses[] = {{"unknown_type", &DroppedFrames::unknownType},
                                      {"no_consumer", &DroppedFrames::noConsumer},
                                      {"unregistered_code", &DroppedFrames::unregisteredCode},
                                      {"short_message", &DroppedFrames::shortMessage},
                                      {"unregistered_data", &DroppedFrames::unregisteredData},
                                      {"short_timestamp", &DroppedFrames::shortTimestamp},
                                      {"timestamp_old_firmware", &DroppedFrames::timestampOldFirmware},
                                      {"no_memory", &DroppedFrames::noMemory}};
  text.family("zelcam_link_dropped_frames_total", Type::counter, "Frames that were dropped, by cause.");
  for (const CameraMetrics& camera : cameras)
    for (const Cause& cause : kCauses)
      text.sample(static_cast<double>(camera.statistics.link.dropped.*cause.count),
                  {{"camera", camera.serialNumber}, {"cause", cause.name}});
}

void writeViewers(MetricsText& text, const Cameras& cameras) {
  text.family("zelcam_viewers", Type::gauge, "Viewers of the live picture now.");
  for (const CameraMetrics& camera : cameras) {
    text.sample(static_cast<double>(camera.feed.mp4Viewers), {{"camera", camera.serialNumber}, {"form", "mp4"}});
    text.sample(static_cast<double>(camera.feed.unitsViewers), {{"camera", camera.serialNumber}, {"form", "units"}});
  }
}

// One metric with one value an output.
void writeOutputs(MetricsText& text, const Cameras& cameras, const CameraRow& row,
                  const std::function<std::optional<double>(const OutputReport&)>& value) {
  text.family(row.name, row.type, row.help);
  for (const CameraMetrics& camera : cameras)
    for (const OutputStatus& output : camera.outputs)
      if (const auto one = value(output.report))
        text.sample(*one, {{"camera", camera.serialNumber}, {"output", std::to_string(output.id)}});
}

void writeOutputs(MetricsText& text, const Cameras& cameras) {
  const auto counter = [&](std::string_view name, std::string_view help, auto OutputReport::*member) {
    writeOutputs(text, cameras, {name, Type::counter, help, {}},
                 [member](const OutputReport& report) { return std::optional(static_cast<double>(report.*member)); });
  };
  text.family("zelcam_output_info", Type::gauge, "An output: where it goes, and the state that it has.");
  for (const CameraMetrics& camera : cameras)
    for (const OutputStatus& output : camera.outputs)
      text.sample(1, {{"camera", camera.serialNumber},
                      {"output", std::to_string(output.id)},
                      {"address", output.address},
                      {"state", wordFor(output.report.state)}});
  counter("zelcam_output_pictures_total", "Pictures written to the output.", &OutputReport::pictures);
  counter("zelcam_output_written_bytes_total", "Bytes written to the output.", &OutputReport::bytes);
  counter("zelcam_output_dropped_packets_total", "Packets that the output lost.", &OutputReport::dropped);
  counter("zelcam_output_connections_total", "Connections to the output's server.", &OutputReport::connections);
  counter("zelcam_output_retries_total", "How often the output's server was tried again.", &OutputReport::retries);
  const auto latency = [](const OutputReport& report) -> std::optional<double> {
    return report.medianLatency ? std::optional(*report.medianLatency * kMilli) : std::nullopt;
  };
  writeOutputs(text, cameras,
               {"zelcam_output_median_latency_seconds",
                Type::gauge,
                "From a picture's arrival to its end in the file or on the wire; half of the pictures took less.",
                {}},
               latency);
}

void writeProcess(MetricsText& text, const ProcessMetrics& process) {
  const auto one = [&](std::string_view name, Type type, std::string_view help, double value) {
    text.family(name, type, help);
    text.sample(value);
  };
  text.family("zelcam_build_info", Type::gauge, "The version that runs.");
  text.sample(1, {{"version", ZELTarkaSDKVersionString}});
  one("process_cpu_seconds_total", Type::counter, "Processor time of the gateway's process.", process.processorTime);
  one("process_start_time_seconds", Type::gauge, "When the process began, since 1970.", process.start);
  one("process_resident_memory_bytes", Type::gauge, "Memory that the process holds.",
      static_cast<double>(process.residentMemory));
  one("process_open_fds", Type::gauge, "Descriptors that the process has open.",
      static_cast<double>(process.openDescriptors));
}

}  // namespace

std::string metricsText(const ProcessMetrics& process, const std::vector<CameraMetrics>& cameras) {
  MetricsText text;
  writeProcess(text, process);
  writeStatus(text, cameras);
  writeRows(text, cameras);
  writeDrops(text, cameras);
  writeViewers(text, cameras);
  writeOutputs(text, cameras);
  return text.take();
}

}  // namespace zel::gateway
