#include "gateway/api/rows_of_files.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <memory>
#include <optional>
#include <utility>
#include <variant>

#include "gateway/http/range.h"
#include "gateway/json/number_text.h"

namespace zel::gateway {
namespace {

using nlohmann::ordered_json;

constexpr std::int64_t kNanosecondsOfASecond = 1'000'000'000;

std::string utcTime(std::int64_t nanoseconds) {
  const std::time_t seconds = nanoseconds / kNanosecondsOfASecond;
  std::tm utc{};
  ::gmtime_r(&seconds, &utc);
  return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", utc);
}

Response noSuchFile() { return problem(404, "there is no such file"); }

// Nothing is run that a stored file holds.
void describeContent(Response& response, const std::string& tag) {
  response.headers.emplace_back("ETag", tag);
  response.headers.emplace_back("Cache-Control", "private, no-cache");
  if (response.type == "application/octet-stream") response.headers.emplace_back("Content-Disposition", "attachment");
}

bool isUnchanged(const Request& request, std::string_view tag) {
  const std::string_view known = request.header("if-none-match");
  return !known.empty() && (known == "*" || known.find(tag) != std::string_view::npos);
}

Response unchanged(const std::string& tag) {
  Response response{.status = 304, .type = ""};
  response.headers.emplace_back("ETag", tag);
  return response;
}

Response fileResponse(OpenMediaFile opened, const Request& request) {
  const std::string tag = opened.file.tag();
  if (isUnchanged(request, tag)) return unchanged(tag);
  const std::string_view ifRange = request.header("if-range");
  const std::string_view asked = ifRange.empty() || ifRange == tag ? request.header("range") : "";
  const auto range = rangeIn(asked, opened.file.bytes);
  if (std::holds_alternative<NoSuchRange>(range)) {
    Response refusal = problem(416, "the file has no such bytes");
    refusal.headers.emplace_back("Content-Range", fmt::format("bytes */{}", opened.file.bytes));
    return refusal;
  }
  Response response{.type = std::string(mediaTypeOf(opened.file.name))};
  describeContent(response, tag);
  response.headers.emplace_back("Accept-Ranges", "bytes");
  ByteRange part{0, opened.file.bytes};
  if (const auto* const some = std::get_if<ByteRange>(&range)) {
    part = *some;
    response.status = 206;
    response.headers.emplace_back(
        "Content-Range", fmt::format("bytes {}-{}/{}", part.offset, part.offset + part.length - 1, opened.file.bytes));
  }
  response.content =
      FileContent{std::make_shared<platform::UniqueDescriptor>(std::move(opened.descriptor)), part.offset, part.length};
  return response;
}

void giveThumbnail(Thumbnails& thumbnails, OpenMediaFile opened, const RowCall& call, const Respond& respond) {
  const auto width = numberIn<std::int64_t>(call.request.target.query.find("width")->second);
  if (!width || *width < kLeastThumbnail || *width > kMostThumbnail) {
    return respond(problem(422, fmt::format("\"width\" must be from {} to {}", kLeastThumbnail, kMostThumbnail)));
  }
  if (mediaTypeOf(opened.file.name) != "image/jpeg") {
    return respond(problem(422, "there are thumbnails of JPEG files alone"));
  }
  std::string tag = opened.file.tag();
  tag.insert(tag.size() - 1, fmt::format("-{}", *width));
  if (isUnchanged(call.request, tag)) return respond(unchanged(tag));
  const bool isTaken =
      thumbnails.ask(std::move(opened), static_cast<int>(*width), [respond, tag](const Thumbnails::Picture& picture) {
        if (!picture) return respond(problem(422, "the file is no picture that can be read"));
        Response response{.type = "image/jpeg"};
        describeContent(response, tag);
        response.content = *picture;
        respond(std::move(response));
      });
  if (!isTaken) respond(problem(503, "too many pictures are being made; ask again"));
}

Response removed(MediaFolder& folder, const std::string& name) {
  if (folder.remove(name)) return Response{.status = 204, .type = ""};
  if (errno == ENOENT) return noSuchFile();
  return problem(500, fmt::format("the file cannot be removed: {}", std::strerror(errno)));
}

}  // namespace

ordered_json fileJson(const MediaFile& file) {
  return {{"name", file.name}, {"bytes", file.bytes}, {"panorama", file.isPanorama}, {"time", utcTime(file.changed)}};
}

std::vector<Row> fileRows(MediaFolder& folder, Thumbnails& thumbnails) {
  const auto list = [&folder](const RowCall&, const Respond& respond) {
    ordered_json files = ordered_json::array();
    for (const MediaFile& file : folder.files()) files.push_back(fileJson(file));
    respond(jsonResponse({{"files", files}}));
  };
  const auto give = [&folder, &thumbnails](const RowCall& call, const Respond& respond) {
    auto opened = folder.find(call.parameter("name"));
    if (!opened) return respond(noSuchFile());
    if (call.request.target.query.contains("width"))
      return giveThumbnail(thumbnails, *std::move(opened), call, respond);
    respond(fileResponse(*std::move(opened), call.request));
  };
  const auto remove = [&folder](const RowCall& call, const Respond& respond) {
    respond(removed(folder, call.parameter("name")));
  };
  const ordered_json width = {{"type", "integer"}, {"minimum", kLeastThumbnail}, {"maximum", kMostThumbnail}};
  return {
      {"GET",
       "/api/v1/files",
       "listFiles",
       "Photos, panoramas and recordings",
       {{200, "application/json", "Files", "the files by name"}},
       list},
      {"GET",
       "/api/v1/files/{name}",
       "getFile",
       "One of them; a range of its bytes; or a small picture of it",
       {{200, "application/octet-stream", "", "the file, or a JPEG picture of that width"},
        {206, "application/octet-stream", "", "the range"},
        {304, "", "", "it has not changed"}},
       give,
       "",
       {{"width", "of a small picture, in pixels", width}}},
      {"DELETE", "/api/v1/files/{name}", "deleteFile", "Removes one of them", {{204, "", "", "it is gone"}}, remove},
  };
}

}  // namespace zel::gateway
