#include "gateway/http/server.h"

#include <fmt/format.h>
#include <microhttpd.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <thread>
#include <utility>

#include "gateway/http/body.h"
#include "gateway/http/exchange.h"
#include "gateway/http/open_connections.h"
#include "gateway/json/number_text.h"

namespace zel::gateway {

using Clock = OpenConnections::Clock;

struct Server::State {
  State(Options given, Service& served)
      : options(std::move(given)), service(served), connections(options.requestLimit) {}

  Options options;
  Service& service;
  OpenConnections connections;
  MHD_Daemon* daemon = nullptr;
  platform::UniqueDescriptor stop;  // readable: the door closes
  std::thread door;                 // lets local connections in, and slow ones out

  bool startDaemon(std::string& error);
  bool startDoor(std::string& error);
  void keepDoor();
  void letIn();
  MHD_Result handle(MHD_Connection& connection, const std::shared_ptr<Exchange>& exchange, const char* method,
                    const char* body, std::size_t& size);
  MHD_Result readHead(MHD_Connection& connection, const std::shared_ptr<Exchange>& exchange, const char* method);
  MHD_Result readBody(Exchange& exchange, const char* body, std::size_t& size) const;
  MHD_Result answer(MHD_Connection& connection, const std::shared_ptr<Exchange>& exchange);
};

namespace {

constexpr std::size_t kMostIgnored =
    4;                             // times the bytes that a body may have are read before its connection is closed
constexpr int kLookPeriod = 1000;  // milliseconds

std::string lowerCase(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), [](unsigned char letter) { return std::tolower(letter); });
  return result;
}

bool isLocal(MHD_Connection& connection) {
  const auto* const info = MHD_get_connection_info(&connection, MHD_CONNECTION_INFO_CLIENT_ADDRESS);
  return info != nullptr && info->client_addr != nullptr && info->client_addr->sa_family == AF_UNIX;
}

MHD_Result keepHeader(void* closure, MHD_ValueKind, const char* name, const char* value) {
  static_cast<Request*>(closure)->headers[lowerCase(name)] = value != nullptr ? value : "";
  return MHD_YES;
}

// -- The library's callbacks

using Shared = std::shared_ptr<Exchange>;

void* beginExchange(void* closure, const char* target, MHD_Connection* connection) {
  auto* const exchange = new Shared(std::make_shared<Exchange>(connection, target));
  static_cast<OpenConnections*>(closure)->add(*exchange);
  return exchange;
}

void endExchange(void* closure, MHD_Connection* connection, void** kept, MHD_RequestTerminationCode) {
  const std::unique_ptr<Shared> exchange(static_cast<Shared*>(std::exchange(*kept, nullptr)));
  auto& connections = *static_cast<OpenConnections*>(closure);
  connections.noteSending(connection, Clock::now());
  if (!exchange) return;
  connections.remove(exchange->get());
  (*exchange)->detach();
}

void noteConnection(void* closure, MHD_Connection* connection, void**, MHD_ConnectionNotificationCode code) {
  auto& connections = *static_cast<OpenConnections*>(closure);
  if (code == MHD_CONNECTION_NOTIFY_CLOSED) return connections.remove(connection);
  const auto* const info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD);
  if (info != nullptr) connections.add(connection, info->connect_fd, Clock::now());
}

// Paths are decoded by parseTarget() alone.
std::size_t keepEscaped(void*, MHD_Connection*, char* text) { return std::strlen(text); }

}  // namespace

// -- One request

MHD_Result Server::State::readHead(MHD_Connection& connection, const std::shared_ptr<Exchange>& exchange,
                                   const char* method) {
  Request& request = exchange->request;
  exchange->step = Exchange::Step::body;
  connections.noteSending(&connection, Clock::now());
  request.method = method;
  request.isLocal = isLocal(connection);
  MHD_get_connection_values(&connection, MHD_HEADER_KIND, keepHeader, &request);
  const auto refuse = [&](Response response) {
    return queueResponse(connection, exchange, std::move(response)) ? MHD_YES : MHD_NO;
  };
  auto target = parseTarget(exchange->target());
  if (!target) return refuse(problem(400, "the request's path is malformed"));
  request.target = *std::move(target);
  auto admitted = service.admit(request);
  if (auto* const refusal = std::get_if<Response>(&admitted)) return refuse(std::move(*refusal));
  exchange->mostBody = std::get<std::size_t>(admitted);
  const auto announced = numberIn<std::uint64_t>(request.header("content-length"));
  if (announced && *announced > exchange->mostBody) {
    return refuse(problem(413, fmt::format("the request's body has more than {} bytes", exchange->mostBody)));
  }
  return MHD_YES;
}

// A body of no announced length is read on for a while, so that its sender gets to know why it is refused.
MHD_Result Server::State::readBody(Exchange& exchange, const char* body, std::size_t& size) const {
  std::string& kept = exchange.request.body;
  kept.append(body, std::exchange(size, 0));
  const std::size_t most = std::max<std::size_t>(exchange.mostBody, 1024) * kMostIgnored;
  return kept.size() <= most ? MHD_YES : MHD_NO;
}

MHD_Result Server::State::answer(MHD_Connection& connection, const std::shared_ptr<Exchange>& exchange) {
  if (std::exchange(exchange->step, Exchange::Step::asked) != Exchange::Step::asked) {
    connections.noteAsked(&connection);
    const Respond respond = exchange->responder();
    if (exchange->request.body.size() > exchange->mostBody) {
      respond(problem(413, fmt::format("the request's body has more than {} bytes", exchange->mostBody)));
    } else {
      service.answer(exchange->request, respond);
    }
  }
  auto response = exchange->takeOrSuspend();
  if (!response) return MHD_YES;
  return queueResponse(connection, exchange, *std::move(response)) ? MHD_YES : MHD_NO;
}

MHD_Result Server::State::handle(MHD_Connection& connection, const std::shared_ptr<Exchange>& exchange,
                                 const char* method, const char* body, std::size_t& size) {
  if (exchange->step == Exchange::Step::head) return readHead(connection, exchange, method);
  if (size != 0) return readBody(*exchange, body, size);
  return answer(connection, exchange);
}

// -- The door

void Server::State::letIn() {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const int socket = ::accept4(options.localListener.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
  // The library closes it where it refuses it.
  if (socket >= 0) {
    MHD_add_connection(daemon, socket, reinterpret_cast<const sockaddr*>(&address), sizeof address.sun_family);
  }
}

void Server::State::keepDoor() {
  pollfd watched[] = {{stop.get(), POLLIN, 0}, {options.localListener.get(), POLLIN, 0}};
  while ((watched[0].revents & POLLIN) == 0) {
    if (::poll(watched, std::size(watched), kLookPeriod) < 0 && errno != EINTR) return;
    if ((watched[1].revents & POLLIN) != 0) letIn();
    connections.endSlow(Clock::now());
  }
}

bool Server::State::startDoor(std::string& error) {
  stop.reset(::eventfd(0, EFD_CLOEXEC));
  if (!stop) {
    error = fmt::format("cannot serve: {}", std::strerror(errno));
    return false;
  }
  try {
    door = std::thread([this] { keepDoor(); });
  } catch (const std::system_error& fault) {
    error = fmt::format("no thread can be started: {}", fault.what());
    return false;
  }
  return true;
}

// -- Start and end

bool Server::State::startDaemon(std::string& error) {
  const auto handler = [](void* closure, MHD_Connection* connection, const char*, const char* method, const char*,
                          const char* body, std::size_t* size, void** kept) {
    const Shared exchange = *static_cast<Shared*>(*kept);
    return static_cast<State*>(closure)->handle(*connection, exchange, method, body, *size);
  };
  daemon = MHD_start_daemon(MHD_USE_EPOLL_INTERNAL_THREAD | MHD_ALLOW_SUSPEND_RESUME | MHD_ALLOW_UPGRADE, 0, nullptr,
                            nullptr, static_cast<MHD_AccessHandlerCallback>(handler), this,                   //
                            MHD_OPTION_LISTEN_SOCKET, options.listener.get(),                                 //
                            MHD_OPTION_CONNECTION_LIMIT, options.mostConnections,                             //
                            MHD_OPTION_CONNECTION_TIMEOUT, static_cast<unsigned>(options.idleLimit.count()),  //
                            MHD_OPTION_CONNECTION_MEMORY_LIMIT, options.mostHeaderBytes,                      //
                            MHD_OPTION_URI_LOG_CALLBACK, beginExchange, &connections,                         //
                            MHD_OPTION_NOTIFY_COMPLETED, endExchange, &connections,                           //
                            MHD_OPTION_NOTIFY_CONNECTION, noteConnection, &connections,                       //
                            MHD_OPTION_UNESCAPE_CALLBACK, keepEscaped, nullptr,                               //
                            MHD_OPTION_STRICT_FOR_CLIENT, 1,                                                  //
                            MHD_OPTION_SIGPIPE_HANDLED_BY_APP, 1, MHD_OPTION_END);
  if (daemon == nullptr) {
    error = fmt::format("cannot serve: {}", std::strerror(errno));
    return false;
  }
  options.listener.release();  // the library closes it
  return true;
}

std::unique_ptr<Server> Server::start(Options options, Service& service, std::string& error) {
  std::unique_ptr<Server> server(new Server(std::make_unique<State>(std::move(options), service)));
  if (!server->state_->startDaemon(error) || !server->state_->startDoor(error)) return nullptr;
  return server;
}

Server::Server(std::unique_ptr<State> state) : state_(std::move(state)) {}

Server::~Server() {
  if (state_->door.joinable()) {
    const std::uint64_t one = 1;
    (void)!::write(state_->stop.get(), &one, sizeof one);
    state_->door.join();
  }
  if (state_->daemon == nullptr) return;
  state_->connections.stopAll();
  MHD_stop_daemon(state_->daemon);
}

unsigned Server::connections() const { return static_cast<unsigned>(state_->connections.count()); }

}  // namespace zel::gateway
