#include "gateway/api/open_api.h"

#include <ZELTarkaSDK/Version.h>

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "gateway/api/schemas.h"

namespace zel::gateway {
namespace {

using nlohmann::ordered_json;

ordered_json schemaReference(std::string_view schema) {
  return {{"$ref", fmt::format("#/components/schemas/{}", schema)}};
}

ordered_json contentOf(const std::string& type, const std::string& schema) {
  ordered_json content = ordered_json::object();
  content[type] = schema.empty() ? ordered_json::object() : ordered_json{{"schema", schemaReference(schema)}};
  return content;
}

ordered_json answersOf(const Row& row) {
  ordered_json answers;
  for (const Row::Answer& answer : row.answers) {
    ordered_json& described = answers[std::to_string(answer.status)];
    described["description"] = answer.what;
    if (!answer.type.empty()) described["content"] = contentOf(answer.type, answer.schema);
  }
  answers["default"] = {{"description", "why it could not be done"},
                        {"content", contentOf("application/problem+json", "Problem")}};
  return answers;
}

ordered_json parametersOfRow(const Row& row) {
  ordered_json parameters = ordered_json::array();
  for (std::string_view left = row.path; left.find('{') != std::string_view::npos;) {
    left.remove_prefix(left.find('{') + 1);
    parameters.push_back({{"name", left.substr(0, left.find('}'))},
                          {"in", "path"},
                          {"required", true},
                          {"schema", {{"type", "string"}}}});
  }
  for (const Row::Query& one : row.query) {
    parameters.push_back({{"name", one.name}, {"in", "query"}, {"description", one.what}, {"schema", one.schema}});
  }
  return parameters;
}

ordered_json operationOf(const Row& row) {
  ordered_json operation = {{"operationId", row.name}, {"summary", row.summary}};
  const ordered_json parameters = parametersOfRow(row);
  if (!parameters.empty()) operation["parameters"] = parameters;
  if (!row.body.empty()) {
    operation["requestBody"] = {{"required", true}, {"content", contentOf("application/json", row.body)}};
  }
  operation["responses"] = answersOf(row);
  return operation;
}

std::string lowerMethod(std::string method) {
  std::ranges::transform(method, method.begin(), [](unsigned char letter) { return static_cast<char>(letter | 0x20); });
  return method;
}

}  // namespace

ordered_json openApi(const std::vector<Row>& rows, bool needsToken) {
  ordered_json paths;
  for (const Row& row : rows) {
    if (!row.isLocal && !row.answers.empty()) paths[row.path][lowerMethod(row.method)] = operationOf(row);
  }
  ordered_json document = {{"openapi", "3.1.0"},
                           {"info", {{"title", "zelcam serve"}, {"version", std::string(ZELTarkaSDKVersionString)}}},
                           {"paths", paths},
                           {"components", {{"schemas", schemas()}}}};
  if (needsToken) {
    document["components"]["securitySchemes"] = {
        {"bearer", {{"type", "http"}, {"scheme", "bearer"}}},
        {"cookie", {{"type", "apiKey"}, {"in", "cookie"}, {"name", "zel_token"}}}};
    document["security"] =
        ordered_json::array({{{"bearer", ordered_json::array()}}, {{"cookie", ordered_json::array()}}});
  }
  return document;
}

Row openApiRow(std::vector<Row> others, bool needsToken) {
  Row row{
      "GET",  "/api/v1/openapi.json", "openApi", "This description", {{200, "application/json", "", "in OpenAPI 3.1"}},
      nullptr};
  others.push_back(row);
  const auto text = std::make_shared<const std::string>(openApi(others, needsToken).dump() + '\n');
  row.handle = [text](const RowCall&, const Respond& respond) {
    Response response;
    response.content = *text;
    respond(std::move(response));
  };
  return row;
}

}  // namespace zel::gateway
