#include "apps/zelcam/command_line/command.h"

namespace zel::app {

std::vector<std::string>& Values::slot(std::string_view name) { return values_[std::string(name)]; }

bool Values::has(std::string_view name) const {
  const auto found = values_.find(name);
  return found != values_.end() && !found->second.empty();
}

std::string Values::text(std::string_view name) const { return has(name) ? values_.find(name)->second.front() : ""; }

std::optional<double> Values::number(std::string_view name) const {
  if (!has(name)) return std::nullopt;
  return std::stod(text(name));
}

std::optional<std::int64_t> Values::integer(std::string_view name) const {
  if (!has(name)) return std::nullopt;
  return std::stoll(text(name));
}

std::vector<std::string> Values::list(std::string_view name) const {
  const auto found = values_.find(name);
  return found == values_.end() ? std::vector<std::string>() : found->second;
}

}  // namespace zel::app
