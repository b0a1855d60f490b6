#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include <ZELTarkaSDK/OutputReport.h>
#include <ZELTarkaSDK/Result.h>

namespace zel::gateway {

// The pictures of a stitched output.
//
// Units: pixels, bits a second.
struct StitchedSize {
  std::int32_t width = 1920, height = 960;
  std::int64_t bitrate = 8'000'000;

  bool operator==(const StitchedSize&) const = default;
};

// What somebody asks for: where the stream goes, and whether it is stitched or the camera's own pictures.
struct OutputRequest {
  std::string address;
  std::optional<StitchedSize> stitched;

  bool operator==(const OutputRequest&) const = default;
};

// {"address": TEXT, "stitched": {"width", "height", "bitrate"} or null}; what is left out of `stitched` has its
// default.
//
// Errors: `invalid`, with a sentence that names the member.
Result<OutputRequest> outputRequestIn(const nlohmann::json& body);

// An output as it is now.
struct OutputStatus {
  int id = 0;
  std::string address;  // a file's name, or a server's host: what follows that is often a secret
  std::optional<StitchedSize> stitched;
  OutputReport report;
};

// One word for the state, as in {"state": "writing"}.
std::string_view wordFor(OutputState state);

// {"id", "address", "stitched", "state", "retries", "statistics": {...}}; the statistics are those of `zelcam live
// --json`.
nlohmann::ordered_json jsonOf(const OutputStatus& status);

}  // namespace zel::gateway
