#include "gateway/mqtt/mqtt_address.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "base/text.h"

namespace zel::gateway {
namespace {

constexpr int kEncryptedPort = 8883;
constexpr std::size_t kLongest = 1'000;

std::optional<std::string> percentDecoded(std::string_view text) {
  std::string decoded;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '%') {
      decoded += text[at];
      continue;
    }
    unsigned code = 0;
    const char* const digits = text.data() + at + 1;
    if (at + 2 >= text.size() || std::from_chars(digits, digits + 2, code, 16).ptr != digits + 2) return std::nullopt;
    decoded += static_cast<char>(code);
    at += 2;
  }
  const bool isText = isUtf8(decoded) && decoded.find('\0') == std::string::npos;
  return isText ? std::optional(decoded) : std::nullopt;
}

bool readUser(std::string_view text, MqttAddress& address) {
  const std::size_t colon = text.find(':');
  address.user = percentDecoded(text.substr(0, colon));
  if (!address.user || address.user->empty()) return false;
  if (colon == std::string_view::npos) return true;
  address.password = percentDecoded(text.substr(colon + 1));
  return address.password.has_value();
}

bool readPort(std::string_view text, MqttAddress& address) {
  const auto read = std::from_chars(text.data(), text.data() + text.size(), address.port);
  return read.ec == std::errc() && read.ptr == text.data() + text.size() && address.port >= 1 && address.port <= 65'535;
}

// "HOST", "HOST:PORT", "[ADDRESS]" or "[ADDRESS]:PORT".
bool readHost(std::string_view text, MqttAddress& address) {
  std::string_view rest;
  if (text.starts_with('[')) {
    const std::size_t end = text.find(']');
    if (end == std::string_view::npos) return false;
    address.host = text.substr(1, end - 1);
    rest = text.substr(end + 1);
  } else {
    address.host = text.substr(0, text.find(':'));
    rest = text.substr(address.host.size());
  }
  if (address.host.empty()) return false;
  if (rest.empty()) return true;
  return rest.front() == ':' && readPort(rest.substr(1), address);
}

bool isPlain(std::string_view text) {
  return std::ranges::all_of(text, [](unsigned char letter) { return letter > 0x20 && letter < 0x7F; });
}

}  // namespace

std::optional<MqttAddress> parseMqttAddress(std::string_view text) {
  MqttAddress address;
  address.isEncrypted = text.starts_with("mqtts://");
  if ((!address.isEncrypted && !text.starts_with("mqtt://")) || text.size() > kLongest || !isPlain(text))
    return std::nullopt;
  if (address.isEncrypted) address.port = kEncryptedPort;
  text.remove_prefix(text.find("://") + 3);
  if (text.ends_with('/')) text.remove_suffix(1);
  if (text.find_first_of("/?#") != std::string_view::npos) return std::nullopt;
  const std::size_t at = text.rfind('@');
  if (at != std::string_view::npos && !readUser(text.substr(0, at), address)) return std::nullopt;
  if (!readHost(at == std::string_view::npos ? text : text.substr(at + 1), address)) return std::nullopt;
  return address;
}

std::string nameOf(const MqttAddress& address) {
  const bool isNumber = address.host.find(':') != std::string::npos;
  return fmt::format("mqtt{}://{}{}{}:{}", address.isEncrypted ? "s" : "", isNumber ? "[" : "", address.host,
                     isNumber ? "]" : "", address.port);
}

}  // namespace zel::gateway
