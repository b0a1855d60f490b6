#include "gateway/api/fields.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "gateway/json/printable.h"

namespace zel::gateway {

Fields::Fields(const nlohmann::json& body, const std::vector<std::string_view>& known) : body_(body) {
  for (const auto& [name, value] : body.items()) {
    if (std::ranges::count(known, name) == 0) complain(fmt::format("there is no member \"{}\" here", printable(name)));
  }
}

const nlohmann::json* Fields::find(std::string_view name) {
  const auto found = body_.find(name);
  return found == body_.end() || found->is_null() ? nullptr : &*found;
}

std::string Fields::text(std::string_view name, bool isRequired) {
  const nlohmann::json* const found = find(name);
  if (found != nullptr && found->is_string()) return found->get<std::string>();
  if (found != nullptr || isRequired) complain(fmt::format("\"{}\" must be a text", name));
  return {};
}

bool Fields::flag(std::string_view name) {
  const nlohmann::json* const found = find(name);
  if (found == nullptr) return false;
  if (!found->is_boolean()) complain(fmt::format("\"{}\" must be true or false", name));
  return found->is_boolean() && found->get<bool>();
}

std::optional<std::int64_t> Fields::integer(std::string_view name, std::int64_t least, std::int64_t most) {
  const nlohmann::json* const found = find(name);
  if (found == nullptr) return std::nullopt;
  if (found->is_number_integer()) {
    // Of an unsigned number above all signed ones the sign would be lost.
    const bool isVast = found->is_number_unsigned() && !std::in_range<std::int64_t>(found->get<std::uint64_t>());
    const auto value = found->get<std::int64_t>();
    if (!isVast && value >= least && value <= most) return value;
  }
  complain(fmt::format("\"{}\" must be a whole number from {} to {}", name, least, most));
  return std::nullopt;
}

void Fields::complain(std::string fault) {
  if (!fault_) fault_ = std::move(fault);
}

}  // namespace zel::gateway
