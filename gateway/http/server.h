#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <variant>

#include "gateway/http/request.h"
#include "gateway/http/response.h"
#include "platform/linux/unique_descriptor.h"

namespace zel::gateway {

// What a server serves.
//
// Thread: the server's. Nothing here may wait: while it runs, nobody else is served.
class Service {
 public:
  virtual ~Service() = default;
  // Looks at a request before its body comes: what refuses it, or how many bytes of a body it may have.
  virtual std::variant<Response, std::size_t> admit(const Request& head) = 0;
  // Has the request answered, now or later. An answer that is never given is one of 500.
  virtual void answer(const Request& request, Respond respond) = 0;
};

// An HTTP/1.1 server, all connections on one thread.
//
// Thread: any thread.
class Server {
 public:
  struct Options {
    platform::UniqueDescriptor listener = {};       // a listening TCP socket
    platform::UniqueDescriptor localListener = {};  // a listening Unix socket, if any
    unsigned mostConnections = 1024;
    std::size_t mostHeaderBytes = std::size_t{64} << 10;           // of each connection, its answers' chunks included
    std::chrono::seconds idleLimit = std::chrono::seconds(30);     // without a byte read or written
    std::chrono::seconds requestLimit = std::chrono::seconds(30);  // for a request's head, and again for its body
  };

  // service: must outlive the server.
  //
  // Errors: null; `error` says why.
  static std::unique_ptr<Server> start(Options options, Service& service, std::string& error);

  // Ends every connection. Answers that are still waited for are not given.
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  unsigned connections() const;

 private:
  struct State;
  explicit Server(std::unique_ptr<State> state);
  const std::unique_ptr<State> state_;
};

}  // namespace zel::gateway
