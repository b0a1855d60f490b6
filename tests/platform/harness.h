#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <ZELTarkaSDK/platform/ports.h>

namespace zel::test {

using Bytes = std::vector<std::uint8_t>;

// What happened, in order, told by any thread.
template <class Entry>
class Log {
 public:
  void add(Entry entry) {
    const std::lock_guard lock(mutex_);
    entries_.push_back(std::move(entry));
  }
  std::vector<Entry> all() const {
    const std::lock_guard lock(mutex_);
    return entries_;
  }
  std::size_t size() const { return all().size(); }

 private:
  mutable std::mutex mutex_;
  std::vector<Entry> entries_;
};

// The accessory's end of a session.
class FarEnd {
 public:
  virtual ~FarEnd() = default;

  virtual void send(const Bytes& bytes) = 0;
  // All that the host wrote so far.
  virtual Bytes received() = 0;
  // Stops taking bytes, so that the host soon runs out of space; takes them again.
  virtual void stall() = 0;
  virtual void resume() = 0;
  // Closes in order: the host reads the end behind the last byte.
  virtual void close() = 0;
  // Breaks the link, so that the host's next read fails. The host must have written something that was not received.
  virtual void breakLink() = 0;
};

struct Connection {
  std::unique_ptr<platform::AccessorySession> host;
  std::unique_ptr<FarEnd> far;
};

// One adapter of all ports, and the world around it.
// Thread: the test's.
class Harness {
 public:
  virtual ~Harness() = default;

  virtual const platform::Ports& ports() = 0;

  // Lets the platform run, as its main thread, until the condition holds. False when it never does.
  virtual bool runUntil(const std::function<bool()>& condition) = 0;

  // Attaches an accessory that accepts sessions, detaches it.
  virtual void plug(const platform::AccessoryDescription& description) = 0;
  virtual void unplug(std::uint64_t connectionID) = 0;

  // Opens a session with an attached accessory.
  virtual Connection connect(std::uint64_t connectionID) = 0;
};

struct Adapter {
  std::string name;
  std::function<std::unique_ptr<Harness>()> make;
};

// Every adapter that this build has.
std::vector<Adapter> adapters();
std::unique_ptr<Harness> makeSimulatedHarness(std::uint64_t seed);
std::unique_ptr<Harness> makeLinuxHarness();

inline constexpr const char* kProtocol = "com.example.camera";

inline platform::AccessoryDescription camera(std::uint64_t connectionID) {
  platform::AccessoryDescription description;
  description.connectionID = connectionID;
  description.manufacturer = "Example";
  description.name = "Example 360";
  description.modelNumber = "E1";
  description.serialNumber = "E1A0001";
  description.firmwareRevision = "E1_2.0.1_192";
  description.hardwareRevision = "1.0";
  description.protocolStrings = {"com.example.other", kProtocol};
  description.dockType = "usb";
  return description;
}

// A suite of claims that each adapter must keep.
class Conformance : public testing::TestWithParam<Adapter> {
 protected:
  bool runUntil(const std::function<bool()>& condition) { return harness->runUntil(condition); }

  // Waits until the loop has made the calls that it has been asked for, and has looked for events again.
  void flush(platform::RunLoop& loop) {
    for (int round = 0; round < 3; ++round) inside(loop, [] {});
  }

  // Runs a task on the loop's thread and waits for it.
  void inside(platform::RunLoop& loop, const platform::Task& task) {
    Log<int> done;
    loop.perform([&] {
      task();
      done.add(1);
    });
    ASSERT_TRUE(runUntil([&] { return done.size() == 1; }));
  }

  std::unique_ptr<platform::Thread> startThread(std::string name = "worker") {
    return ports.threads.start(std::move(name), {});
  }

  std::unique_ptr<Harness> harness = GetParam().make();
  const platform::Ports& ports = harness->ports();
};

inline std::string adapterName(const testing::TestParamInfo<Adapter>& info) { return info.param.name; }

}  // namespace zel::test

// Each suite runs over all adapters.
#define ZEL_CONFORMANCE_SUITE(suite) \
  INSTANTIATE_TEST_SUITE_P(Adapters, suite, testing::ValuesIn(zel::test::adapters()), zel::test::adapterName)
