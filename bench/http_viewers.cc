#include "bench/http_viewers.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <span>

#include "platform/linux/unique_descriptor.h"

namespace zel::bench {
namespace {

constexpr std::size_t kPiece = 256 << 10;
constexpr std::size_t kHead = 4 + 1 + 1 + 8;  // of a record: length, kind, flags, time
constexpr int kPollMilliseconds = 100;

[[noreturn]] void giveUp(const char* what) {
  std::perror(what);
  std::exit(1);
}

platform::UniqueDescriptor connected(int port, const std::string& request) {
  platform::UniqueDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) giveUp("the gateway");
  if (::send(socket.get(), request.data(), request.size(), 0) != static_cast<ssize_t>(request.size()))
    giveUp("a request");
  return socket;
}

std::string requestFor(const std::string& path, int port, const char* more = "") {
  return "GET " + path + " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) + "\r\n" + more + "\r\n";
}

// Takes the frames of chunked transfer off: what is left are the records.
class Dechunker {
 public:
  template <class Take>
  void feed(std::span<const std::uint8_t> bytes, const Take& take) {
    while (!bytes.empty()) {
      if (left_ > 0) {
        const std::size_t count = std::min(left_, bytes.size());
        take(bytes.first(count));
        bytes = bytes.subspan(count);
        left_ -= count;
        continue;
      }
      const char letter = static_cast<char>(bytes.front());
      bytes = bytes.subspan(1);
      if (letter != '\n') {
        line_ += letter;
        continue;
      }
      if (line_ != "\r") left_ = std::strtoul(line_.c_str(), nullptr, 16);
      line_.clear();
    }
  }

 private:
  std::string line_;
  std::size_t left_ = 0;
};

}  // namespace

int camerasThatStream(int port) {
  const auto socket = connected(port, requestFor("/api/v1/cameras", port, "Connection: close\r\n"));
  std::string answer(kPiece, '\0');
  std::size_t size = 0;
  for (ssize_t count = 0; (count = ::recv(socket.get(), answer.data() + size, answer.size() - size, 0)) > 0;)
    size += static_cast<std::size_t>(count);
  int streaming = 0;
  for (std::size_t at = 0; (at = answer.find("\"streaming\"", at)) != std::string::npos; ++at) ++streaming;
  return streaming;
}

struct HttpViewers::Connection {
  platform::UniqueDescriptor socket;
  std::string head;  // of the answer, until its end
  bool hasHead = false;
  Dechunker dechunker;
  std::array<std::uint8_t, kHead> record{};
  std::size_t recordAt = 0, payloadLeft = 0;
  std::atomic<std::uint64_t> pictures = 0, skips = 0, bytes = 0;

  void take(std::span<const std::uint8_t> bytes);
  void takeRecords(std::span<const std::uint8_t> bytes);
  void begin();
};

// A record's head is there.
void HttpViewers::Connection::begin() {
  const std::size_t length =
      record[0] | std::size_t{record[1]} << 8 | std::size_t{record[2]} << 16 | std::size_t{record[3]} << 24;
  payloadLeft = length - (kHead - 4);
  recordAt = 0;
  if (record[4] == 1) ++pictures;
  if (record[4] == 1 && (record[5] & 2) != 0) ++skips;
}

void HttpViewers::Connection::takeRecords(std::span<const std::uint8_t> records) {
  while (!records.empty()) {
    const std::size_t wanted = payloadLeft > 0 ? payloadLeft : kHead - recordAt;
    const std::size_t count = std::min(wanted, records.size());
    if (payloadLeft > 0) {
      payloadLeft -= count;
    } else {
      std::copy_n(records.begin(), count, record.begin() + static_cast<std::ptrdiff_t>(recordAt));
      recordAt += count;
      if (recordAt == kHead) begin();
    }
    records = records.subspan(count);
  }
}

void HttpViewers::Connection::take(std::span<const std::uint8_t> read) {
  bytes += read.size();
  while (!hasHead && !read.empty()) {
    head += static_cast<char>(read.front());
    read = read.subspan(1);
    hasHead = head.ends_with("\r\n\r\n");
  }
  if (hasHead && !head.starts_with("HTTP/1.1 200")) {
    std::fprintf(stderr, "the gateway refuses a viewer: %s\n", head.substr(0, head.find('\r')).c_str());
    std::exit(1);
  }
  dechunker.feed(read, [this](std::span<const std::uint8_t> records) { takeRecords(records); });
}

HttpViewers::HttpViewers(int port) : port_(port) {}
HttpViewers::~HttpViewers() { stop(); }

void HttpViewers::add(const std::string& serialNumber) {
  auto connection = std::make_unique<Connection>();
  connection->socket = connected(port_, requestFor("/api/v1/cameras/" + serialNumber + "/live.units", port_));
  connections_.push_back(std::move(connection));
}

void HttpViewers::start() {
  thread_ = std::thread([this] { run(); });
}

void HttpViewers::stop() {
  stopping_ = true;
  if (thread_.joinable()) thread_.join();
}

void HttpViewers::run() {
  std::vector<std::uint8_t> piece(kPiece);
  std::vector<pollfd> sockets;
  for (const auto& one : connections_) sockets.push_back({one->socket.get(), POLLIN, 0});
  while (!stopping_) {
    ::poll(sockets.data(), sockets.size(), kPollMilliseconds);
    for (std::size_t one = 0; one < sockets.size(); ++one) {
      if (sockets[one].revents == 0) continue;
      const ssize_t count = ::recv(sockets[one].fd, piece.data(), piece.size(), 0);
      if (count <= 0) giveUp("a viewer was cut off");
      connections_[one]->take(std::span(piece).first(static_cast<std::size_t>(count)));
    }
  }
}

HttpViewers::Counts HttpViewers::counts() const {
  Counts counts;
  counts.least = connections_.empty() ? 0 : UINT64_MAX;
  for (const auto& one : connections_) {
    counts.pictures += one->pictures;
    counts.skips += one->skips;
    counts.bytes += one->bytes;
    counts.least = std::min(counts.least, one->pictures.load());
  }
  return counts;
}

}  // namespace zel::bench
