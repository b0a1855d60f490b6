// How long a request takes to its completion, beside what the same hand-overs cost in bare Asio and what a socket costs
// at best; what packing and decoding cost; and whether requests leave anything behind.
//
// All exchanges are with the same camera, which answers at once with as many bytes as it was sent. The time of an
// exchange is the median of a batch.

#include <unistd.h>

#include <array>
#include <cstdint>
#include <fstream>
#include <memory>
#include <semaphore>
#include <string>
#include <thread>
#include <vector>

#include <ZELTarkaSDK/Camera.h>
#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>
#include <ZELTarkaSDK/ZELMessageKeys.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "bench/binding_hosts.h"
#include "bench/echo_camera.h"
#include "bench/exchange_batch.h"
#include "bench/ratio_report.h"
#include "link/camera_data_parser.h"
#include "platform/linux/asio.h"
#include "protocol/frame.h"

namespace zel::bench {
namespace {

constexpr std::int64_t kWhiteBalance = 43;
const Bytes kRequest = messageFrame(0x401A, Bytes{2});

// A host on the Linux platform whose camera's frames arrive. The calling thread is its main thread.
class Host {
 public:
  Host() {
    stack_->accessory().openCamera();
    stack_->parser().sendSyncData();
    while (stack_->accessory().linkStatus() != LinkStatus::flowing) platform_->runMainQueueFor(0.001);
  }

  double exchangeMedian() {
    platform_->drainMainQueue();  // the camera's silence since the last batch shows now, and fails no request
    Batch batch;
    exchange(batch);
    platform_->runMainQueue();
    return batch.median();
  }
  CameraDataParser& parser() { return stack_->parser(); }

 private:
  std::unique_ptr<LinuxPlatform> makePlatform() {
    std::string error;
    LinuxPlatform::Options options;
    options.accessoriesFolder = camera_.folder();
    auto platform = LinuxPlatform::create(std::move(options), error);
    if (!platform) std::abort();
    return platform;
  }

  void exchange(Batch& batch) {
    batch.begin();
    stack_->ucd().msgReqSetWBMode(2, [this, &batch](const auto& error) {
      if (error) std::abort();
      batch.complete() ? exchange(batch) : platform_->stopMainQueue();
    });
  }

  EchoCamera camera_;
  std::unique_ptr<LinuxPlatform> platform_ = makePlatform();
  std::unique_ptr<CameraStack> stack_ = std::make_unique<CameraStack>(platform_->ports());
};

Host& host() {
  static Host once;
  return once;
}

// The same through the camera object, whose link runs on a thread of its own: each answer asks the next, or a caller
// waits for it.
class ObjectHost {
 public:
  double calledBack() {
    Batch batch;
    std::binary_semaphore done(0);
    exchange(batch, done);
    done.acquire();
    return batch.median();
  }
  double waitedFor() {
    Batch batch;
    bool more = true;
    while (more) {
      batch.begin();
      if (!camera_->setWhiteBalance(2).get()) std::abort();
      more = batch.complete();
    }
    return batch.median();
  }

 private:
  void exchange(Batch& batch, std::binary_semaphore& done) {
    batch.begin();
    camera_->setWhiteBalance(2).then([this, &batch, &done](const Result<void>& answer) {
      if (!answer) std::abort();
      batch.complete() ? exchange(batch, done) : done.release();
    });
  }

  EchoCamera bus_;
  Result<Camera> camera_ = Camera::open({.accessoriesFolder = bus_.folder()}).get();
};

// The same hand-overs without anything else: the caller posts to an I/O thread, which writes; the answer is posted to
// the caller. Both sleep in their io_context in between.
class BareAsio {
 public:
  BareAsio() : socket_(io_) {
    socket_.connect(asio::local::stream_protocol::endpoint(camera_.socketPath()));
    socket_.non_blocking(true);
    asio::post(io_, [this] { read(); });
    thread_ = std::thread([this] { io_.run(); });
  }
  ~BareAsio() {
    io_.stop();
    thread_.join();
    socket_.close();
  }

  double exchangeMedian() {
    Batch batch;
    batch_ = &batch;
    main_.restart();
    exchange();
    const auto work = asio::make_work_guard(main_);
    main_.run();
    return batch.median();
  }

 private:
  void exchange() {
    batch_->begin();
    asio::post(io_, [this] { socket_.write_some(asio::buffer(kRequest)); });
  }
  void read() {
    socket_.async_read_some(asio::buffer(buffer_), [this](const std::error_code& error, std::size_t) {
      if (error) return;
      asio::post(main_, [this] { batch_->complete() ? exchange() : main_.stop(); });
      read();
    });
  }

  EchoCamera camera_;
  asio::io_context io_, main_;
  asio::local::stream_protocol::socket socket_;
  std::array<std::uint8_t, 4096> buffer_;
  Batch* batch_ = nullptr;
  std::thread thread_;
};

template <class Peer>
void exchanges(benchmark::State& state, Peer& peer) {
  for (auto _ : state) state.SetIterationTime(peer.exchangeMedian());
  state.counters["exchanges"] = kBatch;
}

void requestToCompletion(benchmark::State& state) { exchanges(state, host()); }

void objectCalledBack(benchmark::State& state) {
  ObjectHost object;
  for (auto _ : state) state.SetIterationTime(object.calledBack());
}
void objectWaitedFor(benchmark::State& state) {
  ObjectHost object;
  for (auto _ : state) state.SetIterationTime(object.waitedFor());
}

void inC(benchmark::State& state) {
  HostInC host;
  for (auto _ : state) state.SetIterationTime(host.waitedFor());
}
void inPython(benchmark::State& state, const char* way) {
  for (auto _ : state) state.SetIterationTime(exchangesInPython(way));
}
void importingPython(benchmark::State& state) {
  for (auto _ : state) state.SetIterationTime(importInPython());
}

void bareAsio(benchmark::State& state) {
  BareAsio peer;
  exchanges(state, peer);
}

// 16 bytes to and fro, blocking, on the calling thread.
class PingPong {
 public:
  double exchangeMedian() {
    Batch batch;
    bool more = true;
    while (more) {
      batch.begin();
      if (write(socket_.get(), ball_.data(), ball_.size()) != 16) std::abort();
      if (::read(socket_.get(), back_.data(), back_.size()) != 16) std::abort();
      more = batch.complete();
    }
    return batch.median();
  }

 private:
  EchoCamera camera_;
  platform::UniqueDescriptor socket_ = camera_.connect();
  const Bytes ball_ = messageFrame(0x401A, Bytes(8, 1));
  Bytes back_ = Bytes(16);
};

void blockingPingPong(benchmark::State& state) {
  PingPong peer;
  exchanges(state, peer);
}

double residentKilobytes() {
  std::size_t pages = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1024;
}

// 100,000 requests, and by how much the process has grown over them.
void hundredThousandRequests(benchmark::State& state) {
  host().exchangeMedian();
  for (auto _ : state) {
    const double before = residentKilobytes();
    for (int batch = 0; batch < 100'000 / kBatch; ++batch) host().exchangeMedian();
    state.counters["grown KiB"] = residentKilobytes() - before;
  }
}

struct Message {
  const char* name;
  std::int64_t type;
  ZELMessageFields request;
  Bytes reply;  // code and body
};

Bytes replyBytes(std::uint16_t code, std::size_t size) {
  Bytes bytes(2 + size, 1);
  bytes[0] = static_cast<std::uint8_t>(code);
  bytes[1] = static_cast<std::uint8_t>(code >> 8);
  return bytes;
}

std::vector<Message> messages() {
  const std::string offset = "2_1.000_2.000_3.000_4.000_5.000_6.000_1.000_2.000_3.000_4.000_5.000_6.000_3040_1520_7";
  return {{"white balance", kWhiteBalance, {{"ucharValue", std::uint8_t{2}}}, replyBytes(0xC01A, 1)},
          {"battery", 18, {}, replyBytes(0xC001, 2)},
          {"shutter", 7, {}, replyBytes(0x8007, 12 + 20)},
          {"media offset", 33, {{"nsString", offset}}, replyBytes(0xC00F, 81)},
          {"file metadata", 57, {{"nsString", std::string("VID_0001.MP4")}}, replyBytes(0xC028, 193)}};
}

void packing(benchmark::State& state, const Message& message) {
  for (auto _ : state) benchmark::DoNotOptimize(host().parser().packetMsgData(message.type, message.request));
}

// To the dictionary, and to the table, where nobody waits.
void decoding(benchmark::State& state, const Message& message) {
  for (auto _ : state) host().parser().parserMsg(message.reply.data(), message.reply.size());
}

void registerMessages() {
  for (const Message& message : messages()) {
    const std::string name = message.name;
    benchmark::RegisterBenchmark(("packing/" + name).c_str(), packing, message);
    benchmark::RegisterBenchmark(("decoding/" + name).c_str(), decoding, message);
  }
}

BENCHMARK(requestToCompletion)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(10);
BENCHMARK(objectCalledBack)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(10);
BENCHMARK(objectWaitedFor)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(10);
BENCHMARK(inC)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(10);
BENCHMARK_CAPTURE(inPython, waited, "waited")->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(10);
BENCHMARK_CAPTURE(inPython, awaited, "awaited")->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(10);
BENCHMARK(importingPython)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(bareAsio)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(10);
BENCHMARK(blockingPingPong)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(10);
BENCHMARK(hundredThousandRequests)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(1);

std::vector<Ratio> ratios() {
  const std::string suffix = "/iterations:10/manual_time";
  return {{"request to completion / the same hand-overs in bare Asio", "requestToCompletion" + suffix,
           "bareAsio" + suffix, 1.15},
          {"the camera object's, called back / request to completion", "objectCalledBack" + suffix,
           "requestToCompletion" + suffix, 1.1},
          {"the camera object's, waited for / request to completion", "objectWaitedFor" + suffix,
           "requestToCompletion" + suffix, 0},
          {"C, waited for / the camera object's, waited for", "inC" + suffix, "objectWaitedFor" + suffix, 1.1},
          {"Python, waited for / request to completion", "inPython/waited" + suffix, "requestToCompletion" + suffix, 0},
          {"Python, awaited / request to completion", "inPython/awaited" + suffix, "requestToCompletion" + suffix, 0},
          {"request to completion / blocking ping-pong of 16 bytes", "requestToCompletion" + suffix,
           "blockingPingPong" + suffix, 0},
          {"bare Asio / blocking ping-pong of 16 bytes", "bareAsio" + suffix, "blockingPingPong" + suffix, 0}};
}

}  // namespace
}  // namespace zel::bench

int main(int argc, char** argv) {
  zel::bench::registerMessages();
  return zel::bench::runAndCompare(argc, argv, zel::bench::ratios());
}
