#include "gateway/api/router.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <optional>
#include <set>
#include <string_view>

namespace zel::gateway {
namespace {

using Parameters = std::map<std::string, std::string, std::less<>>;

std::optional<Parameters> parametersOf(std::string_view pattern, const std::vector<std::string>& path) {
  Parameters parameters;
  pattern.remove_prefix(1);
  std::size_t at = 0;
  while (!pattern.empty()) {
    const std::string_view part = pattern.substr(0, pattern.find('/'));
    pattern.remove_prefix(std::min(pattern.size(), part.size() + 1));
    if (at == path.size()) return std::nullopt;
    const std::string& segment = path[at++];
    if (part.front() == '{') {
      if (segment.empty()) return std::nullopt;
      parameters.emplace(part.substr(1, part.size() - 2), segment);
    } else if (part != segment) {
      return std::nullopt;
    }
  }
  if (at != path.size()) return std::nullopt;
  return parameters;
}

}  // namespace

std::variant<Matched, Response> matched(const std::vector<Row>& rows, const Request& request) {
  const std::string_view method = request.method == "HEAD" ? "GET" : std::string_view(request.method);
  std::set<std::string_view> methods;
  for (const Row& row : rows) {
    if (row.isLocal && !request.isLocal) continue;
    auto parameters = parametersOf(row.path, request.target.path);
    if (!parameters) continue;
    if (row.method == method) return Matched{&row, *std::move(parameters)};
    methods.insert(row.method);
  }
  if (methods.empty()) return problem(404, "there is nothing under this address; /api/v1/openapi.json tells what is");
  if (methods.contains("GET")) methods.insert("HEAD");
  const std::string allowed = fmt::format("{}", fmt::join(methods, ", "));
  Response refusal = problem(405, fmt::format("this address takes {}", allowed));
  refusal.headers.emplace_back("Allow", allowed);
  return refusal;
}

std::variant<nlohmann::json, Response> bodyOf(const Row& row, const Request& request) {
  if (row.body.empty()) return nlohmann::json();
  if (mediaTypeIn(request.header("content-type")) != "application/json") {
    return problem(415, "the body must be application/json");
  }
  auto body = nlohmann::json::parse(request.body, nullptr, false);
  if (body.is_discarded()) return problem(400, "the body is not JSON");
  if (!body.is_object()) return problem(422, "the body is not a JSON object");
  return body;
}

}  // namespace zel::gateway
