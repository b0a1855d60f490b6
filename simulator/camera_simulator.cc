#include "simulator/camera_simulator.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <utility>

#include "platform/linux/asio.h"
#include "simulator/camera_connection.h"
#include "simulator/event_lines.h"
#include "simulator/simulated_camera.h"
#include "simulator/storage.h"

namespace zel::simulator {
namespace {

using Protocol = asio::local::stream_protocol;

constexpr std::chrono::seconds kBackAfterDisconnect{1};
constexpr std::chrono::milliseconds kStormPause{50};

CameraStart startOf(const SimulatorOptions& options) {
  CameraStart start;
  start.serial = options.identity.serial;
  start.firmware = options.identity.firmware;
  start.resolution = options.resolution;
  if (options.cardSize != 0) start.cardSize = options.cardSize;
  start.now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  return start;
}

std::string makeSocketFolder() {
  std::string pattern = "/tmp/zelcam-sim-XXXXXX";
  return mkdtemp(pattern.data()) != nullptr ? pattern : std::string();
}

}  // namespace

// Used only on the simulator's own thread; calls from other threads are posted to it.
struct CameraSimulator::State final : CameraWorld, std::enable_shared_from_this<State> {
  explicit State(SimulatorOptions given)
      : options(std::move(given)),
        publisher(options.accessoriesFolder, options.identity),
        storage(options.storage),
        camera(*this, startOf(options), storage, options.faults) {}

  bool open(std::string& error) {
    if (!publisher.ok()) {
      error = publisher.error();
      return false;
    }
    if (!storage.ok()) {
      error = "the storage folder " + options.storage + " cannot be made";
      return false;
    }
    if (!options.video.empty() && !media.useVideo(options.video, error)) return false;
    if (!options.audio.empty() && !media.useAudio(options.audio, error)) return false;
    media.video(previewFormat(options.resolution, options.bitrate, options.slices));  // starts rendering
    media.audio();
    folder = makeSocketFolder();
    socketPath = folder + "/camera.sock";
    if (folder.empty()) error = "no folder for the socket can be made in /tmp";
    return error.empty();
  }

  bool attach(std::string& error) {
    if (plugged || ended) return true;
    unlink(socketPath.c_str());
    asio::error_code fault, ignored;
    acceptor->open(Protocol(), fault);
    if (!fault) acceptor->bind(Protocol::endpoint(socketPath), fault);
    if (!fault) acceptor->listen(8, fault);
    plugged = !fault && publisher.publish(socketPath);
    if (plugged) {
      accept();
      return true;
    }
    error = fault ? "socket " + socketPath + " cannot be used: " + fault.message() : publisher.error();
    acceptor->close(ignored);
    return false;
  }

  void plug() {
    std::string error;
    if (!attach(error)) options.warn(error);
  }

  void unplug() override {
    if (!std::exchange(plugged, false)) return;
    publisher.withdraw();
    asio::error_code ignored;
    acceptor->close(ignored);
    unlink(socketPath.c_str());
    if (connection) connection->close();
  }

  void restart() override {
    unplug();
    later(kBackAfterDisconnect, [this] { plug(); });
  }

  void accept() {
    acceptor->async_accept([self = shared_from_this()](asio::error_code error, Protocol::socket socket) {
      if (error || !self->plugged) return;  // accepted before the camera was unplugged
      self->serve(std::move(socket));
      self->accept();
    });
  }

  // A camera has one host: a new connection replaces the previous one.
  void serve(Protocol::socket socket) {
    if (const auto before = std::exchange(connection, nullptr)) before->close();
    ++connections;
    const ConnectionSetup setup{.options = options,
                                .camera = camera,
                                .media = media,
                                .requestSeen = [this](std::uint16_t code) { requestSeen(code); },
                                .unplug = [this] { restart(); },
                                .closed =
                                    [this] {
                                      if (options.once) end();
                                    }};
    connection = std::make_shared<CameraConnection>(std::move(socket), setup);
    connection->start();
  }

  void requestSeen(std::uint16_t code) {
    if (code != kSyncData && code != kSyncTime) ++requests;
    if (!options.verbose) return;
    char line[sizeof "request 0x0000"];
    std::snprintf(line, sizeof line, "request 0x%04X", code);
    options.warn(line);
  }

  void storm() {
    if (options.faults.storm-- <= 0) return;
    later(kStormPause, [this] {
      unplug();
      plug();
      storm();
    });
  }

  std::chrono::milliseconds uptime() const override {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
  }

  void later(std::chrono::milliseconds time, std::function<void()> then) override {
    const auto timer = std::make_shared<asio::steady_timer>(*context, time);
    timer->async_wait([self = shared_from_this(), timer, then = std::move(then)](asio::error_code error) {
      if (!error && !self->ended) then();
    });
  }

  void onWorker(std::function<std::function<void()>()> job) override {
    asio::post(worker, [this, job = std::move(job)]() mutable {
      auto done = job();
      job = nullptr;
      asio::post(*context, std::move(done));
    });
  }

  void tellHost(Bytes frame) override {
    if (connection) connection->send(std::move(frame));
  }

  void end() {
    if (std::exchange(ended, true)) return;
    unplug();
    context->stop();
  }

  void cleanUp() {
    publisher.withdraw();
    connection = nullptr;
    storage.end();
    if (folder.empty()) return;
    unlink(socketPath.c_str());
    rmdir(folder.c_str());
  }

  SimulatorOptions options;
  AccessoryPublisher publisher;
  Storage storage;
  SimulatedCamera camera;
  MediaLibrary media;
  asio::thread_pool worker{1};
  std::string folder;
  std::string socketPath;
  // Both are destroyed after the thread has ended, because pending work in the context holds this state.
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

CameraSimulator::CameraSimulator(SimulatorOptions options) {
  if (!options.warn) options.warn = [](const std::string& line) { std::fprintf(stderr, "%s\n", line.c_str()); };
  state_ = std::make_shared<State>(std::move(options));
}

CameraSimulator::~CameraSimulator() { stop(); }

bool CameraSimulator::start(std::string& error) {
  if (!state_->open(error)) return false;
  if (!state_->attach(error)) {
    state_->cleanUp();
    return false;
  }
  state_->camera.start();
  state_->storm();
  state_->thread = std::thread([state = state_.get()] {
    const auto work = asio::make_work_guard(*state->context);
    state->context->run();
    state->worker.stop();
    state->worker.join();
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

bool CameraSimulator::tell(const std::string& line, std::string& error) {
  const CameraHappening happening = readEventLine(line, error);
  if (!happening) return false;
  post([happening](State& state) { happening(state.camera); });
  return true;
}

void CameraSimulator::sendEvent(std::uint16_t code, const std::vector<std::uint8_t>& body) {
  post([whole = message(code, body)](State& state) { state.tellHost(whole); });
}

std::string CameraSimulator::storageFolder() const { return state_->storage.folder().string(); }
std::string CameraSimulator::accessoryFile() const { return state_->publisher.file(); }
int CameraSimulator::connections() const { return state_->connections.load(); }
int CameraSimulator::requests() const { return state_->requests.load(); }

}  // namespace zel::simulator
