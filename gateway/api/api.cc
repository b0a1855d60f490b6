#include "gateway/api/api.h"

#include <utility>

#include "gateway/api/router.h"

namespace zel::gateway {

bool isPublic(const Request& request) {
  const auto& path = request.target.path;
  return path.empty() || (path.front() != "api" && path.front() != "metrics");
}

Api::Api(AccessRules rules, std::vector<Row> rows) : rules_(std::move(rules)), rows_(std::move(rows)) {}

// The rules come first, so that all else is told to those alone who are let in.
std::variant<Response, std::size_t> Api::admit(const Request& head) {
  if (auto refusal = refusalOf(head, rules_, isPublic(head))) return *std::move(refusal);
  auto found = matched(rows_, head);
  if (auto* const refusal = std::get_if<Response>(&found)) return std::move(*refusal);
  return std::get<Matched>(found).row->body.empty() ? std::size_t{0} : kMostBody;
}

void Api::answer(const Request& request, Respond respond) {
  auto found = matched(rows_, request);
  if (auto* const refusal = std::get_if<Response>(&found)) return respond(std::move(*refusal));
  auto& [row, parameters] = std::get<Matched>(found);
  auto body = bodyOf(*row, request);
  if (auto* const refusal = std::get_if<Response>(&body)) return respond(std::move(*refusal));
  row->handle({request, std::move(parameters), std::get<nlohmann::json>(std::move(body))}, respond);
}

}  // namespace zel::gateway
