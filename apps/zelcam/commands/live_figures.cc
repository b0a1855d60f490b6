#include "apps/zelcam/commands/live_figures.h"

#include <fmt/format.h>

#include <algorithm>

namespace zel::app {
namespace {

using Json = nlohmann::ordered_json;

constexpr double kMicros = 1e6;

Json orNull(const std::optional<int>& value) { return value ? Json(*value) : Json(nullptr); }

Json latencyOf(const OutputReport& output) {
  return {{"median", orNull(output.medianLatency)}, {"p99", orNull(output.latency99)}};
}

// The latency of the stream is that of its slowest output.
Json slowestLatency(const std::vector<OutputReport>& outputs) {
  const auto slowest = std::ranges::max_element(outputs, {}, &OutputReport::medianLatency);
  return latencyOf(slowest != outputs.end() ? *slowest : OutputReport());
}

double lengthOf(const EncodedStreamStatistics& stream) {
  return static_cast<double>(stream.newestVideo.value_or(0)) / kMicros;
}

// Pictures and bits a second, from the first picture to the last.
double aSecond(double many, const EncodedStreamStatistics& stream) {
  return stream.pictures < 2 ? 0
                             : many * static_cast<double>(stream.pictures - 1) / static_cast<double>(stream.pictures) /
                                   std::max(lengthOf(stream), 1e-3);
}

Json droppedOf(const LiveFigures& figures) {
  const PreviewStatistics& preview = figures.stream.preview;
  const LiveStatistics& live = figures.stream.live;
  return {{"beforeDecoding", preview.dropped},
          {"withoutPicture", preview.withoutPicture},
          {"notWanted", live.notWanted},
          {"beforeStitching", live.droppedBeforeStitching},
          {"notStitched", live.notStitched},
          {"beforeEncoding", live.droppedBeforeEncoding},
          {"notEncoded", live.notEncoded},
          {"encodedUnits", live.droppedUnits},
          {"audioFrames", figures.stream.droppedAudio}};
}

Json outputOf(const OutputReport& output) {
  return {{"output", output.name},
          {"pictures", output.pictures},
          {"audioFrames", output.audioFrames},
          {"bytes", output.bytes},
          {"dropped", output.dropped},
          {"connections", output.connections},
          {"latency", latencyOf(output)},
          {"fault", output.fault ? Json(*output.fault) : Json(nullptr)}};
}

Json distanceOf(const EncodedStreamStatistics& stream) {
  if (!stream.newestVideo || !stream.newestAudio) return nullptr;
  return (*stream.newestAudio - *stream.newestVideo) / 1000;
}

std::string shown(const Json& number) { return number.is_null() ? "-" : number.dump(); }

}  // namespace

Json jsonOf(const LiveFigures& figures) {
  const EncodedStreamStatistics& stream = figures.stream;
  const auto pictures = static_cast<double>(stream.pictures);
  Json object = {{"seconds", figures.seconds},
                 {"received", figures.stream.preview.units},
                 {"decoded", figures.stream.preview.pictures},
                 {"stitched", figures.stream.live.stitched},
                 {"encoded", figures.stream.live.encoded},
                 {"pictures", stream.pictures},
                 {"audioFrames", stream.audioFrames},
                 {"dropped", droppedOf(figures)},
                 {"fps", aSecond(pictures, stream)},
                 {"bitrate", aSecond(8.0 * static_cast<double>(stream.videoBytes), stream)},
                 {"audioVideoDistance", distanceOf(stream)},
                 {"latency", slowestLatency(figures.outputs)},
                 {"cpuSecondsPerPicture", stream.pictures == 0 ? Json(nullptr) : Json(figures.cpuSeconds / pictures)},
                 {"peakMemory", figures.peakMemory},
                 {"outputs", Json::array()}};
  for (const OutputReport& output : figures.outputs) object["outputs"].push_back(outputOf(output));
  return object;
}

std::vector<std::string> linesOf(const LiveFigures& figures) {
  const Json all = jsonOf(figures);
  std::vector<std::string> lines;
  lines.push_back(fmt::format("pictures   {} received, {} decoded, {} stitched, {} encoded, {} handed to the outputs",
                              shown(all["received"]), shown(all["decoded"]), shown(all["stitched"]),
                              shown(all["encoded"]), shown(all["pictures"])));
  std::string drops;
  for (const auto& [where, count] : all["dropped"].items()) {
    if (count != 0) drops += fmt::format("{}{} {}", drops.empty() ? "" : ", ", where, shown(count));
  }
  lines.push_back("dropped    " + (drops.empty() ? "none" : drops));
  lines.push_back(fmt::format(
      "speed      {:.2f} pictures a second, {:.2f} Mbit/s, {} ms CPU a picture, {:.0f} MiB at most",
      all["fps"].get<double>(), all["bitrate"].get<double>() / 1e6,
      all["cpuSecondsPerPicture"].is_null() ? "-"
                                            : fmt::format("{:.1f}", 1000 * all["cpuSecondsPerPicture"].get<double>()),
      static_cast<double>(figures.peakMemory) / (1 << 20)));
  lines.push_back(fmt::format("delay      {} ms median, {} ms for 99 %; sound {} ms ahead of the pictures at the end",
                              shown(all["latency"]["median"]), shown(all["latency"]["p99"]),
                              shown(all["audioVideoDistance"])));
  for (const OutputReport& output : figures.outputs) {
    lines.push_back(fmt::format("{}: {} pictures, {} audio frames, {:.1f} MB, {} packets dropped{}", output.name,
                                output.pictures, output.audioFrames, static_cast<double>(output.bytes) / 1e6,
                                output.dropped, output.fault ? "; FAILED: " + *output.fault : ""));
  }
  return lines;
}

std::string progressOf(const LiveFigures& figures) {
  std::uint64_t dropped = 0;
  for (const OutputReport& output : figures.outputs) dropped += output.dropped;
  return fmt::format("{:.1f} s  {:.1f} pictures a second  {:.2f} Mbit/s  {} pictures  {} packets dropped",
                     lengthOf(figures.stream), aSecond(static_cast<double>(figures.stream.pictures), figures.stream),
                     aSecond(8.0 * static_cast<double>(figures.stream.videoBytes), figures.stream) / 1e6,
                     figures.stream.pictures, dropped);
}

}  // namespace zel::app
