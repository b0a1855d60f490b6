#include "gateway/http/body.h"

#include <algorithm>
#include <string>
#include <utility>

namespace zel::gateway {
namespace {

constexpr std::size_t kChunk = std::size_t{32} << 10;

// What every answer says: nothing of it is shown or read by a page of others.
constexpr std::pair<const char*, const char*> kUsualHeaders[] = {
    {"X-Content-Type-Options", "nosniff"},
    {"Referrer-Policy", "no-referrer"},
    {"Cross-Origin-Resource-Policy", "same-origin"},
    {"Cross-Origin-Opener-Policy", "same-origin"},
};

// Of answers that have none of their own: a file that somebody has stored runs nothing.
constexpr char kSecurityPolicy[] = "default-src 'none'; frame-ancestors 'none'; sandbox";

bool hasPolicy(const Response& response) {
  return std::ranges::count(response.headers, "Content-Security-Policy", &std::pair<std::string, std::string>::first) !=
         0;
}

// A stream that is being sent.
struct Sending {
  std::shared_ptr<Exchange> exchange;
  std::shared_ptr<ByteSource> source;
};

ssize_t readStream(void* closure, std::uint64_t, char* to, std::size_t most) {
  Sending& sending = *static_cast<Sending*>(closure);
  for (;;) {
    if (sending.exchange->isStopping()) return MHD_CONTENT_READER_END_OF_STREAM;
    sending.exchange->willRead();
    const std::size_t read = sending.source->read({reinterpret_cast<std::uint8_t*>(to), most});
    if (read != 0) return static_cast<ssize_t>(read);
    if (sending.source->isEnded()) return MHD_CONTENT_READER_END_OF_STREAM;
    if (sending.exchange->suspendUnlessWoken()) return 0;
  }
}

MHD_Response* made(const std::string& body, const std::shared_ptr<Exchange>&, const Request&) {
  return MHD_create_response_from_buffer(body.size(), const_cast<char*>(body.data()), MHD_RESPMEM_MUST_COPY);
}

MHD_Response* made(const FileContent& content, const std::shared_ptr<Exchange>&, const Request&) {
  return MHD_create_response_from_fd_at_offset64(content.length, content.file->release(), content.offset);
}

MHD_Response* made(const StreamContent& content, const std::shared_ptr<Exchange>& exchange, const Request& request) {
  if (request.method == "HEAD") return MHD_create_response_from_buffer(0, nullptr, MHD_RESPMEM_PERSISTENT);
  const auto wake = [weak = std::weak_ptr(exchange)] {
    if (const auto reader = weak.lock()) reader->wake();
  };
  auto* const sending = new Sending{exchange, content.open(wake)};
  return MHD_create_response_from_callback(MHD_SIZE_UNKNOWN, kChunk, readStream, sending,
                                           [](void* closure) { delete static_cast<Sending*>(closure); });
}

// The socket is handed on; the library's own is closed with the answer.
void takeSocket(void* closure, MHD_Connection*, void*, const char* read, std::size_t size, MHD_socket socket,
                MHD_UpgradeResponseHandle* handle) {
  const std::unique_ptr<UpgradeContent> content(static_cast<UpgradeContent*>(closure));
  platform::UniqueDescriptor own(::dup(socket));
  MHD_upgrade_action(handle, MHD_UPGRADE_ACTION_CLOSE);
  if (own) content->take(std::move(own), std::string(read, size));
}

MHD_Response* made(const UpgradeContent& content, const std::shared_ptr<Exchange>&, const Request&) {
  MHD_Response* const response = MHD_create_response_for_upgrade(takeSocket, new UpgradeContent(content));
  if (response != nullptr) MHD_add_response_header(response, "Upgrade", content.protocol.c_str());
  return response;
}

}  // namespace

bool queueResponse(MHD_Connection& connection, const std::shared_ptr<Exchange>& exchange, Response response) {
  MHD_Response* const made_ =
      std::visit([&](const auto& content) { return made(content, exchange, exchange->request); }, response.content);
  if (made_ == nullptr) return false;
  if (!response.type.empty()) MHD_add_response_header(made_, "Content-Type", response.type.c_str());
  for (const auto& [name, value] : kUsualHeaders) MHD_add_response_header(made_, name, value);
  if (!hasPolicy(response)) MHD_add_response_header(made_, "Content-Security-Policy", kSecurityPolicy);
  for (const auto& [name, value] : response.headers) MHD_add_response_header(made_, name.c_str(), value.c_str());
  const bool isQueued = MHD_queue_response(&connection, static_cast<unsigned>(response.status), made_) == MHD_YES;
  MHD_destroy_response(made_);
  return isQueued;
}

}  // namespace zel::gateway
