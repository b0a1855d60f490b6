#include <ZELTarkaSDK/OutputAddress.h>

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace zel {
namespace {

struct Ending {
  std::string_view text;
  OutputKind kind;
};

constexpr Ending kExtensions[] = {
    {".mp4", OutputKind::mp4}, {".ts", OutputKind::ts}, {".flv", OutputKind::flv}, {".m3u8", OutputKind::hls}};
constexpr Ending kSchemes[] = {{"rtmp://", OutputKind::rtmp}, {"srt://", OutputKind::srt}};

std::string lowerCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char letter) { return std::tolower(letter); });
  return text;
}

bool hasControlCharacters(std::string_view text) {
  return std::ranges::any_of(text, [](unsigned char letter) { return letter < 0x20 || letter == 0x7F; });
}

// The part between user name and password and the path or the options.
std::string_view hostOf(std::string_view afterScheme) {
  std::string_view host = afterScheme.substr(0, afterScheme.find_first_of("/?#"));
  const std::size_t at = host.rfind('@');
  return at == std::string_view::npos ? host : host.substr(at + 1);
}

}  // namespace

std::string OutputAddress::name() const {
  if (kind == OutputKind::standardOutput) return "standard output";
  if (!isServer()) return target;
  const std::size_t host = target.find("://") + 3;
  return target.substr(0, host) + std::string(hostOf(std::string_view(target).substr(host)));
}

std::optional<OutputAddress> parseOutputAddress(std::string_view text) {
  if (hasControlCharacters(text)) return std::nullopt;
  if (text == "-") return OutputAddress{OutputKind::standardOutput, "-"};
  for (const auto& [scheme, kind] : kSchemes) {
    if (lowerCase(std::string(text.substr(0, scheme.size()))) != scheme) continue;
    if (hostOf(text.substr(scheme.size())).empty()) return std::nullopt;
    return OutputAddress{kind, std::string(scheme) + std::string(text.substr(scheme.size()))};
  }
  if (text.find("://") != std::string_view::npos) return std::nullopt;
  const std::string extension = lowerCase(std::filesystem::path(text).extension().string());
  for (const auto& [ending, kind] : kExtensions) {
    if (extension == ending) return OutputAddress{kind, std::string(text)};
  }
  return std::nullopt;
}

}  // namespace zel
