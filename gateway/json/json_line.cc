#include "gateway/json/json_line.h"

#include <fmt/format.h>

#include <chrono>
#include <ctime>

#include "gateway/json/printable.h"

namespace zel::gateway {

std::string jsonLine(const nlohmann::ordered_json& object) {
  return printableJson(object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
}

nlohmann::ordered_json errorJson(const std::optional<ZELError>& error) {
  if (!error) return nullptr;
  return {{"domain", error->domain}, {"code", error->code}};
}

std::string timeOfDay() {
  const auto now = std::chrono::system_clock::now();
  const auto milliseconds =
      std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  std::tm local{};
  localtime_r(&seconds, &local);
  return fmt::format("{:02}:{:02}:{:02}.{:03}", local.tm_hour, local.tm_min, local.tm_sec, milliseconds);
}

}  // namespace zel::gateway
