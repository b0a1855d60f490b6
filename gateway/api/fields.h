#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zel::gateway {

// Reads the members of a request's body. The first that is not what it should be is remembered.
//
//   Fields fields(call.body, {"action"});
//   const auto action = fields.text("action");
//   if (fields.fault()) return respond(problem(422, *fields.fault()));
class Fields {
 public:
  // known: all members that the body may have.
  Fields(const nlohmann::json& body, const std::vector<std::string_view>& known);

  // Nothing where it is missing or null.
  const nlohmann::json* find(std::string_view name);
  // Empty, false or nothing where it is missing or null.
  std::string text(std::string_view name, bool isRequired = false);
  bool flag(std::string_view name);
  std::optional<std::int64_t> integer(std::string_view name, std::int64_t least, std::int64_t most);

  void complain(std::string fault);
  const std::optional<std::string>& fault() const { return fault_; }

 private:
  const nlohmann::json& body_;
  std::optional<std::string> fault_;
};

}  // namespace zel::gateway
