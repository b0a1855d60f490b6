#include "command/request_engine.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <iterator>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "tests/stack/simulator_fixture.h"

namespace zel::test {
namespace {

constexpr int kRequests = 250;  // of each thread
constexpr std::int64_t kTypes[] = {43, 30, 37, 52, 53, 80, 18, 78};
constexpr std::uint16_t kRefused = 0x401A;  // type 43
constexpr int kCallsBetweenLosses = 250;

// What became of one thread's requests, all of one type.
class Requester {
 public:
  Requester(ZELCameraUCD& ucd, std::int64_t type, std::uint64_t seed) : ucd_(ucd), type_(type), random_(seed) {}

  // Sends all; after some it waits for the answer, others it replaces by the next.
  void run() {
    for (int number = 0; number < kRequests; ++number) {
      const auto done = std::make_shared<Event>();
      ucd_.sendMsg(type_, {{"ucharValue", std::uint8_t{1}}}, [this, number, done](const auto& reply) {
        completed(number, reply);
        done->set();
      });
      if (random_() % 2 == 0 && !done->wait()) return;
    }
    ended.store(true);
  }

  std::atomic<bool> ended = false;
  std::array<std::atomic<int>, kRequests> calls{};
  std::atomic<int> all = 0, agreed = 0, refused = 0, lost = 0;

 private:
  void completed(int number, const std::optional<ZELMessageFields>& reply) {
    ++calls[static_cast<std::size_t>(number)];
    ++all;
    const auto error = reply ? reply->get<ZELError>("NSError") : std::nullopt;
    ++(!error ? agreed : error->code == 101 ? refused : lost);
  }

  ZELCameraUCD& ucd_;
  const std::int64_t type_;
  std::mt19937_64 random_;
};

class RequestEngineThread : public SimulatorFixture {
 protected:
  RequestEngineThread() {
    simulator::Faults faults;
    faults.refuse.insert(kRefused);
    faults.duplicateReply.all = true;
    camera_ = makeCamera("E1A0001", std::move(faults));
    stack_.accessory().openCamera();
    EXPECT_TRUE(framesArrive(stack_));
    for (const std::int64_t type : kTypes)
      requesters_.push_back(std::make_unique<Requester>(stack_.ucd(), type, static_cast<std::uint64_t>(type)));
  }

  template <class Count>
  int sum(Count count) const {
    int total = 0;
    for (const auto& requester : requesters_) total += (*requester).*count;
    return total;
  }
  bool allEnded() const {
    for (const auto& requester : requesters_) {
      if (!requester->ended.load()) return false;
    }
    return true;
  }

  // Takes the camera away and brings it back, again and again, until every thread has sent everything.
  void loseTheCameraUntilAllHaveEnded() {
    while (!allEnded()) {
      const int next = sum(&Requester::all) + kCallsBetweenLosses;
      ASSERT_TRUE(runUntil([&] { return allEnded() || sum(&Requester::all) >= next; }));
      camera_->unplug();
      ASSERT_TRUE(reaches(stack_, 0));
      camera_->plug();
      ASSERT_TRUE(framesArrive(stack_));
    }
  }

  std::unique_ptr<simulator::CameraSimulator> camera_;
  CameraStack stack_{ports()};
  std::vector<std::unique_ptr<Requester>> requesters_;
};

TEST_F(RequestEngineThread, CallsTheLastHandlerOfEachTypeExactlyOnceAndNoneTwice) {
  std::vector<std::thread> threads;
  for (const auto& requester : requesters_) threads.emplace_back([&requester] { requester->run(); });
  loseTheCameraUntilAllHaveEnded();
  for (auto& thread : threads) thread.join();
  stack_.accessory().closeCamera();
  const auto lastCalls = [&] {
    int calls = 0;
    for (const auto& requester : requesters_) calls += requester->calls.back().load();
    return calls;
  };
  EXPECT_TRUE(runUntil([&] { return lastCalls() >= static_cast<int>(std::size(kTypes)); }));
  settle();
  for (const auto& requester : requesters_) {
    EXPECT_EQ(requester->calls.back().load(), 1);
    for (const auto& calls : requester->calls) EXPECT_LE(calls.load(), 1);
  }
  // Or the threads met nothing of what may happen.
  EXPECT_GT(sum(&Requester::agreed), 100);
  EXPECT_GT(sum(&Requester::refused), 10);
  EXPECT_GT(sum(&Requester::lost), 10);
}

}  // namespace
}  // namespace zel::test
