#include "gateway/mqtt/mqtt_topics.h"

#include <fmt/format.h>

namespace zel::gateway {

std::string topicPart(std::string_view name) {
  static constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._-";
  std::string part;
  for (const char letter : name) {
    if (kPlain.find(letter) != std::string_view::npos) {
      part += letter;
    } else {
      part += fmt::format("%{:02X}", static_cast<unsigned char>(letter));
    }
  }
  return part;
}

std::optional<std::string> commandIn(std::string_view topic, std::string_view serialNumber) {
  const std::string begin = cameraTopic(serialNumber, "command/");
  if (!topic.starts_with(begin)) return std::nullopt;
  topic.remove_prefix(begin.size());
  if (topic.empty() || topic.find('/') != std::string_view::npos) return std::nullopt;
  return std::string(topic);
}

}  // namespace zel::gateway
