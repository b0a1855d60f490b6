#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/linux/unique_descriptor.h"

namespace zel::gateway {

// Bytes that come by and by, for one reader.
//
// Thread: the server's, for all of it.
class ByteSource {
 public:
  virtual ~ByteSource() = default;
  // Copies what is there. 0: nothing now; `ready` is called when there is more, or the end has come.
  virtual std::size_t read(std::span<std::uint8_t> to) = 0;
  virtual bool isEnded() const = 0;
};

// A file's bytes, or some of them.
struct FileContent {
  std::shared_ptr<platform::UniqueDescriptor> file;
  std::uint64_t offset = 0, length = 0;
};

// A stream that grows until its source ends or its reader goes.
struct StreamContent {
  // Opens the source. ready: may be called on any thread, also inside read(), and after the source is gone.
  std::function<std::shared_ptr<ByteSource>(std::function<void()> ready)> open;
};

// The connection carries another protocol from now on.
struct UpgradeContent {
  std::string protocol;
  // Takes the connection's socket, and what the other end has sent already.
  std::function<void(platform::UniqueDescriptor socket, std::string read)> take;
};

// An answer, as a value.
struct Response {
  int status = 200;
  std::string type = "application/json";
  std::vector<std::pair<std::string, std::string>> headers = {};
  std::variant<std::string, FileContent, StreamContent, UpgradeContent> content = {};
};

// Answers a request, once.
// Thread: any thread.
using Respond = std::function<void(Response)>;

// An object as the line that zelcam would print.
Response jsonResponse(const nlohmann::ordered_json& object, int status = 200);

// An answer for a request that cannot be served: its status, the status's title and a sentence. `more` members follow.
Response problem(int status, std::string_view detail, const nlohmann::ordered_json& more = nullptr);

// The usual words for a status.
std::string_view titleOf(int status);

}  // namespace zel::gateway
