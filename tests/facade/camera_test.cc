#include <ZELTarkaSDK/Camera.h>
#include <gmock/gmock.h>

#include <atomic>
#include <future>
#include <optional>
#include <thread>

#include "tests/facade/bus_camera.h"

namespace zel::test {
namespace {

using Reason = CameraError::Reason;
using std::chrono::milliseconds;

constexpr std::uint16_t kBattery = 0x4001, kCard = 0x400E, kSetWhiteBalance = 0x401A;

class CameraTest : public BusCamera {};

TEST_F(CameraTest, ItsIdentityStaysKnownWhileItIsAway) {
  Camera camera = *Camera::create(options());
  EXPECT_EQ(camera.info(), nullptr) << "before the first connection";
  attach();
  ASSERT_TRUE(camera.connect().get());
  simulated().unplug();
  EXPECT_TRUE(eventually([&] { return camera.linkStatus() == LinkStatus::closed; }));
  ASSERT_NE(camera.info(), nullptr);
  EXPECT_EQ(camera.info()->serialNumber(), "E1A0001");
}

TEST_F(CameraTest, AnswersOnceItIsOpen) {
  attach();
  auto camera = Camera::open(options()).get();
  ASSERT_TRUE(camera) << camera.error().message;
  EXPECT_EQ(camera->info()->serialNumber(), "E1A0001");
  EXPECT_EQ(camera->linkStatus(), LinkStatus::flowing);
  const auto battery = camera->battery().get();
  ASSERT_TRUE(battery) << battery.error().message;
  EXPECT_EQ(battery->powerType, 1);
  EXPECT_EQ(battery->level, 100);
}

TEST_F(CameraTest, TellsWhereItLookedForACameraThatIsNotThere) {
  CameraOptions few = options();
  few.openTimeLimit = milliseconds(50);
  const auto camera = Camera::open(few).get();
  ASSERT_FALSE(camera);
  EXPECT_EQ(camera.error().reason, Reason::noCamera);
  EXPECT_EQ(camera.error().message, "no camera was attached in time; looked in " + folder_.path());
}

TEST_F(CameraTest, TellsThatAnotherHasTheCameraAtOnce) {
  attach();
  const Camera first = opened();
  CameraOptions second = options();
  second.openTimeLimit = std::chrono::hours(1);
  const auto camera = Camera::open(second).get();
  ASSERT_FALSE(camera);
  EXPECT_EQ(camera.error().reason, Reason::inUse);
  EXPECT_THAT(camera.error().message, testing::StartsWith("camera E1A0001 is in use by process "));
}

TEST_F(CameraTest, AnOpeningMayBeGivenUpBeforeItBegins) {
  std::stop_source stop;
  stop.request_stop();
  for (int round = 0; round < 100; ++round) {
    const auto camera = Camera::open(options(), {.stop = stop.get_token()}).get();
    ASSERT_FALSE(camera);
    EXPECT_EQ(camera.error().reason, Reason::cancelled);
  }
}

TEST_F(CameraTest, OpensTheOneThatIsNamed) {
  attach({}, "E1A0001");
  attach({}, "E1A0002");
  CameraOptions second = options();
  second.serialNumber = "E1A0002";
  const auto camera = Camera::open(second).get();
  ASSERT_TRUE(camera);
  EXPECT_EQ(camera->info()->serialNumber(), "E1A0002");
}

TEST_F(CameraTest, GivesUpAnOpeningThatIsCancelled) {
  auto opening = Camera::open(options());
  opening.cancel();
  EXPECT_EQ(opening.get().error().reason, Reason::cancelled);
  std::stop_source stop;
  auto another = Camera::open(options(), {.stop = stop.get_token()});
  stop.request_stop();
  EXPECT_EQ(another.get().error().reason, Reason::cancelled);
}

TEST_F(CameraTest, GivesEachOfManyRequestsOfAKindItsOwnAnswer) {
  attach();
  Camera camera = opened();
  std::vector<Pending<void>> set;
  std::vector<Pending<std::int16_t>> read;
  for (std::int16_t bias = 0; bias < 20; ++bias) {
    set.push_back(camera.setTimelapseExposureBias(bias));
    read.push_back(camera.timelapseExposureBias());
  }
  for (auto& one : set) EXPECT_TRUE(one.get());
  for (auto& one : read) EXPECT_TRUE(one.get());
  EXPECT_EQ(*camera.timelapseExposureBias().get(), 19);
}

TEST_F(CameraTest, AnswersThreadsThatAskAtOnce) {
  attach();
  Camera camera = opened();
  std::atomic<int> answered = 0;
  std::vector<std::jthread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&] {
      for (int one = 0; one < 25; ++one) answered += camera.battery().get() ? 1 : 0;
    });
  }
  threads.clear();
  EXPECT_EQ(answered, 100);
}

TEST_F(CameraTest, TellsARefusalByTheRequestsName) {
  simulator::Faults faults;
  faults.refuse = {kSetWhiteBalance};
  attach(faults);
  Camera camera = opened();
  const auto refused = camera.setWhiteBalance(2).get();
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error(),
            (CameraError{Reason::refused, "setWhiteBalance: the camera refused, or its answer cannot be read",
                         "NSOSStatusErrorDomain", 101}));
}

TEST_F(CameraTest, EndsARequestWithoutAnAnswerInTime) {
  simulator::Faults faults;
  faults.noReply = {kBattery};
  attach(faults);
  Camera camera = opened();
  const auto battery = camera.battery({.timeLimit = milliseconds(20)}).get();
  ASSERT_FALSE(battery);
  EXPECT_EQ(battery.error(), (CameraError{Reason::timeLimit, "battery: the camera did not answer in time", "", 0}));
  EXPECT_TRUE(camera.card().get()) << "another kind does not wait for it";
}

TEST_F(CameraTest, GivesALateAnswerToNobodyElse) {
  simulator::Faults faults;
  faults.lateReply = {{kCard, 300}};
  attach(faults);
  Camera camera = opened();
  EXPECT_EQ(camera.card({.timeLimit = milliseconds(20)}).get().error().reason, Reason::timeLimit);
  const int before = simulated().requests();
  EXPECT_TRUE(camera.card().get());
  EXPECT_EQ(simulated().requests(), before + 1) << "it was not sent before the first one's answer had come";
}

TEST_F(CameraTest, EndsARequestThatIsStoppedAndOneThatWaitsBehindIt) {
  simulator::Faults faults;
  faults.noReply = {kBattery};
  attach(faults);
  Camera camera = opened();
  std::stop_source stop;
  auto first = camera.battery({.stop = stop.get_token()});
  auto second = camera.battery();
  stop.request_stop();
  EXPECT_EQ(first.get().error(), (CameraError{Reason::cancelled, "battery: cancelled", "", 0}));
  second.cancel();
  EXPECT_EQ(second.get().error().reason, Reason::cancelled);
}

TEST_F(CameraTest, EndsARequestWhoseStopWasRequestedBefore) {
  simulator::Faults faults;
  faults.noReply = {kBattery};
  attach(faults);
  Camera camera = opened();
  std::stop_source stop;
  stop.request_stop();
  for (int round = 0; round < 200; ++round) {
    ASSERT_EQ(camera.battery({.stop = stop.get_token()}).get().error(),
              (CameraError{Reason::cancelled, "battery: cancelled", "", 0}));
  }
}

TEST_F(CameraTest, EndsEveryRequestWhenTheCameraIsLost) {
  simulator::Faults faults;
  faults.noReply = {kBattery};
  attach(faults);
  Camera camera = opened();
  auto first = camera.battery();
  auto second = camera.battery();
  simulated().unplug();
  const CameraError lost{Reason::lost, "battery: the camera is not connected", "NSOSStatusErrorDomain", 100};
  EXPECT_EQ(first.get().error(), lost);
  EXPECT_EQ(second.get().error(), lost);
  EXPECT_EQ(camera.card().get().error().reason, Reason::lost);
  EXPECT_EQ(camera.updatePosition({}).get().error().reason, Reason::lost);
}

TEST_F(CameraTest, GoesOnWhenTheCameraComesBack) {
  attach();
  Camera camera = opened();
  auto link = camera.linkChanges();
  simulated().unplug();
  while (*link.next().get() != LinkStatus::closed) {
  }
  simulated().plug();
  while (*link.next().get() != LinkStatus::flowing) {
  }
  EXPECT_TRUE(camera.battery().get());
}

TEST_F(CameraTest, EndsEveryRequestWhenItIsDestroyed) {
  simulator::Faults faults;
  faults.noReply = {kBattery};
  attach(faults);
  std::optional<Camera> camera(opened());
  auto first = camera->battery();
  auto second = camera->battery();
  auto events = camera->events();
  camera.reset();
  EXPECT_EQ(first.get().error(), (CameraError{Reason::closed, "the camera object was destroyed", "", 0}));
  EXPECT_EQ(second.get().error().reason, Reason::closed);
  EXPECT_EQ(events.next().get().error().reason, Reason::closed);
}

TEST_F(CameraTest, CallsBackWithTheAnswer) {
  attach();
  Camera camera = opened();
  std::promise<int> level;
  camera.battery().then([&](Result<Battery> battery) { level.set_value(battery->level); });
  EXPECT_EQ(level.get_future().get(), 100);
}

TEST_F(CameraTest, RefusesToWaitForItselfInACallback) {
  attach();
  Camera camera = opened();
  std::promise<CameraError> inside;
  camera.battery().then([&](const Result<Battery>&) { inside.set_value(camera.card().get().error()); });
  EXPECT_EQ(inside.get_future().get().reason, Reason::invalid);
}

TEST_F(CameraTest, MayBeDestroyedInItsOwnCallback) {
  attach();
  auto camera = std::make_unique<Camera>(opened());
  std::promise<void> done;
  camera->battery().then([&](const Result<Battery>&) {
    camera.reset();
    done.set_value();
  });
  done.get_future().get();
  EXPECT_TRUE(Camera::open(options()).get()) << "the camera is free again";
}

TEST_F(CameraTest, SaysOfWhatWasMovedElsewhereThatItIsClosed) {
  attach();
  Camera camera = opened();
  const Camera moved = std::move(camera);
  const CameraError closed{Reason::closed, "this camera object has been moved from", "", 0};
  EXPECT_EQ(camera.battery().get().error(), closed);
  EXPECT_EQ(camera.photo().get().error(), closed);
  EXPECT_EQ(camera.events().next().get().error(), closed);
  EXPECT_EQ(camera.linkChanges().next().get().error(), closed);
  EXPECT_EQ(camera.pictures().next().get().error(), closed);
  EXPECT_EQ(camera.stream().get().error(), closed);
  EXPECT_EQ(camera.info(), nullptr);
  EXPECT_EQ(camera.linkStatus(), LinkStatus::closed);
  EXPECT_EQ(camera.statistics().bytesReceived, 0u);
}

TEST_F(CameraTest, MayBeDestroyedWhileAnotherThreadAsks) {
  attach();
  for (int round = 0; round < 5; ++round) {
    auto camera = std::make_unique<Camera>(opened());
    std::promise<void> begun;
    std::vector<Pending<Battery>> asked;
    {
      std::jthread asking([&, &open = *camera] {
        for (int one = 0; one < 200; ++one) asked.push_back(open.battery());
        begun.set_value();
      });
      begun.get_future().get();
      camera.reset();
    }
    for (auto& one : asked) {
      const auto battery = one.get();
      EXPECT_TRUE(battery || battery.error().reason == Reason::closed);
    }
  }
}

Pending<int> sumOfLevels(Camera& camera, int rounds) {
  int sum = 0;
  for (int round = 0; round < rounds; ++round) {
    const auto battery = co_await camera.battery();
    if (!battery) co_return battery.error();
    sum += battery->level;
  }
  co_return sum;
}

TEST_F(CameraTest, IsAwaitedInACoroutine) {
  attach();
  Camera camera = opened();
  EXPECT_EQ(*sumOfLevels(camera, 5).get(), 500);
}

TEST_F(CameraTest, RunsCallbacksWhereTheHostWants) {
  attach();
  Recorded<std::function<void()>> posted;
  CameraOptions with = options();
  with.executor = [&](std::function<void()> call) { posted.add(std::move(call)); };
  auto camera = Camera::open(with).get();
  std::optional<std::thread::id> ran;
  camera->battery().then([&](const Result<Battery>&) { ran = std::this_thread::get_id(); });
  const auto calls = posted.wait(1);
  EXPECT_FALSE(ran);
  calls[0]();
  EXPECT_EQ(ran, std::this_thread::get_id());
}

TEST_F(CameraTest, HandsEventsOnInTheirOrder) {
  attach();
  Camera camera = opened();
  auto events = camera.events();
  std::string error;
  ASSERT_TRUE(simulated().tell("battery 2 40", error)) << error;
  ASSERT_TRUE(simulated().tell("battery 1 30", error)) << error;
  const zel::Event first = *events.next().get(), second = *events.next().get();
  EXPECT_EQ(first.type, ZELCameraEvent::batteryUpdate);
  EXPECT_THAT(first.numbers, testing::ElementsAre(2, 40, 0));
  EXPECT_THAT(second.numbers, testing::ElementsAre(1, 30, 0));
}

TEST_F(CameraTest, KeepsTheNewestEventsAndCountsTheDropped) {
  attach();
  Camera camera = opened();
  auto newest = camera.events({.capacity = 2});
  auto oldest = camera.events({.capacity = 2, .drop = SubscriptionOptions::Drop::newest});
  auto all = camera.events();
  std::string error;
  for (const char* line : {"battery 1 1", "battery 1 2", "battery 1 3"}) ASSERT_TRUE(simulated().tell(line, error));
  for (int one = 0; one < 3; ++one) ASSERT_TRUE(all.next().get());
  EXPECT_EQ(newest.next().get()->numbers[1], 2);
  EXPECT_EQ(newest.next().get()->numbers[1], 3);
  EXPECT_EQ(newest.dropped(), 1u);
  EXPECT_EQ(oldest.next().get()->numbers[1], 1);
  EXPECT_EQ(oldest.next().get()->numbers[1], 2);
  EXPECT_EQ(oldest.dropped(), 1u);
}

TEST_F(CameraTest, WaitsForAnEventNoLongerThanItIsTold) {
  attach();
  Camera camera = opened();
  auto events = camera.events();
  EXPECT_EQ(events.next({.timeLimit = milliseconds(10)}).get().error().reason, Reason::timeLimit);
  auto next = events.next();
  next.cancel();
  EXPECT_EQ(next.get().error().reason, Reason::cancelled);
  std::string error;
  ASSERT_TRUE(simulated().tell("battery 1 7", error));
  EXPECT_EQ(events.next().get()->numbers[1], 7) << "a wait that was given up takes nothing";
}

TEST_F(CameraTest, CallsNoSubscriberBackThatIsGone) {
  attach();
  Camera camera = opened();
  auto heard = std::make_shared<std::atomic<int>>(0);
  std::promise<void> first;
  auto events = std::make_optional(camera.events());
  events->each([heard, &first](const zel::Event&) {
    if (++*heard == 1) first.set_value();
  });
  std::string error;
  ASSERT_TRUE(simulated().tell("battery 1 1", error));
  first.get_future().get();
  events.reset();
  auto witness = camera.events();
  ASSERT_TRUE(simulated().tell("battery 1 2", error));
  ASSERT_TRUE(witness.next().get());
  EXPECT_EQ(*heard, 1);
}

TEST_F(CameraTest, IsOpenedAndClosedManyTimesWithoutGrowth) {
  attach();
  const auto descriptors = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
  };
  for (int round = 0; round < 3; ++round) EXPECT_TRUE(opened().battery().get());
  const auto before = descriptors();
  for (int round = 0; round < 47; ++round) EXPECT_TRUE(opened().battery().get());
  EXPECT_EQ(descriptors(), before);
}

}  // namespace
}  // namespace zel::test
