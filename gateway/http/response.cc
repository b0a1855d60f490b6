#include "gateway/http/response.h"

#include <algorithm>
#include <iterator>

#include "gateway/json/json_line.h"

namespace zel::gateway {
namespace {

constexpr std::pair<int, std::string_view> kTitles[] = {
    {400, "Bad Request"},         {401, "Unauthorized"},           {403, "Forbidden"},
    {404, "Not Found"},           {405, "Method Not Allowed"},     {409, "Conflict"},
    {413, "Content Too Large"},   {415, "Unsupported Media Type"}, {416, "Range Not Satisfiable"},
    {421, "Misdirected Request"}, {422, "Unprocessable Content"},  {426, "Upgrade Required"},
    {429, "Too Many Requests"},   {500, "Internal Server Error"},  {502, "Bad Gateway"},
    {503, "Service Unavailable"}, {504, "Gateway Timeout"},        {507, "Insufficient Storage"},
};

}  // namespace

std::string_view titleOf(int status) {
  const auto* const found = std::ranges::find(kTitles, status, &std::pair<int, std::string_view>::first);
  return found == std::end(kTitles) ? "Error" : found->second;
}

Response jsonResponse(const nlohmann::ordered_json& object, int status) {
  Response response{.status = status};
  response.content = jsonLine(object) + '\n';
  return response;
}

Response problem(int status, std::string_view detail, const nlohmann::ordered_json& more) {
  nlohmann::ordered_json object = {{"status", status}, {"title", titleOf(status)}, {"detail", detail}};
  if (more.is_object()) object.update(more);
  Response response = jsonResponse(object, status);
  response.type = "application/problem+json";
  return response;
}

}  // namespace zel::gateway
