#include "gateway/api/rows_of_page.h"

#include <string>
#include <utility>

#include "gateway/page/page_files.h"

namespace zel::gateway {
namespace {

// A browser keeps a file and asks each time whether it has changed, so that a new server's page is a new one.
Response pageResponse(const PageFile& file, const Request& request) {
  Response response{.type = std::string(file.type)};
  response.headers.emplace_back("ETag", file.etag);
  response.headers.emplace_back("Cache-Control", "no-cache");
  response.headers.emplace_back("Content-Security-Policy", kPageSecurityPolicy);
  if (request.header("if-none-match").find(file.etag) != std::string_view::npos) {
    response.status = 304;
    return response;
  }
  response.content = std::string(file.content.begin(), file.content.end());
  return response;
}

}  // namespace

std::vector<Row> pageRows() {
  std::vector<Row> rows;
  for (const PageFile& file : pageFiles()) {
    Row row;
    row.method = "GET";
    row.path = file.path;
    row.handle = [&file](const RowCall& call, const Respond& respond) { respond(pageResponse(file, call.request)); };
    rows.push_back(std::move(row));
  }
  return rows;
}

}  // namespace zel::gateway
