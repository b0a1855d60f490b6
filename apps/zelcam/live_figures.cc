#include "apps/zelcam/live_figures.h"

#include <fmt/format.h>

#include <algorithm>

namespace zel::app {
namespace {

using Json = nlohmann::ordered_json;

constexpr double kMicros = 1e6;

Json orNull(const std::optional<int>& value) { return value ? Json(*value) : Json(nullptr); }

Json latencyOf(const LatencyHistogram& latency) {
  return {{"median", orNull(latency.quantile(0.5))}, {"p99", orNull(latency.quantile(0.99))}};
}

// The latency of the stream is that of its slowest output.
Json slowestLatency(const std::vector<OutputReport>& outputs) {
  const OutputReport* slowest = nullptr;
  for (const OutputReport& output : outputs) {
    if (!output.latency.quantile(0.5)) continue;
    if (slowest == nullptr || *output.latency.quantile(0.5) > *slowest->latency.quantile(0.5)) slowest = &output;
  }
  return latencyOf(slowest != nullptr ? slowest->latency : LatencyHistogram());
}

double lengthOf(const WrittenStream& written) { return static_cast<double>(written.newestVideo.value_or(0)) / kMicros; }

// Pictures and bits a second, from the first picture to the last.
double aSecond(double many, const WrittenStream& written) {
  return written.pictures < 2 ? 0
                              : many * static_cast<double>(written.pictures - 1) /
                                    static_cast<double>(written.pictures) / std::max(lengthOf(written), 1e-3);
}

Json droppedOf(const LiveFigures& figures) {
  const auto& [preview, live] = figures.feed;
  return {{"beforeDecoding", preview.dropped},
          {"withoutPicture", preview.withoutPicture},
          {"notWanted", live.notWanted},
          {"beforeStitching", live.droppedBeforeStitching},
          {"notStitched", live.notStitched},
          {"beforeEncoding", live.droppedBeforeEncoding},
          {"notEncoded", live.notEncoded},
          {"encodedUnits", live.droppedUnits},
          {"audioFrames", figures.written.droppedAudio}};
}

Json outputOf(const OutputReport& output) {
  return {{"output", output.name},
          {"pictures", output.pictures},
          {"audioFrames", output.audioFrames},
          {"bytes", output.bytes},
          {"dropped", output.dropped},
          {"connections", output.connections},
          {"latency", latencyOf(output.latency)},
          {"fault", output.fault ? Json(*output.fault) : Json(nullptr)}};
}

Json distanceOf(const WrittenStream& written) {
  if (!written.newestVideo || !written.newestAudio) return nullptr;
  return (*written.newestAudio - *written.newestVideo) / 1000;
}

std::string shown(const Json& number) { return number.is_null() ? "-" : number.dump(); }

}  // namespace

void FeedFigures::add(const FeedFigures& more) {
  preview.units += more.preview.units;
  preview.dropped += more.preview.dropped;
  preview.withoutPicture += more.preview.withoutPicture;
  preview.pictures += more.preview.pictures;
  live.pictures += more.live.pictures;
  live.notWanted += more.live.notWanted;
  live.droppedBeforeStitching += more.live.droppedBeforeStitching;
  live.notStitched += more.live.notStitched;
  live.stitched += more.live.stitched;
  live.droppedBeforeEncoding += more.live.droppedBeforeEncoding;
  live.notEncoded += more.live.notEncoded;
  live.encoded += more.live.encoded;
  live.units += more.live.units;
  live.droppedUnits += more.live.droppedUnits;
  live.audioFrames += more.live.audioFrames;
  live.droppedAudio += more.live.droppedAudio;
}

Json jsonOf(const LiveFigures& figures) {
  const WrittenStream& written = figures.written;
  const auto pictures = static_cast<double>(written.pictures);
  Json object = {{"seconds", figures.seconds},
                 {"received", figures.feed.preview.units},
                 {"decoded", figures.feed.preview.pictures},
                 {"stitched", figures.feed.live.stitched},
                 {"encoded", figures.feed.live.encoded},
                 {"pictures", written.pictures},
                 {"audioFrames", written.audioFrames},
                 {"dropped", droppedOf(figures)},
                 {"fps", aSecond(pictures, written)},
                 {"bitrate", aSecond(8.0 * static_cast<double>(written.videoBytes), written)},
                 {"audioVideoDistance", distanceOf(written)},
                 {"latency", slowestLatency(figures.outputs)},
                 {"cpuSecondsPerPicture", written.pictures == 0 ? Json(nullptr) : Json(figures.cpuSeconds / pictures)},
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
                     lengthOf(figures.written), aSecond(static_cast<double>(figures.written.pictures), figures.written),
                     aSecond(8.0 * static_cast<double>(figures.written.videoBytes), figures.written) / 1e6,
                     figures.written.pictures, dropped);
}

}  // namespace zel::app
