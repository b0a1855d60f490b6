#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zel::app {

enum class OutputKind { mp4, ts, flv, hls, standardOutput, rtmp, srt };

// Where an output goes.
struct OutputAddress {
  OutputKind kind = OutputKind::mp4;
  std::string target;  // path or address as it was given

  bool isServer() const { return kind == OutputKind::rtmp || kind == OutputKind::srt; }
  bool isFile() const { return !isServer() && kind != OutputKind::standardOutput; }
  // For people. Of a server the host alone: what stands behind it is often a secret.
  std::string name() const;

  bool operator==(const OutputAddress&) const = default;
};

// Errors: nothing where the text is none of the kinds.
std::optional<OutputAddress> parseOutputAddress(std::string_view text);

// All kinds, for people.
inline constexpr std::string_view kOutputKinds =
    "FILE.mp4, FILE.ts, FILE.flv, FILE.m3u8, - (MPEG-TS on standard output), rtmp://... or srt://...";

}  // namespace zel::app
