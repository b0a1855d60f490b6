#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <ZELTarkaSDK/platform/export.h>

namespace zel {

enum class OutputKind { mp4, ts, flv, hls, standardOutput, rtmp, srt };

// Where an output goes.
struct ZEL_EXPORT OutputAddress {
  OutputKind kind = OutputKind::mp4;
  std::string target;  // path or address as given

  bool isServer() const { return kind == OutputKind::rtmp || kind == OutputKind::srt; }
  bool isFile() const { return !isServer() && kind != OutputKind::standardOutput; }

  // For people. Of a server the host alone: what follows it is often a secret.
  std::string name() const;

  bool operator==(const OutputAddress&) const = default;
};

// The address that a text names: a file by its extension, a server by its scheme, standard output by "-".
//
// Errors: nothing where the text is none of kOutputKinds.
ZEL_EXPORT std::optional<OutputAddress> parseOutputAddress(std::string_view text);

// All kinds, for people.
inline constexpr std::string_view kOutputKinds =
    "FILE.mp4, FILE.ts, FILE.flv, FILE.m3u8, - (MPEG-TS on standard output), rtmp://... or srt://...";

}  // namespace zel
