#include "gateway/feed/stream_description.h"

#include <algorithm>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <vector>

#include "gateway/feed/unit_list.h"
#include "outputs/h264_pictures.h"
#include "platform/h264/h264_headers.h"

namespace zel::gateway {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kSmallestSps = 1 + 3;  // header, profile, constraints, level
constexpr std::size_t kLargestSet = 0xFFFF;  // as MP4 states its length

std::string hexOf(Bytes bytes, const char* digits) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += digits[byte >> 4];
    text += digits[byte & 0x0F];
  }
  return text;
}

bool isUsable(const StreamHeaders& headers) {
  return headers.sps.size() >= kSmallestSps && headers.sps.size() <= kLargestSet && !headers.pps.empty() &&
         headers.pps.size() <= kLargestSet && headers.width > 0 && headers.height > 0;
}

struct PictureParts {
  std::optional<Bytes> sps, pps, slice;  // the first of each
};

PictureParts partsOf(Bytes picture) {
  PictureParts parts;
  const auto take = [](std::optional<Bytes>& part, Bytes unit) {
    if (!part) part = unit;
  };
  for (const Bytes unit : unitsOf(picture)) {
    const auto type = platform::typeOf(unit.front());
    if (type == platform::H264UnitType::sequence) take(parts.sps, unit);
    if (type == platform::H264UnitType::picture) take(parts.pps, unit);
    if (type == platform::H264UnitType::keySlice) take(parts.slice, unit);
  }
  return parts;
}

// Whether the picture brings sets of its own, and others than the headers'.
bool changes(const PictureParts& parts, const StreamHeaders& headers) {
  const auto differs = [](const std::optional<Bytes>& set, const ZELData& known) {
    return set && !std::ranges::equal(*set, known.bytes());
  };
  return differs(parts.sps, headers.sps) || differs(parts.pps, headers.pps);
}

}  // namespace

std::optional<StreamDescription> describe(const StreamHeaders& headers, double rate) {
  if (!isUsable(headers)) return std::nullopt;
  return StreamDescription{headers, rate, parseAudioConfig(headers.audioConfig.bytes())};
}

std::optional<StreamDescription> describeFrom(const StreamHeaders& headers, double rate, Bytes keyPicture) {
  const PictureParts parts = partsOf(keyPicture);
  if (!changes(parts, headers)) return describe(headers, rate);
  StreamHeaders changed = headers;
  if (parts.sps) changed.sps = ZELData(*parts.sps);
  if (parts.pps) changed.pps = ZELData(*parts.pps);
  if (!parts.slice) return std::nullopt;
  std::vector<std::uint8_t> slice;
  platform::appendUnit(slice, *parts.slice);
  const auto size = sizeOfPictures(changed.sps.bytes(), changed.pps.bytes(), slice);
  if (!size) return std::nullopt;
  changed.width = size->width;
  changed.height = size->height;
  changed.colour = colourOfPictures(changed.sps.bytes());
  return describe(changed, rate);
}

ZELData withParameterSets(const ZELData& keyPicture, const StreamDescription& description) {
  const PictureParts parts = partsOf(keyPicture.bytes());
  if (parts.sps && parts.pps) return keyPicture;
  std::vector<std::uint8_t> bytes;
  for (const ZELData& set : {description.headers.sps, description.headers.pps})
    platform::appendUnit(bytes, set.bytes());
  bytes.insert(bytes.end(), keyPicture.bytes().begin(), keyPicture.bytes().end());
  return ZELData(std::move(bytes));
}

std::string codecName(const StreamDescription& description) {
  return "avc1." + hexOf(description.headers.sps.bytes().subspan(1, 3), "0123456789ABCDEF");
}

std::string describeAsJson(const StreamDescription& description, std::int64_t epoch) {
  const StreamHeaders& headers = description.headers;
  const VideoColour& colour = headers.colour;
  nlohmann::ordered_json object = {{"video",
                                    {{"codec", codecName(description)},
                                     {"width", headers.width},
                                     {"height", headers.height},
                                     {"rate", description.rate},
                                     {"colour",
                                      {{"fullRange", colour.fullRange},
                                       {"primaries", colour.primaries},
                                       {"transfer", colour.transfer},
                                       {"matrix", colour.matrix}}}}},
                                   {"audio", nullptr},
                                   {"epoch", epoch}};
  if (description.sound) {
    object["audio"] = {{"codec", "mp4a.40.2"},
                       {"sampleRate", description.sound->rate},
                       {"channels", description.sound->channels},
                       {"config", hexOf(headers.audioConfig.bytes(), "0123456789abcdef")}};
  }
  return object.dump();
}

}  // namespace zel::gateway
