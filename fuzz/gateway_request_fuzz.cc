// A request to the gateway: its line, its headers and its body, through the rules of access and every row.

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>
#include <string_view>

#include "gateway/api/api.h"
#include "gateway/api/rows_of_cameras.h"
#include "gateway/api/rows_of_files.h"
#include "gateway/api/rows_of_photos.h"
#include "gateway/api/rows_of_streams.h"
#include "gateway/api/rows_of_viewing.h"
#include "gateway/http/range.h"

namespace {

using namespace zel::gateway;

// A gateway without a camera, on folders of its own.
struct Empty {
  Empty() {
    std::string error;
    std::string folder = (std::filesystem::temp_directory_path() / "zel-fuzz-XXXXXX").string();
    if (::mkdtemp(folder.data()) == nullptr) std::abort();
    cameras = Cameras::create({.accessoriesFolder = folder + "/bus"}, error);
    media = MediaFolder::open(folder + "/media", error);
    std::vector<Row> rows = cameraRows(*cameras, limit);
    for (auto some : {photoRows(*cameras, *media, worker, limit), viewingRows(*cameras, limit), streamRows(*cameras),
                      fileRows(*media, thumbnails)}) {
      rows.insert(rows.end(), std::move_iterator(some.begin()), std::move_iterator(some.end()));
    }
    api.emplace(AccessRules{"0123456789abcdef", {"camera.example"}}, std::move(rows));
  }

  const std::chrono::milliseconds limit{1000};
  std::unique_ptr<Cameras> cameras;
  std::unique_ptr<MediaFolder> media;
  Worker worker;
  Thumbnails thumbnails{worker};
  std::optional<Api> api;
};

std::string_view takeLine(std::string_view& text) {
  const std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(text.size(), line.size() + 1));
  return line;
}

}  // namespace

// METHOD TARGET, "name: value" lines, an empty line, the body. A first byte of "L" is a connection of this machine.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Empty* const gateway = new Empty;
  std::string_view text(reinterpret_cast<const char*>(data), size);
  Request request;
  std::string_view line = takeLine(text);
  request.isLocal = line.starts_with('L');
  request.method = line.substr(0, line.find(' '));
  if (request.isLocal) request.method.erase(0, 1);
  line.remove_prefix(std::min(line.size(), line.find(' ') + 1));
  auto target = parseTarget(line);
  if (!target) return 0;
  request.target = *std::move(target);
  while (!(line = takeLine(text)).empty()) {
    const std::size_t colon = std::min(line.find(':'), line.size());
    request.headers[std::string(line.substr(0, colon))] = line.substr(std::min(colon + 1, line.size()));
  }
  (void)rangeIn(request.header("range"), size);
  const auto admitted = gateway->api->admit(request);
  if (const auto* const most = std::get_if<std::size_t>(&admitted)) {
    request.body = text.substr(0, *most);
    gateway->api->answer(request, [](const Response&) {});
  }
  return 0;
}
