#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zel::app {

enum class OutputKind { mp4, ts, flv, hls, standardOutput, rtmp, srt };

// The address of an output.
struct OutputAddress {
  OutputKind kind = OutputKind::mp4;
  std::string target;  // path or address as given

  bool isServer() const { return kind == OutputKind::rtmp || kind == OutputKind::srt; }
  bool isFile() const { return !isServer() && kind != OutputKind::standardOutput; }
  // For people. For a server only the host, because the rest often contains a secret.
  std::string name() const;

  bool operator==(const OutputAddress&) const = default;
};

// Errors: nothing if the text is of no known kind.
std::optional<OutputAddress> parseOutputAddress(std::string_view text);

// All kinds, for people.
inline constexpr std::string_view kOutputKinds =
    "FILE.mp4, FILE.ts, FILE.flv, FILE.m3u8, - (MPEG-TS on standard output), rtmp://... or srt://...";

}  // namespace zel::app
