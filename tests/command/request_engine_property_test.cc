#include "command/request_engine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <ZELTarkaSDK/ZELCameraUCD.h>

#include "tests/link/connected_camera.h"
#include "tests/sanitizers.h"

// Requests, answers and losses in random order, beside a plain model of what the handlers must be called with.

namespace zel::test {
namespace {

// A family whose reply is a flag, or a flag and a byte.
struct Kind {
  std::int64_t type;
  std::uint16_t request;
  bool hasValue;
};
constexpr Kind kKinds[] = {
    {43, 0x401A, false}, {53, 0x4024, true}, {30, 0x400D, false}, {80, 0x403E, true}, {37, 0x4014, false}};

using Lines = std::vector<std::string>;

std::string line(int handler, const std::string& outcome) { return std::to_string(handler) + ' ' + outcome; }

// What the rules say: an answer is for the handler that waits; where none waits, for the request that is just being
// sent; else for nobody.
class Model {
 public:
  void sending(std::int64_t type) { slots_[type].sending = true; }
  void sent(std::int64_t type, int handler) {
    Slot& slot = slots_[type];
    slot.sending = false;
    if (slot.early) {
      log.push_back(line(handler, *std::exchange(slot.early, std::nullopt)));
    } else {
      slot.waiting = handler;
    }
  }
  void refusedAtOnce(int handler) { log.push_back(line(handler, "100")); }
  void answered(std::int64_t type, const std::string& outcome) {
    Slot& slot = slots_[type];
    if (slot.waiting) {
      log.push_back(line(*std::exchange(slot.waiting, std::nullopt), outcome));
    } else if (slot.sending && !slot.early) {
      slot.early = outcome;
    }
  }
  void lost() {
    for (auto& [type, slot] : slots_) {
      if (slot.waiting) log.push_back(line(*std::exchange(slot.waiting, std::nullopt), "100"));
      if (slot.sending && !slot.early) slot.early = "100";
    }
  }

  Lines log;

 private:
  struct Slot {
    bool sending = false;
    std::optional<int> waiting;
    std::optional<std::string> early;
  };
  std::map<std::int64_t, Slot> slots_;
};

// One trial: the engine and the model do the same, as the seed has it.
class Trial {
 public:
  explicit Trial(std::uint64_t seed) : camera_(seed), random_(seed) {
    for (const Kind& kind : kKinds) {
      camera_.stack->parser().registerMsgPacket(CameraMsgPacket(kind.request,
                                                                [this](std::int32_t, const ZELMessageFields&, void*) {
                                                                  if (whileSending_)
                                                                    std::exchange(whileSending_, nullptr)();
                                                                  return std::optional<ZELData>();
                                                                }),
                                                kind.type);
    }
  }

  void step() {
    const Kind& kind = kKinds[draw(std::size(kKinds))];
    switch (draw(12)) {
      case 0:
      case 1:
      case 2:
        return request(kind);
      case 3:
      case 4:
        whileSending_ = [this, &kind] { interfere(kind); };
        return request(kind);
      case 5:
      case 6:
        return answer(kind);
      case 7:
        answer(kind);
        return answer(kind);
      case 8:
        return refuse(kind);
      case 9:
        return camera_.host.runUntilIdle();
      default:
        return changeLink();
    }
  }

  void close() {
    camera_.host.runUntilIdle();
    camera_.stack->accessory().closeCamera();
    model.lost();
    camera_.host.runUntilIdle();
  }

  // Each of the last handlers, once the camera is closed, has been called.
  bool lastHandlersWereCalled() const {
    for (const auto& [type, handler] : last_) {
      if (calls_.at(handler) != 1) return false;
    }
    return true;
  }

  Model model;
  Lines log;

 private:
  std::size_t draw(std::size_t choices) { return random_() % choices; }
  std::uint64_t status() { return camera_.stack->accessory().status(); }

  void request(const Kind& kind) {
    const int handler = next_++;
    last_[kind.type] = handler;
    calls_[handler] = 0;
    const bool connected = status() > 1;
    if (connected) model.sending(kind.type);
    camera_.stack->ucd().sendMsg(kind.type, {}, [this, handler](const auto& reply) { completed(handler, reply); });
    whileSending_ = nullptr;
    connected ? model.sent(kind.type, handler) : model.refusedAtOnce(handler);
  }

  void completed(int handler, const std::optional<ZELMessageFields>& reply) {
    ++calls_[handler];
    const auto error = reply ? reply->get<ZELError>("NSError") : std::nullopt;
    const auto value = reply ? reply->get<std::uint8_t>("ucharValue") : std::nullopt;
    log.push_back(line(handler, error ? std::to_string(error->code) : value ? "ok " + std::to_string(*value) : "ok"));
  }

  // Between the writing of the request and the storing of its handler.
  void interfere(const Kind& kind) {
    switch (draw(4)) {
      case 0:
        return answer(kind);
      case 1:
        answer(kind);
        return answer(kind);
      case 2:
        return refuse(kind);
      default:
        camera_.stack->ucd().responseAllReblackBlockWithErrorCode(100);
        return model.lost();
    }
  }

  void answer(const Kind& kind) {
    const auto value = static_cast<std::uint8_t>(random_());
    reply(kind, kind.hasValue ? Bytes{1, value} : Bytes{1});
    model.answered(kind.type, kind.hasValue ? "ok " + std::to_string(value) : "ok");
  }

  // With a flag of 0, or too short.
  void refuse(const Kind& kind) {
    reply(kind, draw(2) == 0 ? Bytes{0, 7} : Bytes{});
    model.answered(kind.type, "101");
  }

  void reply(const Kind& kind, const Bytes& body) {
    camera_.deliver(static_cast<std::uint16_t>(kind.request | 0x8000), body);
  }

  void changeLink() {
    camera_.host.runUntilIdle();
    const bool connected = camera_.camera->isConnected();
    switch (draw(6)) {
      case 0:
        return lose([&] { connected ? camera_.unplug() : camera_.plug(); });
      case 1:
        return lose([&] {
          if (connected) camera_.unplug();
          camera_.plug();
        });
      case 2:  // status 1, where no request is sent
        return lose([&] {
          if (connected) camera_.camera->current()->fire(platform::StreamEvent::errorOccurred);
        });
      case 3:  // no frame, status 3: what waits is lost, but requests are sent still
        if (status() == 2) model.lost();
        return camera_.host.advance(5);
      case 4:
        if (status() == 1) camera_.synchronise();
        return;
      default:
        if (status() == 3) camera_.camera->current()->send(ConnectedCamera::kAudioFrame);
        return;
    }
  }

  void lose(const std::function<void()>& change) {
    if (status() != 0) model.lost();
    change();
    camera_.host.runUntilIdle();
  }

  ConnectedCamera camera_;
  std::mt19937_64 random_;
  std::function<void()> whileSending_;
  std::map<std::int64_t, int> last_;  // handlers, by message type
  std::map<int, int> calls_;          // of each handler
  int next_ = 0;
};

// One thread, of which ThreadSanitizer learns nothing more from every further order.
constexpr std::uint64_t kSeeds = kThreadSanitized ? 100 : 2000;

TEST(RequestEngineProperty, CallsEachHandlerAsTheModelDoesWhateverTheOrder) {
  std::size_t calls = 0;
  for (std::uint64_t seed = 1; seed <= kSeeds; ++seed) {
    Trial trial(seed);
    for (int step = 0; step < 30; ++step) trial.step();
    trial.close();
    ASSERT_EQ(trial.log, trial.model.log) << "seed " << seed;
    ASSERT_TRUE(trial.lastHandlersWereCalled()) << "seed " << seed;
    calls += trial.log.size();
  }
  EXPECT_GT(calls, 5 * kSeeds);  // or the seeds try nothing
}

}  // namespace
}  // namespace zel::test
