#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include <ZELTarkaSDK/AudioConfig.h>
#include <ZELTarkaSDK/MediaPacket.h>

namespace zel::gateway {

// What a viewer must know before a key picture: the stream's headers as they are from that picture on.
//
// Units: pictures a second.
struct StreamDescription {
  StreamHeaders headers;
  double rate = 30;
  std::optional<AudioConfig> sound;  // nothing: the stream has none

  bool operator==(const StreamDescription&) const = default;
};

// The description of a stream.
//
// Errors: nothing where the SPS or the PPS cannot be one.
std::optional<StreamDescription> describe(const StreamHeaders& headers, double rate);

// The same from a key picture on that brings parameter sets of its own, as it does when a camera came back with another
// resolution. A picture that brings none uses those of the stream's headers.
//
// Errors: nothing where the sets do not fit the picture.
std::optional<StreamDescription> describeFrom(const StreamHeaders& headers, double rate,
                                              std::span<const std::uint8_t> keyPicture);

// A key picture with the description's parameter sets before it, unless it brings its own.
ZELData withParameterSets(const ZELData& keyPicture, const StreamDescription& description);

// The name of the video codec for browsers, such as "avc1.42C01F".
std::string codecName(const StreamDescription& description);

// The description as JSON for the first record of access units.
//
// Units: epoch: microseconds since 1970, at which the picture of time 0 would have arrived.
std::string describeAsJson(const StreamDescription& description, std::int64_t epoch);

}  // namespace zel::gateway
