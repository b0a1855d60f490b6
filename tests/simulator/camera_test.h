#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <deque>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "simulator/simulated_camera.h"
#include "tests/simulator/temporary_folder.h"

namespace zel::simulator {

// The flag that begins most replies, alone.
const Bytes kDone = {1};
const Bytes kRefused = {0};

// A world whose time goes on when the test says so, and whose worker works when it says so.
class VirtualWorld final : public CameraWorld {
 public:
  using Time = std::chrono::milliseconds;

  Time uptime() const override { return now_; }
  void later(Time time, std::function<void()> then) override { timers_.push_back({now_ + time, std::move(then)}); }
  void onWorker(std::function<std::function<void()>()> job) override { jobs_.push_back(std::move(job)); }
  void tellHost(Bytes frame) override { told.push_back(std::move(frame)); }
  void unplug() override { ++unplugged; }
  void restart() override { ++restarted; }

  void work() {
    while (!jobs_.empty()) {
      const auto job = std::move(jobs_.front());
      jobs_.pop_front();
      job()();
    }
  }

  // Whatever falls due on the way happens at its own time.
  void pass(Time time) {
    const Time end = now_ + time;
    for (;;) {
      const auto next = std::ranges::min_element(timers_, {}, &Timer::at);
      if (next == timers_.end() || next->at > end) break;
      const Timer due = *next;
      timers_.erase(next);
      now_ = std::max(now_, due.at);
      due.then();
    }
    now_ = end;
  }

  std::vector<Bytes> told;
  int unplugged = 0, restarted = 0;

 private:
  struct Timer {
    Time at;
    std::function<void()> then;
  };

  Time now_{1'000'000};  // a camera that has been running for a while
  std::vector<Timer> timers_;
  std::deque<std::function<std::function<void()>()>> jobs_;
};

struct Reply {
  std::uint16_t code = 0;
  Bytes body;

  bool operator==(const Reply&) const = default;
};

class RecordingHost final : public HostLink {
 public:
  void reply(std::uint16_t code, Bytes body) override { replies.push_back({code, std::move(body)}); }
  void send(Bytes frame) override { frames.push_back(std::move(frame)); }
  void startPreview(int resolution) override { preview = resolution; }
  void stopPreview() override { preview = -1; }
  void switchSound(bool on) override { sound = on; }
  std::int64_t mediaTime() const override { return 0x0102030405; }

  std::vector<Reply> replies;
  std::vector<Bytes> frames;
  int preview = 0;
  std::optional<bool> sound;
};

inline constexpr std::int64_t kStartOfTests = 1767323045;  // 2026-01-02 03:04:05 UTC

class CameraTest : public testing::Test {
 protected:
  CameraTest() { makeCamera({}); }

  void makeCamera(CameraStart start) {
    start.now = kStartOfTests;
    camera = std::make_unique<SimulatedCamera>(world, start, storage, faults);
  }

  void request(std::uint16_t code, const Bytes& body = {}) { camera->answer(host, {code, body}); }

  // The body of the one reply, which comes under the request's code.
  Bytes ask(std::uint16_t code, const Bytes& body = {}) {
    host->replies.clear();
    request(code, body);
    world.work();
    EXPECT_EQ(host->replies.size(), 1u) << "request " << code;
    if (host->replies.size() != 1) return {};
    EXPECT_EQ(host->replies[0].code, code);
    return host->replies[0].body;
  }

  TemporaryFolder folder;
  Storage storage{folder.path().string()};
  Faults faults;
  VirtualWorld world;
  std::shared_ptr<RecordingHost> host = std::make_shared<RecordingHost>();
  std::unique_ptr<SimulatedCamera> camera;
};

using Codes = std::vector<std::uint16_t>;

inline Bytes joined(Bytes first, const Bytes& second) {
  add(first, second);
  return first;
}

inline Bytes ofText(const std::string& text) { return {text.begin(), text.end()}; }

// 1, 2, 3 and so on.
inline Bytes counting(std::size_t size) {
  Bytes bytes(size);
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<std::uint8_t>(i + 1);
  return bytes;
}

}  // namespace zel::simulator
