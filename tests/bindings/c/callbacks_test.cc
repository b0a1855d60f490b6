#include <gmock/gmock.h>
#include <poll.h>

#include <atomic>
#include <future>
#include <thread>

#include "tests/bindings/c/open_camera.h"

namespace zel::test {
namespace {

constexpr std::uint16_t kUnanswered = 0x4001;  // the battery

// What callbacks of a program in C find behind their pointer.
struct Seen {
  zel_camera* camera = nullptr;
  zel_subscription* subscription = nullptr;
  std::promise<void> done;
  std::thread::id thread;
  std::vector<std::int64_t> keys;
  zel_status status = ZEL_OK;
  std::string message;
  std::vector<std::uint64_t> progress;

  void ask() {
    zel_error error{};
    error.size = sizeof error;
    zel_battery_result battery{};
    battery.size = sizeof battery;
    status = zel_battery(camera, 0, &battery, &error);
    message = error.message;
  }
};

void noteKey(void* user, const zel_event* event) {
  Seen& seen = *static_cast<Seen*>(user);
  seen.keys.push_back(event->numbers[0]);
  seen.thread = std::this_thread::get_id();
  seen.done.set_value();
}

class CCallbacksTest : public OpenCamera {
 protected:
  zel_subscription* keys(zel_camera* camera, zel_event_callback callback, Seen& seen) {
    seen.camera = camera;
    EXPECT_EQ(zel_events(camera, nullptr, callback, &seen, &seen.subscription, nullptr), ZEL_OK);
    return seen.subscription;
  }
  // Whether callbacks wait to be dispatched.
  static bool canBeRead(zel_camera* camera, int milliseconds) {
    pollfd wait{.fd = -1, .events = POLLIN, .revents = 0};
    EXPECT_EQ(zel_descriptor(camera, &wait.fd, nullptr), ZEL_OK);
    return poll(&wait, 1, milliseconds) == 1;
  }
  static void waitFor(Seen& seen) { ASSERT_EQ(seen.done.get_future().wait_for(kLimit), std::future_status::ready); }
  static constexpr int kMilliseconds = static_cast<int>(std::chrono::milliseconds(kLimit).count());
};

TEST_F(CCallbacksTest, RunOnTheCamerasThread) {
  Seen seen;
  keys(open(), noteKey, seen);
  tell("key 7");
  waitFor(seen);
  EXPECT_THAT(seen.keys, testing::ElementsAre(7));
  EXPECT_NE(seen.thread, std::this_thread::get_id());
  zel_event event{};
  event.size = sizeof event;
  EXPECT_EQ(zel_next_event(seen.subscription, 1, &event, nullptr), ZEL_INVALID) << "the callback gets all of them";
  EXPECT_EQ(zel_subscription_free(seen.subscription), ZEL_OK);
}

TEST_F(CCallbacksTest, MayNotWaitThere) {
  Seen seen;
  const auto ask = [](void* user, const zel_event*) {
    static_cast<Seen*>(user)->ask();
    static_cast<Seen*>(user)->done.set_value();
  };
  keys(open(), ask, seen);
  const int before = simulated().requests();
  tell("key 1");
  waitFor(seen);
  EXPECT_EQ(seen.status, ZEL_INVALID);
  EXPECT_THAT(seen.message, testing::StartsWith("this call waits, and in a callback on the camera's thread"));
  EXPECT_EQ(simulated().requests(), before) << "it was not sent";
}

TEST_F(CCallbacksTest, MayCloseTheCamera) {
  Seen seen;
  const auto close = [](void* user, const zel_event*) {
    Seen& each = *static_cast<Seen*>(user);
    each.status = zel_close(each.camera);
    each.done.set_value();
  };
  keys(open(), close, seen);
  tell("key 1");
  waitFor(seen);
  EXPECT_EQ(seen.status, ZEL_OK);
  EXPECT_EQ(zel_close(seen.camera), ZEL_CLOSED);
  EXPECT_EQ(zel_subscription_free(seen.subscription), ZEL_OK);
}

TEST_F(CCallbacksTest, MayEndTheirSubscription) {
  Seen seen;
  const auto end = [](void* user, const zel_event* event) {
    Seen& each = *static_cast<Seen*>(user);
    each.keys.push_back(event->numbers[0]);
    each.status = zel_subscription_free(each.subscription);
    each.done.set_value();
  };
  zel_camera* const camera = open();
  keys(camera, end, seen);
  zel_subscription* others = nullptr;
  ASSERT_EQ(zel_events(camera, nullptr, nullptr, nullptr, &others, nullptr), ZEL_OK);
  tell("key 1");
  waitFor(seen);
  EXPECT_EQ(seen.status, ZEL_OK);
  tell("key 2");
  zel_event event{};
  event.size = sizeof event;
  ASSERT_EQ(zel_next_event(others, kMilliseconds, &event, nullptr), ZEL_OK);
  ASSERT_EQ(zel_next_event(others, kMilliseconds, &event, nullptr), ZEL_OK);
  EXPECT_EQ(event.type, ZEL_KEY_PRESSED);
  EXPECT_EQ(event.numbers[0], 2);
  EXPECT_THAT(seen.keys, testing::ElementsAre(1));
  EXPECT_EQ(zel_subscription_free(others), ZEL_OK);
}

TEST_F(CCallbacksTest, WaitForTheLoopThatDispatchesThem) {
  Seen seen;
  zel_camera* const camera = open({.isDispatched = true});
  keys(camera, noteKey, seen);
  EXPECT_FALSE(canBeRead(camera, 0));
  tell("key 3");
  ASSERT_TRUE(canBeRead(camera, kMilliseconds));
  EXPECT_TRUE(seen.keys.empty()) << "nothing runs elsewhere";
  EXPECT_EQ(zel_dispatch(camera, nullptr), ZEL_OK);
  EXPECT_THAT(seen.keys, testing::ElementsAre(3));
  EXPECT_EQ(seen.thread, std::this_thread::get_id());
  EXPECT_FALSE(canBeRead(camera, 0));
  EXPECT_EQ(zel_subscription_free(seen.subscription), ZEL_OK);
}

TEST_F(CCallbacksTest, MayWaitAndCloseWhereTheyAreDispatched) {
  Seen seen;
  const auto askAndClose = [](void* user, const zel_event*) {
    Seen& each = *static_cast<Seen*>(user);
    each.ask();
    EXPECT_EQ(zel_close(each.camera), ZEL_OK);
    each.keys.push_back(0);
  };
  zel_camera* const camera = open({.isDispatched = true});
  keys(camera, askAndClose, seen);
  tell("key 1");
  ASSERT_TRUE(canBeRead(camera, kMilliseconds));
  EXPECT_EQ(zel_dispatch(camera, nullptr), ZEL_OK);
  EXPECT_EQ(seen.status, ZEL_OK) << seen.message;
  EXPECT_EQ(seen.keys.size(), 1u);
  EXPECT_EQ(zel_dispatch(camera, nullptr), ZEL_CLOSED);
  EXPECT_EQ(zel_subscription_free(seen.subscription), ZEL_OK);
}

TEST_F(CCallbacksTest, ThatWaitForTheLoopNeverRunAfterTheClose) {
  Seen seen;
  zel_camera* const camera = open({.isDispatched = true});
  keys(camera, noteKey, seen);
  tell("key 1");
  ASSERT_TRUE(canBeRead(camera, kMilliseconds));
  EXPECT_EQ(zel_close(camera), ZEL_OK);
  EXPECT_TRUE(seen.keys.empty());
  EXPECT_EQ(zel_subscription_free(seen.subscription), ZEL_OK);
}

TEST_F(CCallbacksTest, OfAnUploadRunOnTheThreadThatWaitsForIt) {
  Seen seen;
  zel_camera* const camera = open({.isDispatched = true});
  const auto note = [](void* user, std::uint64_t done, std::uint64_t) {
    EXPECT_EQ(std::this_thread::get_id(), static_cast<Seen*>(user)->thread);
    static_cast<Seen*>(user)->progress.push_back(done);
  };
  seen.thread = std::this_thread::get_id();
  const std::vector<std::uint8_t> content(8'000'000);
  EXPECT_EQ(zel_upload(camera, 1, "C:/b.bin", content.data(), content.size(), note, &seen, 0, nullptr), ZEL_OK);
  EXPECT_FALSE(seen.progress.empty());
}

TEST_F(CCallbacksTest, GetPicturesThatTheyFree) {
  struct Pictures {
    std::promise<std::int32_t> width;
    bool isDone = false;
  } pictures;
  const auto take = [](void* user, zel_picture* picture) {
    Pictures& each = *static_cast<Pictures*>(user);
    zel_picture_data data{};
    data.size = sizeof data;
    EXPECT_EQ(zel_picture_get(picture, &data, nullptr), ZEL_OK);
    EXPECT_EQ(zel_picture_free(picture), ZEL_OK);
    if (!std::exchange(each.isDone, true)) each.width.set_value(data.width);
  };
  zel_subscription* subscription = nullptr;
  ASSERT_EQ(zel_pictures(open(), nullptr, nullptr, take, &pictures, &subscription, nullptr), ZEL_OK);
  EXPECT_EQ(pictures.width.get_future().get(), 1440);
  EXPECT_EQ(zel_subscription_free(subscription), ZEL_OK);
}

TEST_F(CCallbacksTest, TellTheStatesOfTheLinkAndAStreamsProblems) {
  struct Told {
    std::promise<void> isClosed;
    std::promise<zel_status> problem;
    bool wasClosed = false, hadProblem = false;
  } told;
  zel_camera* const camera = open();
  zel_stream* stream = nullptr;
  ASSERT_EQ(zel_stream_start(camera, nullptr, kMilliseconds, &stream, nullptr), ZEL_OK);
  const auto noteLink = [](void* user, zel_link_state state) {
    Told& each = *static_cast<Told*>(user);
    if (state == ZEL_LINK_CLOSED && !std::exchange(each.wasClosed, true)) each.isClosed.set_value();
  };
  const auto noteProblem = [](void* user, const zel_error* problem) {
    Told& each = *static_cast<Told*>(user);
    if (!std::exchange(each.hadProblem, true)) each.problem.set_value(problem->status);
  };
  zel_subscription *links = nullptr, *problems = nullptr;
  ASSERT_EQ(zel_link_changes(camera, nullptr, noteLink, &told, &links, nullptr), ZEL_OK);
  ASSERT_EQ(zel_stream_problems(stream, nullptr, noteProblem, &told, &problems, nullptr), ZEL_OK);
  simulated().unplug();
  told.isClosed.get_future().get();
  EXPECT_EQ(told.problem.get_future().get(), ZEL_LOST);
  EXPECT_EQ(zel_subscription_free(links), ZEL_OK);
  EXPECT_EQ(zel_subscription_free(problems), ZEL_OK);
  EXPECT_EQ(zel_stream_free(stream), ZEL_OK);
}

TEST_F(CCallbacksTest, GetThePacketsOfAStream) {
  struct Packets {
    std::promise<bool> isKey;
    bool isDone = false;
  } packets;
  const auto take = [](void* user, zel_packet* packet) {
    Packets& each = *static_cast<Packets*>(user);
    zel_packet_data data{};
    data.size = sizeof data;
    EXPECT_EQ(zel_packet_get(packet, &data, nullptr), ZEL_OK);
    EXPECT_EQ(zel_packet_free(packet), ZEL_OK);
    if (!std::exchange(each.isDone, true)) each.isKey.set_value(data.key == 1 && data.track == ZEL_VIDEO);
  };
  zel_stream* stream = nullptr;
  ASSERT_EQ(zel_stream_start(open(), nullptr, kMilliseconds, &stream, nullptr), ZEL_OK);
  zel_subscription* subscription = nullptr;
  ASSERT_EQ(zel_stream_packets(stream, nullptr, take, &packets, &subscription, nullptr), ZEL_OK);
  EXPECT_TRUE(packets.isKey.get_future().get());
  EXPECT_EQ(zel_subscription_free(subscription), ZEL_OK);
  EXPECT_EQ(zel_stream_free(stream), ZEL_OK);
}

// -- Threads

TEST_F(CCallbacksTest, ACloseEndsTheCallsOfOtherThreads) {
  simulator::Faults faults;
  faults.noReply = {kUnanswered};
  zel_camera* const camera = open({.faults = faults});
  zel_subscription* events = nullptr;
  ASSERT_EQ(zel_events(camera, nullptr, nullptr, nullptr, &events, nullptr), ZEL_OK);
  auto next = std::async(std::launch::async, [&] {
    zel_event event{};
    event.size = sizeof event;
    return zel_next_event(events, 0, &event, nullptr);
  });
  const int before = simulated().requests();
  auto asked = std::async(std::launch::async, [&] {
    zel_battery_result battery{};
    battery.size = sizeof battery;
    return zel_battery(camera, 0, &battery, nullptr);
  });
  while (simulated().requests() == before) std::this_thread::yield();
  EXPECT_EQ(zel_close(camera), ZEL_OK);
  EXPECT_EQ(asked.get(), ZEL_CLOSED);
  EXPECT_EQ(next.get(), ZEL_CLOSED);
  EXPECT_EQ(zel_subscription_free(events), ZEL_OK);
}

TEST_F(CCallbacksTest, ThreadsMayAskWhileAnotherCloses) {
  zel_camera* const camera = open();
  std::atomic<int> answered = 0;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 3; ++thread) {
    threads.emplace_back([&] {
      zel_battery_result battery{};
      battery.size = sizeof battery;
      zel_status status = ZEL_OK;
      while ((status = zel_battery(camera, 0, &battery, nullptr)) == ZEL_OK) ++answered;
      EXPECT_EQ(status, ZEL_CLOSED);
    });
  }
  while (answered < 20) std::this_thread::yield();
  EXPECT_EQ(zel_close(camera), ZEL_OK);
  for (std::thread& one : threads) one.join();
}

TEST_F(CCallbacksTest, AFreeEndsTheWaitOfAnotherThread) {
  zel_camera* const camera = open();
  zel_subscription* events = nullptr;
  ASSERT_EQ(zel_events(camera, nullptr, nullptr, nullptr, &events, nullptr), ZEL_OK);
  auto next = std::async(std::launch::async, [&] {
    zel_event event{};
    event.size = sizeof event;
    return zel_next_event(events, 0, &event, nullptr);
  });
  EXPECT_EQ(zel_subscription_free(events), ZEL_OK);
  EXPECT_EQ(next.get(), ZEL_CLOSED);
}

}  // namespace
}  // namespace zel::test
