#include "gateway/http/server.h"

#include <gmock/gmock.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "gateway/http/listen.h"

namespace zel::gateway {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr int kPatience = 60'000;  // milliseconds

// A byte source that is fed by the test.
class Fed final : public ByteSource {
 public:
  explicit Fed(std::function<void()> ready) : ready_(std::move(ready)) {}
  void put(const std::string& text) {
    {
      const std::lock_guard lock(mutex_);
      text_ += text;
    }
    ready_();
  }
  void end() {
    isEnded_ = true;
    ready_();
  }
  std::size_t read(std::span<std::uint8_t> to) override {
    const std::lock_guard lock(mutex_);
    const std::size_t some = std::min(to.size(), text_.size());
    std::copy_n(text_.begin(), some, to.begin());
    text_.erase(0, some);
    return some;
  }
  bool isEnded() const override { return isEnded_; }

 private:
  const std::function<void()> ready_;
  std::mutex mutex_;
  std::string text_;
  std::atomic<bool> isEnded_ = false;
};

// Answers by the first segment of the path.
class TestService final : public Service {
 public:
  std::variant<Response, std::size_t> admit(const Request& head) override {
    if (!head.target.path.empty() && head.target.path[0] == "forbidden") return problem(403, "no");
    return std::size_t{8};
  }
  void answer(const Request& request, Respond respond) override {
    const std::string what = request.target.path.empty() ? "" : request.target.path[0];
    if (what == "later") return keep(std::move(respond));
    if (what == "dropped") return;
    if (what == "stream") return respond(stream());
    Response response{.type = "text/plain"};
    response.content = request.method + " " + request.body;
    respond(std::move(response));
  }

  // The answer that somebody waits for.
  Respond waitForRespond() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return static_cast<bool>(respond_); });
    return std::exchange(respond_, nullptr);
  }
  std::shared_ptr<Fed> waitForStream() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return static_cast<bool>(fed_); });
    return fed_;
  }

 private:
  void keep(Respond respond) {
    const std::lock_guard lock(mutex_);
    respond_ = std::move(respond);
    changed_.notify_all();
  }
  Response stream() {
    Response response{.type = "text/plain"};
    response.content = StreamContent{[this](std::function<void()> ready) {
      const std::lock_guard lock(mutex_);
      fed_ = std::make_shared<Fed>(std::move(ready));
      changed_.notify_all();
      return fed_;
    }};
    return response;
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  Respond respond_;
  std::shared_ptr<Fed> fed_;
};

// A connection that says what it likes.
class Client {
 public:
  explicit Client(std::uint16_t port) : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::connect(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  }
  void send(const std::string& text) const {
    EXPECT_EQ(::send(socket_.get(), text.data(), text.size(), MSG_NOSIGNAL), static_cast<ssize_t>(text.size()));
  }
  // What has come once it holds the text; all that came where the connection ended before.
  std::string readUntil(const std::string& text) {
    while (got_.find(text) == std::string::npos && readSome()) {
    }
    return got_;
  }
  std::string readAll() {
    while (readSome()) {
    }
    return got_;
  }

 private:
  bool readSome() {
    pollfd one{socket_.get(), POLLIN, 0};
    if (::poll(&one, 1, kPatience) != 1) return false;
    char bytes[4096];
    const ssize_t some = ::recv(socket_.get(), bytes, sizeof bytes, 0);
    if (some > 0) got_.append(bytes, static_cast<std::size_t>(some));
    return some > 0;
  }
  platform::UniqueDescriptor socket_;
  std::string got_;
};

class ServerTest : public testing::Test {
 protected:
  void start(Server::Options options = {}) {
    std::string error;
    auto listener = listenAt({"127.0.0.1", 0}, error);
    ASSERT_TRUE(listener) << error;
    port = listener->port;
    options.listener = std::move(listener->socket);
    server = Server::start(std::move(options), service, error);
    ASSERT_TRUE(server) << error;
  }
  Client client() const { return Client(port); }
  static std::string request(const std::string& line, const std::string& rest = "\r\n") {
    return line + " HTTP/1.1\r\nHost: localhost\r\n" + rest;
  }

  TestService service;
  std::uint16_t port = 0;
  std::unique_ptr<Server> server;
};

TEST_F(ServerTest, AnswersSeveralRequestsOfOneConnection) {
  start();
  Client one = client();
  one.send(request("GET /"));
  EXPECT_THAT(one.readUntil("GET "), StartsWith("HTTP/1.1 200"));
  one.send(request("POST /a", "Content-Length: 8\r\n\r\n12345678"));
  EXPECT_THAT(one.readUntil("POST 12345678"), HasSubstr("POST 12345678"));
}

TEST_F(ServerTest, SaysInEveryAnswerWhatBrowsersMustNotDo) {
  start();
  Client one = client();
  one.send(request("GET /"));
  const std::string answer = one.readUntil("GET ");
  EXPECT_THAT(answer, HasSubstr("Content-Security-Policy: default-src 'none'"));
  EXPECT_THAT(answer, HasSubstr("X-Content-Type-Options: nosniff"));
  EXPECT_THAT(answer, HasSubstr("Cross-Origin-Resource-Policy: same-origin"));
}

TEST_F(ServerTest, ServesOthersWhileAnAnswerIsWaitedFor) {
  start();
  Client slow = client(), quick = client();
  slow.send(request("GET /later"));
  const Respond respond = service.waitForRespond();
  quick.send(request("GET /"));
  EXPECT_THAT(quick.readUntil("GET "), StartsWith("HTTP/1.1 200"));
  respond(problem(504, "late"));
  EXPECT_THAT(slow.readUntil("late"), StartsWith("HTTP/1.1 504"));
}

TEST_F(ServerTest, AnswersARequestThatWasDroppedWith500) {
  start();
  Client one = client();
  one.send(request("GET /dropped"));
  EXPECT_THAT(one.readUntil("dropped"), StartsWith("HTTP/1.1 500"));
}

TEST_F(ServerTest, SendsAStreamAsItGrows) {
  start();
  Client one = client();
  one.send(request("GET /stream"));
  const auto fed = service.waitForStream();
  fed->put("first");
  EXPECT_THAT(one.readUntil("first"), HasSubstr("first"));
  fed->put("second");
  EXPECT_THAT(one.readUntil("second"), HasSubstr("second"));
  fed->end();
  EXPECT_THAT(one.readUntil("\r\n0\r\n\r\n"), HasSubstr("\r\n0\r\n\r\n"));
}

TEST_F(ServerTest, OpensNoStreamForAHead) {
  start();
  Client one = client();
  one.send(request("HEAD /stream"));
  EXPECT_THAT(one.readUntil("\r\n\r\n"), StartsWith("HTTP/1.1 200"));
}

TEST_F(ServerTest, RefusesABodyThatIsAnnouncedTooLarge) {
  start();
  Client one = client();
  one.send(request("POST /a", "Content-Length: 9\r\n\r\n"));
  EXPECT_THAT(one.readUntil("8 bytes"), StartsWith("HTTP/1.1 413"));
}

TEST_F(ServerTest, RefusesABodyThatGrowsTooLarge) {
  start();
  Client one = client();
  one.send(request("POST /a", "Transfer-Encoding: chunked\r\n\r\n9\r\n123456789\r\n0\r\n\r\n"));
  EXPECT_THAT(one.readUntil("8 bytes"), StartsWith("HTTP/1.1 413"));
}

TEST_F(ServerTest, ClosesAConnectionWhoseBodyDoesNotEnd) {
  start();
  Client one = client();
  one.send(request("POST /a", "Transfer-Encoding: chunked\r\n\r\n2000\r\n" + std::string(0x2000, 'x') + "\r\n"));
  one.readAll();  // ends
}

TEST_F(ServerTest, RefusesBeforeTheBodyHasCome) {
  start();
  Client one = client();
  one.send(request("POST /forbidden", "Content-Length: 8\r\n\r\n"));
  EXPECT_THAT(one.readUntil("no"), StartsWith("HTTP/1.1 403"));
}

TEST_F(ServerTest, AnswersWhatIsMalformedWith400) {
  start();
  for (const char* text :
       {"GET /%zz HTTP/1.1\r\nHost: a\r\n\r\n", "GET / HTTP/1.1\r\n\r\n", "GET a HTTP/1.1\r\nHost: a\r\n\r\n",
        "GET / HTTP/1.1\r\nHost: a\r\nContent-Length: x\r\n\r\n"}) {
    Client one = client();
    one.send(text);
    EXPECT_THAT(one.readUntil("\r\n\r\n"), StartsWith("HTTP/1.1 400")) << text;
  }
}

TEST_F(ServerTest, RefusesAHeadThatIsTooLarge) {
  start({.mostHeaderBytes = 16384});
  Client one = client();
  one.send(request("GET /", "X: " + std::string(20000, 'x') + "\r\n\r\n"));
  EXPECT_THAT(one.readAll(), StartsWith("HTTP/1.1 4"));
}

TEST_F(ServerTest, ClosesAConnectionThatSendsItsHeadTooSlowly) {
  start({.requestLimit = std::chrono::seconds(1)});
  Client one = client();
  one.send("GET / HTTP/1.1\r\n");
  EXPECT_EQ(one.readAll(), "");  // ends
}

TEST_F(ServerTest, ServesBesideHundredsOfIdleConnections) {
  start();
  std::vector<std::unique_ptr<Client>> idle;
  for (int i = 0; i < 400; ++i) idle.push_back(std::make_unique<Client>(port));
  Client one = client();
  one.send(request("GET /"));
  EXPECT_THAT(one.readUntil("GET "), StartsWith("HTTP/1.1 200"));
}

TEST_F(ServerTest, EndsWhileAnswersAndStreamsAreWaitedFor) {
  start();
  Client waits = client(), reads = client();
  waits.send(request("GET /later"));
  reads.send(request("GET /stream"));
  const Respond respond = service.waitForRespond();
  service.waitForStream()->put("x");
  reads.readUntil("x");
  server.reset();
  respond(problem(504, "nobody waits any more"));
  reads.readAll();
  waits.readAll();
}

}  // namespace
}  // namespace zel::gateway
