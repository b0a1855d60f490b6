#include <sys/resource.h>

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "apps/zelcam/commands/commands.h"
#include "apps/zelcam/host/console.h"
#include "apps/zelcam/host/interrupt.h"
#include "gateway/api/api.h"
#include "gateway/api/camera_rows.h"
#include "gateway/cameras/cameras.h"
#include "gateway/http/listen.h"
#include "gateway/http/server.h"
#include "gateway/http/token.h"

namespace zel::app {
namespace {

using namespace gateway;

constexpr std::string_view kUsualAddress = "127.0.0.1:8360";

void sayForServe(const std::string& line) { say("zelcam: " + line); }

// As many open files as the system allows: each viewer is one.
void raiseFileLimit() {
  rlimit limit{};
  if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
  limit.rlim_cur = limit.rlim_max;
  ::setrlimit(RLIMIT_NOFILE, &limit);
}

std::optional<Listener> listenerFor(const Values& values, InheritedSockets& inherited, std::string& fault) {
  if (inherited.listener) return std::move(inherited.listener);
  const std::string text = values.has("--listen") ? values.text("--listen") : std::string(kUsualAddress);
  const auto address = parseListenAddress(text);
  if (address) return listenAt(*address, fault);
  fault = fmt::format("--listen takes an address and a port, such as {}, not \"{}\"", kUsualAddress, text);
  return std::nullopt;
}

// Empty: none is needed.
std::optional<std::string> tokenFor(const Values& values, const Listener& listener, std::string& fault) {
  if (values.has("--token-file")) return readToken(values.text("--token-file"), fault);
  if (listener.isLoopback) return "";
  auto token = makeToken();
  if (!token) fault = "the system has no random numbers for a token; --token-file gives one";
  return token;
}

AccessRules rulesFor(const Values& values, const Listener& listener, const std::string& token) {
  AccessRules rules{token, values.list("--host")};
  for (std::string& host : rules.hosts)
    std::ranges::transform(host, host.begin(),
                           [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  if (listener.isLoopback) return rules;
  for (std::string& name : namesOfThisMachine()) rules.hosts.push_back(std::move(name));
  return rules;
}

std::string pageAddress(const Listener& listener, const std::string& token) {
  const std::string address = fmt::format("http://{}:{}/", listener.host, listener.port);
  return token.empty() ? address : address + "#token=" + token;
}

std::unique_ptr<Cameras> camerasFor(const Settings& settings, std::chrono::milliseconds limit, std::string& fault) {
  Cameras::Options options;
  options.accessoriesFolder = settings.accessories;
  options.serialNumber = settings.camera;
  options.program = "zelcam serve";
  options.timeLimit = limit;
  options.warn = sayForServe;
  if (settings.verbose) options.tell = sayForServe;
  return Cameras::create(std::move(options), fault);
}

// Stands in for the page's files.
Row placeholderPage() {
  return {"GET",
          "/",
          "page",
          "The page",
          {{200, "text/html; charset=utf-8", "", "the page"}},
          [](const RowCall&, const Respond& respond) {
            Response response{.type = "text/html; charset=utf-8"};
            response.content = std::string("<!doctype html><title>zelcam</title><p>This is the gateway.\n");
            respond(std::move(response));
          }};
}

}  // namespace

int runServe(const Invocation& invocation) {
  const Settings& settings = invocation.settings;
  const Values& values = invocation.values;
  hearInterrupts();
  raiseFileLimit();
  std::string fault;
  InheritedSockets inherited = takeInheritedSockets();
  auto listener = listenerFor(values, inherited, fault);
  if (!listener) return complain(kRefused, "serve", fault);
  const auto token = tokenFor(values, *listener, fault);
  if (!token) return complain(kWrongUsage, "serve", fault);
  const std::chrono::milliseconds limit(std::max<std::int64_t>(1, static_cast<std::int64_t>(settings.timeout * 1000)));
  const auto cameras = camerasFor(settings, limit, fault);
  if (!cameras) return complain(kNoCamera, "serve", fault);

  std::vector<Row> rows = cameraRows(*cameras, limit);
  rows.push_back(placeholderPage());
  Api api(rulesFor(values, *listener, *token), std::move(rows));
  const std::string address = pageAddress(*listener, *token);
  const auto server = Server::start({.listener = std::move(listener->socket)}, api, fault);
  if (!server) return complain(kRefused, "serve", fault);
  printLine(address);
  waitForStop(interruption(), std::nullopt);
  return kDone;
}

}  // namespace zel::app
