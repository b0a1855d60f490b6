#include "gateway/outputs/output_request.h"

#include <fmt/format.h>

#include <string_view>

namespace zel::gateway {
namespace {

using Json = nlohmann::json;

constexpr std::int64_t kSmallestSide = 16, kLargestSide = 16'384;
constexpr std::int64_t kLowestBitrate = 10'000, kHighestBitrate = 200'000'000;

CameraError malformed(std::string why) { return {CameraError::Reason::invalid, std::move(why)}; }

// The whole number under that name, or the default where it is left out.
//
// Errors: nothing where it is anything else, or out of its limits.
std::optional<std::int64_t> numberIn(const Json& object, const char* name, std::int64_t usual, std::int64_t least,
                                     std::int64_t most) {
  const auto found = object.find(name);
  if (found == object.end()) return usual;
  if (!found->is_number_integer()) return std::nullopt;
  if (found->is_number_unsigned() && found->get<std::uint64_t>() > static_cast<std::uint64_t>(most))
    return std::nullopt;
  const auto value = found->get<std::int64_t>();
  return value >= least && value <= most ? std::optional(value) : std::nullopt;
}

// The first member that is none of these.
std::optional<std::string> strangeMember(const Json& object, std::initializer_list<std::string_view> names) {
  for (const auto& [name, value] : object.items())
    if (std::ranges::find(names, name) == names.end()) return name;
  return std::nullopt;
}

Result<StitchedSize> stitchedIn(const Json& object) {
  if (!object.is_object()) return malformed("\"stitched\" is an object, or null for the camera's own pictures");
  if (const auto name = strangeMember(object, {"width", "height", "bitrate"}))
    return malformed(fmt::format("\"stitched\" has no member \"{}\"", *name));
  const StitchedSize usual;
  const auto width = numberIn(object, "width", usual.width, kSmallestSide, kLargestSide);
  const auto height = numberIn(object, "height", usual.height, kSmallestSide, kLargestSide);
  const auto bitrate = numberIn(object, "bitrate", usual.bitrate, kLowestBitrate, kHighestBitrate);
  if (!width || !height || *width % 2 != 0 || *height % 2 != 0) {
    return malformed(fmt::format("\"width\" and \"height\" are even, each from {} to {}", kSmallestSide, kLargestSide));
  }
  if (!bitrate) return malformed(fmt::format("\"bitrate\" is from {} to {}", kLowestBitrate, kHighestBitrate));
  return StitchedSize{static_cast<std::int32_t>(*width), static_cast<std::int32_t>(*height), *bitrate};
}

nlohmann::ordered_json orNull(const std::optional<int>& value) {
  return value ? nlohmann::ordered_json(*value) : nlohmann::ordered_json(nullptr);
}

}  // namespace

Result<OutputRequest> outputRequestIn(const Json& body) {
  if (!body.is_object()) return malformed("an output is an object with \"address\"");
  if (const auto name = strangeMember(body, {"address", "stitched"}))
    return malformed(fmt::format("an output has no member \"{}\"", *name));
  const auto address = body.find("address");
  if (address == body.end() || !address->is_string()) return malformed("\"address\" is a text");
  OutputRequest request{address->get<std::string>(), std::nullopt};
  const auto stitched = body.find("stitched");
  if (stitched == body.end() || stitched->is_null()) return request;
  const auto size = stitchedIn(*stitched);
  if (!size) return size.error();
  request.stitched = *size;
  return request;
}

std::string_view wordFor(OutputState state) {
  switch (state) {
    case OutputState::waiting:
      return "waiting";
    case OutputState::connecting:
      return "connecting";
    case OutputState::writing:
      return "writing";
    case OutputState::retrying:
      return "retrying";
    case OutputState::finished:
      return "finished";
    case OutputState::failed:
      return "failed";
  }
  return "failed";
}

nlohmann::ordered_json jsonOf(const OutputStatus& status) {
  using Ordered = nlohmann::ordered_json;
  const OutputReport& report = status.report;
  Ordered stitched = nullptr;
  if (const auto& size = status.stitched)
    stitched = {{"width", size->width}, {"height", size->height}, {"bitrate", size->bitrate}};
  return {{"id", status.id},
          {"address", status.address},
          {"stitched", stitched},
          {"state", wordFor(report.state)},
          {"retries", report.retries},
          {"statistics",
           {{"pictures", report.pictures},
            {"audioFrames", report.audioFrames},
            {"bytes", report.bytes},
            {"dropped", report.dropped},
            {"connections", report.connections},
            {"latency", {{"median", orNull(report.medianLatency)}, {"p99", orNull(report.latency99)}}},
            {"fault", report.fault ? Ordered(*report.fault) : Ordered(nullptr)}}}};
}

}  // namespace zel::gateway
