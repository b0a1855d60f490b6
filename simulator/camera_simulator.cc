#include "simulator/camera_simulator.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <utility>

#include "simulator/asio.h"
#include "simulator/camera_connection.h"

namespace zel::simulator {
namespace {

using Protocol = asio::local::stream_protocol;

constexpr std::chrono::seconds kBackAfterDisconnect{1};
constexpr std::chrono::milliseconds kStormPause{50};

std::string makeSocketFolder() {
  std::string pattern = "/tmp/zelcam-sim-XXXXXX";
  return mkdtemp(pattern.data()) != nullptr ? pattern : std::string();
}

}  // namespace

// Everything is touched on the simulator's own thread; what others ask for is posted to it.
struct CameraSimulator::State : std::enable_shared_from_this<State> {
  explicit State(SimulatorOptions given)
      : options(std::move(given)), publisher(options.accessoriesFolder, options.identity) {}

  bool open(std::string& error);
  void plug();
  void unplug();
  void accept();
  void serve(Protocol::socket socket);
  void connectionClosed();
  void storm();
  void later(std::chrono::milliseconds time, std::function<void()> then);
  void end();
  void cleanUp();

  SimulatorOptions options;
  AccessoryPublisher publisher;
  std::string folder;
  std::string socketPath;
  // Both go when the thread has ended: what still waits in the context holds this state.
  std::unique_ptr<asio::io_context> context = std::make_unique<asio::io_context>();
  std::unique_ptr<Protocol::acceptor> acceptor = std::make_unique<Protocol::acceptor>(*context);
  std::shared_ptr<CameraConnection> connection;
  bool plugged = false;
  bool ended = false;
  std::atomic<int> connections = 0;
  std::atomic<int> requests = 0;
  std::mutex threadMutex;  // guards the existence of the context
  std::mutex waitMutex;
  std::thread thread;
};

bool CameraSimulator::State::open(std::string& error) {
  if (!publisher.ok()) {
    error = publisher.error();
    return false;
  }
  folder = makeSocketFolder();
  socketPath = folder + "/camera.sock";
  if (folder.empty()) error = "no folder for the socket can be made in /tmp";
  return error.empty();
}

void CameraSimulator::State::plug() {
  if (plugged || ended) return;
  unlink(socketPath.c_str());
  asio::error_code fault;
  acceptor->open(Protocol(), fault);
  if (!fault) acceptor->bind(Protocol::endpoint(socketPath), fault);
  if (!fault) acceptor->listen(8, fault);
  if (fault) return options.warn("socket " + socketPath + " cannot be used: " + fault.message());
  plugged = publisher.publish(socketPath);
  if (!plugged) options.warn(publisher.error());
  accept();
}

void CameraSimulator::State::unplug() {
  if (!std::exchange(plugged, false)) return;
  publisher.withdraw();
  asio::error_code ignored;
  acceptor->close(ignored);
  unlink(socketPath.c_str());
  if (connection) connection->close();
}

void CameraSimulator::State::accept() {
  acceptor->async_accept([self = shared_from_this()](asio::error_code error, Protocol::socket socket) {
    if (error) return;
    self->serve(std::move(socket));
    self->accept();
  });
}

// A camera has one host: a new connection takes the place of the one before.
void CameraSimulator::State::serve(Protocol::socket socket) {
  if (const auto before = std::exchange(connection, nullptr)) before->close();
  ++connections;
  ConnectionSetup setup;
  setup.firmware = options.identity.firmware;
  setup.resolution = options.resolution;
  setup.seed = options.seed;
  setup.faults = &options.faults;
  setup.requestSeen = [this] { ++requests; };
  setup.closed = [this] { connectionClosed(); };
  setup.warn = options.warn;
  setup.unplug = [this] {
    unplug();
    later(kBackAfterDisconnect, [this] { plug(); });
  };
  connection = std::make_shared<CameraConnection>(std::move(socket), std::move(setup));
  connection->start();
}

void CameraSimulator::State::connectionClosed() {
  if (options.once) end();
}

void CameraSimulator::State::storm() {
  if (options.faults.storm-- <= 0) return;
  later(kStormPause, [this] {
    unplug();
    plug();
    storm();
  });
}

void CameraSimulator::State::later(std::chrono::milliseconds time, std::function<void()> then) {
  const auto timer = std::make_shared<asio::steady_timer>(*context, time);
  timer->async_wait([self = shared_from_this(), timer, then = std::move(then)](asio::error_code error) {
    if (!error && !self->ended) then();
  });
}

void CameraSimulator::State::end() {
  if (std::exchange(ended, true)) return;
  unplug();
  context->stop();
}

void CameraSimulator::State::cleanUp() {
  publisher.withdraw();
  connection = nullptr;
  if (folder.empty()) return;
  unlink(socketPath.c_str());
  rmdir(folder.c_str());
}

CameraSimulator::CameraSimulator(SimulatorOptions options) {
  if (!options.warn) options.warn = [](const std::string& line) { std::fprintf(stderr, "%s\n", line.c_str()); };
  state_ = std::make_shared<State>(std::move(options));
}

CameraSimulator::~CameraSimulator() { stop(); }

bool CameraSimulator::start(std::string& error) {
  if (!state_->open(error)) return false;
  state_->plug();
  if (!state_->plugged) {
    error = state_->publisher.error().empty() ? "the socket cannot be used" : state_->publisher.error();
    state_->cleanUp();
    return false;
  }
  state_->storm();
  state_->thread = std::thread([state = state_.get()] {
    const auto work = asio::make_work_guard(*state->context);
    state->context->run();
    state->cleanUp();
  });
  return true;
}

void CameraSimulator::stop() {
  post([](State& state) { state.end(); });
  wait();
  const std::lock_guard lock(state_->threadMutex);
  state_->acceptor.reset();
  state_->context.reset();
}

void CameraSimulator::wait() {
  const std::lock_guard lock(state_->waitMutex);
  if (state_->thread.joinable()) state_->thread.join();
}

void CameraSimulator::post(std::function<void(State&)> step) {
  const std::lock_guard lock(state_->threadMutex);
  if (!state_->context) return;
  asio::post(*state_->context, [state = state_.get(), step = std::move(step)] { step(*state); });
}

void CameraSimulator::unplug() {
  post([](State& state) { state.unplug(); });
}

void CameraSimulator::plug() {
  post([](State& state) { state.plug(); });
}

void CameraSimulator::beSilent(double seconds) {
  post([seconds](State& state) {
    if (state.connection) state.connection->beSilent(seconds);
  });
}

std::string CameraSimulator::accessoryFile() const { return state_->publisher.file(); }
int CameraSimulator::connections() const { return state_->connections.load(); }
int CameraSimulator::requests() const { return state_->requests.load(); }

}  // namespace zel::simulator
