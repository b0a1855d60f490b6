#include <gmock/gmock.h>
#include <poll.h>

#include <future>
#include <thread>

#include "tests/bindings/c/open_camera.h"

namespace zel::test {
namespace {

constexpr std::uint16_t kNeverAnswered = 0x4001, kRefused = 0x401A;

// The end of a call that was begun, as its callback gets it.
struct Ended {
  std::promise<void> done;
  zel_status status = ZEL_OK;
  zel_error error{};
  std::thread::id thread;
  std::vector<std::uint64_t> progress;
  zel_call* call = nullptr;

  ~Ended() { zel_call_free(call); }

  static void callBack(void* user, zel_status status, const zel_error* error) {
    Ended& self = *static_cast<Ended*>(user);
    self.status = status;
    self.error = *error;
    self.thread = std::this_thread::get_id();
    self.done.set_value();
  }
  static void note(void* user, std::uint64_t done, std::uint64_t) {
    static_cast<Ended*>(user)->progress.push_back(done);
  }
  zel_status wait() {
    EXPECT_EQ(done.get_future().wait_for(kLimit), std::future_status::ready);
    return status;
  }
  bool hasEnded(std::future<void>& future) const {
    return future.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
  }
};

template <class Struct>
Struct sized() {
  Struct made{};
  made.size = sizeof made;
  return made;
}

class CBegunCallsTest : public OpenCamera {
 protected:
  static How unanswered() {
    How how;
    how.faults.noReply = {kNeverAnswered};
    return how;
  }
  static zel_status beginBattery(zel_camera* camera, zel_battery_result& battery, Ended& ended) {
    return zel_begin_battery(camera, 0, &battery, &Ended::callBack, &ended, &ended.call, nullptr);
  }
  zel_subscription* events(zel_camera* camera) {
    zel_subscription* subscription = nullptr;
    EXPECT_EQ(zel_events(camera, nullptr, nullptr, nullptr, &subscription, nullptr), ZEL_OK);
    return subscription;
  }
};

TEST_F(CBegunCallsTest, CallBackOnTheCamerasThreadWithTheirResult) {
  auto battery = sized<zel_battery_result>();
  Ended ended;
  ASSERT_EQ(beginBattery(open(), battery, ended), ZEL_OK);
  EXPECT_EQ(ended.wait(), ZEL_OK);
  EXPECT_EQ(battery.level, 100);
  EXPECT_NE(ended.thread, std::this_thread::get_id());
  EXPECT_EQ(ended.error.status, ZEL_OK);
  EXPECT_EQ(zel_call_free(ended.call), ZEL_OK);
  EXPECT_EQ(zel_call_free(ended.call), ZEL_CLOSED);
  EXPECT_EQ(zel_call_cancel(ended.call, nullptr), ZEL_CLOSED);
}

TEST_F(CBegunCallsTest, GiveResultsOfEveryShape) {
  zel_camera* const camera = open();
  Ended set, number, text, bytes;
  ASSERT_EQ(zel_begin_set_self_timer(camera, 7, 0, &Ended::callBack, &set, &set.call, nullptr), ZEL_OK);
  EXPECT_EQ(set.wait(), ZEL_OK);
  std::int32_t seconds = 0;
  ASSERT_EQ(zel_begin_self_timer(camera, 0, &seconds, &Ended::callBack, &number, &number.call, nullptr), ZEL_OK);
  EXPECT_EQ(number.wait(), ZEL_OK);
  EXPECT_EQ(seconds, 7);
  char* serial = nullptr;
  ASSERT_EQ(zel_begin_serial_number(camera, 0, &serial, &Ended::callBack, &text, &text.call, nullptr), ZEL_OK);
  EXPECT_EQ(text.wait(), ZEL_OK);
  EXPECT_STREQ(serial, "E1A0001");
  zel_free(serial);
  std::uint8_t content[] = {'{', '}'};
  ASSERT_EQ(zel_set_video_extra_info(camera, "a.mp4", content, 2, 0, nullptr), ZEL_OK);
  std::uint8_t* info = nullptr;
  std::size_t length = 0;
  ASSERT_EQ(
      zel_begin_video_extra_info(camera, "a.mp4", 0, &info, &length, &Ended::callBack, &bytes, &bytes.call, nullptr),
      ZEL_OK);
  EXPECT_EQ(bytes.wait(), ZEL_OK);
  ASSERT_EQ(length, 2u);
  EXPECT_EQ(info[1], '}');
  zel_free(info);
}

TEST_F(CBegunCallsTest, TellARefusalInTheCallback) {
  How how;
  how.faults.refuse = {kRefused};
  Ended ended;
  ASSERT_EQ(zel_begin_set_white_balance(open(how), 2, 0, &Ended::callBack, &ended, &ended.call, nullptr), ZEL_OK);
  EXPECT_EQ(ended.wait(), ZEL_REFUSED);
  EXPECT_EQ(ended.error.code, 101);
  EXPECT_STREQ(ended.error.message, "setWhiteBalance: the camera refused, or its answer cannot be read");
}

TEST_F(CBegunCallsTest, AreNotBegunWithWrongArguments) {
  zel_camera* const camera = open();
  const int before = simulated().requests();
  auto error = sized<zel_error>();
  auto battery = sized<zel_battery_result>();
  zel_call* call = nullptr;
  EXPECT_EQ(zel_begin_battery(camera, 0, &battery, nullptr, nullptr, &call, &error), ZEL_INVALID);
  EXPECT_STREQ(error.message, "callback is NULL");
  EXPECT_EQ(zel_begin_battery(camera, 0, &battery, &Ended::callBack, nullptr, nullptr, &error), ZEL_INVALID);
  EXPECT_STREQ(error.message, "call is NULL");
  EXPECT_EQ(zel_begin_battery(camera, 0, nullptr, &Ended::callBack, nullptr, &call, &error), ZEL_INVALID);
  EXPECT_STREQ(error.message, "out is NULL");
  EXPECT_EQ(zel_begin_battery(camera, -1, &battery, &Ended::callBack, nullptr, &call, &error), ZEL_INVALID);
  battery.size = 1;
  EXPECT_EQ(zel_begin_battery(camera, 0, &battery, &Ended::callBack, nullptr, &call, &error), ZEL_INVALID);
  EXPECT_EQ(zel_begin_set_serial_number(camera, nullptr, 0, &Ended::callBack, nullptr, &call, &error), ZEL_INVALID);
  EXPECT_STREQ(error.message, "serial_number is NULL");
  EXPECT_EQ(call, nullptr);
  EXPECT_EQ(simulated().requests(), before);
  EXPECT_EQ(zel_call_free(nullptr), ZEL_OK);
  EXPECT_EQ(zel_call_cancel(nullptr, &error), ZEL_INVALID);
  EXPECT_STREQ(error.message, "the call is NULL");
}

TEST_F(CBegunCallsTest, EndWithTheTimeLimit) {
  auto battery = sized<zel_battery_result>();
  Ended ended;
  ASSERT_EQ(zel_begin_battery(open(unanswered()), 20, &battery, &Ended::callBack, &ended, &ended.call, nullptr),
            ZEL_OK);
  EXPECT_EQ(ended.wait(), ZEL_TIME_LIMIT);
}

TEST_F(CBegunCallsTest, EndWhenTheyAreCancelled) {
  auto battery = sized<zel_battery_result>();
  Ended ended;
  ASSERT_EQ(beginBattery(open(unanswered()), battery, ended), ZEL_OK);
  EXPECT_EQ(zel_call_cancel(ended.call, nullptr), ZEL_OK);
  EXPECT_EQ(ended.wait(), ZEL_CANCELLED);
  EXPECT_EQ(zel_call_cancel(ended.call, nullptr), ZEL_OK);
}

TEST_F(CBegunCallsTest, NeitherCallBackNorWriteOnceTheyAreFreed) {
  zel_camera* const camera = open(unanswered());
  zel_subscription* const subscription = events(camera);
  auto event = sized<zel_event>();
  Ended freed;
  auto ended = freed.done.get_future();
  ASSERT_EQ(zel_begin_next_event(subscription, 0, &event, &Ended::callBack, &freed, &freed.call, nullptr), ZEL_OK);
  EXPECT_EQ(zel_call_free(freed.call), ZEL_OK);
  tell("key 3");
  auto next = sized<zel_event>();
  ASSERT_EQ(zel_next_event(subscription, 0, &next, nullptr), ZEL_OK);
  EXPECT_EQ(next.numbers[0], 3) << "a call that is gone takes nothing";
  EXPECT_FALSE(freed.hasEnded(ended));
  EXPECT_EQ(event.type, 0);
  EXPECT_EQ(zel_subscription_free(subscription), ZEL_OK);
}

TEST_F(CBegunCallsTest, EndWithTheCamera) {
  zel_camera* const camera = open(unanswered());
  auto battery = sized<zel_battery_result>();
  auto event = sized<zel_event>();
  Ended asked, waited;
  zel_subscription* const subscription = events(camera);
  ASSERT_EQ(beginBattery(camera, battery, asked), ZEL_OK);
  ASSERT_EQ(zel_begin_next_event(subscription, 0, &event, &Ended::callBack, &waited, &waited.call, nullptr), ZEL_OK);
  EXPECT_EQ(zel_close(camera), ZEL_OK);
  EXPECT_EQ(asked.wait(), ZEL_CLOSED);
  EXPECT_EQ(waited.wait(), ZEL_CLOSED);
  Ended late;
  EXPECT_EQ(beginBattery(camera, battery, late), ZEL_CLOSED);
  EXPECT_EQ(zel_subscription_free(subscription), ZEL_OK);
}

TEST_F(CBegunCallsTest, CallBackWhereTheProgramDispatches) {
  zel_camera* const camera = open({.isDispatched = true});
  auto battery = sized<zel_battery_result>();
  Ended ended;
  ASSERT_EQ(beginBattery(camera, battery, ended), ZEL_OK);
  pollfd wait{.fd = -1, .events = POLLIN, .revents = 0};
  ASSERT_EQ(zel_descriptor(camera, &wait.fd, nullptr), ZEL_OK);
  ASSERT_EQ(poll(&wait, 1, static_cast<int>(std::chrono::milliseconds(kLimit).count())), 1);
  auto future = ended.done.get_future();
  EXPECT_FALSE(ended.hasEnded(future));
  EXPECT_EQ(zel_dispatch(camera, nullptr), ZEL_OK);
  EXPECT_TRUE(ended.hasEnded(future));
  EXPECT_EQ(ended.thread, std::this_thread::get_id());
  EXPECT_EQ(battery.level, 100);
}

TEST_F(CBegunCallsTest, MayBeBegunAndFreedInsideACallback) {
  struct Chain {
    zel_camera* camera;
    zel_battery_result battery;
    zel_call* call;
    Ended ended;
  } chain{open(), sized<zel_battery_result>(), nullptr, {}};
  const auto next = [](void* user, zel_status status, const zel_error*) {
    Chain& each = *static_cast<Chain*>(user);
    EXPECT_EQ(status, ZEL_OK);
    EXPECT_EQ(zel_call_free(each.call), ZEL_OK);
    EXPECT_EQ(beginBattery(each.camera, each.battery, each.ended), ZEL_OK);
  };
  std::uint32_t photos = 0;
  ASSERT_EQ(zel_begin_photos_remaining(chain.camera, 0, &photos, next, &chain, &chain.call, nullptr), ZEL_OK);
  EXPECT_EQ(chain.ended.wait(), ZEL_OK);
  EXPECT_EQ(chain.battery.level, 100);
}

// -- The opening

TEST_F(CBegunCallsTest, OpenACamera) {
  attach();
  const zel_options with = options({});
  zel_camera* camera = nullptr;
  Ended ended;
  ASSERT_EQ(zel_begin_open(&with, &camera, &Ended::callBack, &ended, &ended.call, nullptr), ZEL_OK);
  EXPECT_EQ(ended.wait(), ZEL_OK);
  auto battery = sized<zel_battery_result>();
  EXPECT_EQ(zel_battery(camera, 0, &battery, nullptr), ZEL_OK);
  EXPECT_EQ(zel_close(camera), ZEL_OK);
}

TEST_F(CBegunCallsTest, TellThatThereIsNoCameraOrWereCancelled) {
  zel_options with = options({});
  zel_camera* camera = nullptr;
  Ended cancelled, missing;
  ASSERT_EQ(zel_begin_open(&with, &camera, &Ended::callBack, &cancelled, &cancelled.call, nullptr), ZEL_OK);
  EXPECT_EQ(zel_call_cancel(cancelled.call, nullptr), ZEL_OK);
  EXPECT_EQ(cancelled.wait(), ZEL_CANCELLED);
  with.open_time_limit = 50;
  ASSERT_EQ(zel_begin_open(&with, &camera, &Ended::callBack, &missing, &missing.call, nullptr), ZEL_OK);
  EXPECT_EQ(missing.wait(), ZEL_NO_CAMERA);
  EXPECT_EQ(camera, nullptr);
}

TEST_F(CBegunCallsTest, DoNotOpenACameraWhoseCallbacksAreDispatched) {
  const zel_options with = options({.isDispatched = true});
  zel_camera* camera = nullptr;
  auto error = sized<zel_error>();
  Ended ended;
  EXPECT_EQ(zel_begin_open(&with, &camera, &Ended::callBack, &ended, &ended.call, &error), ZEL_INVALID);
  EXPECT_STREQ(error.message, "a camera with zel_options.dispatch is opened with zel_open(), which waits");
}

// -- Photos, files, streams

TEST_F(CBegunCallsTest, TakePhotosAndTellTheirProgress) {
  zel_camera* const camera = open();
  Ended one, several;
  auto options = sized<zel_capture_options>();
  options.progress = &Ended::note;
  options.progress_user = &one;
  zel_photo *photo = nullptr, *series = nullptr;
  ASSERT_EQ(zel_begin_take_photo(camera, &options, 0, &photo, &Ended::callBack, &one, &one.call, nullptr), ZEL_OK);
  EXPECT_EQ(one.wait(), ZEL_OK);
  auto stored = sized<zel_photo_data>();
  EXPECT_EQ(zel_photo_get(photo, &stored, nullptr), ZEL_OK);
  EXPECT_EQ(stored.pictures, 1u);
  EXPECT_THAT(one.progress, testing::Each(testing::Le(1u)));
  const std::int8_t steps[] = {-2, 0, 2};
  ASSERT_EQ(
      zel_begin_take_bracket(camera, steps, 3, nullptr, 0, &series, &Ended::callBack, &several, &several.call, nullptr),
      ZEL_OK);
  EXPECT_EQ(several.wait(), ZEL_OK);
  EXPECT_EQ(zel_photo_get(series, &stored, nullptr), ZEL_OK);
  EXPECT_EQ(stored.pictures, 3u);
  EXPECT_EQ(zel_photo_free(photo), ZEL_OK);
  EXPECT_EQ(zel_photo_free(series), ZEL_OK);
}

TEST_F(CBegunCallsTest, SendAFileThatTheCallerMayDropAtOnce) {
  zel_camera* const camera = open();
  Ended ended;
  {
    const std::vector<std::uint8_t> content(300'000);
    ASSERT_EQ(zel_begin_upload(camera, 1, "C:/b.bin", content.data(), content.size(), &Ended::note, &ended, 0,
                               &Ended::callBack, &ended, &ended.call, nullptr),
              ZEL_OK);
  }
  EXPECT_EQ(ended.wait(), ZEL_OK);
}

TEST_F(CBegunCallsTest, StartAStreamAndGiveWhatComes) {
  zel_camera* const camera = open();
  Ended started, taken, changed, failed;
  zel_stream* stream = nullptr;
  ASSERT_EQ(
      zel_begin_stream_start(camera, nullptr, 30'000, &stream, &Ended::callBack, &started, &started.call, nullptr),
      ZEL_OK);
  ASSERT_EQ(started.wait(), ZEL_OK) << started.error.message;
  zel_subscription *packets = nullptr, *problems = nullptr, *links = nullptr;
  ASSERT_EQ(zel_stream_packets(stream, nullptr, nullptr, nullptr, &packets, nullptr), ZEL_OK);
  ASSERT_EQ(zel_stream_problems(stream, nullptr, nullptr, nullptr, &problems, nullptr), ZEL_OK);
  ASSERT_EQ(zel_link_changes(camera, nullptr, nullptr, nullptr, &links, nullptr), ZEL_OK);
  zel_packet* packet = nullptr;
  auto problem = sized<zel_error>();
  zel_link_state state = ZEL_LINK_FLOWING;
  ASSERT_EQ(zel_begin_next_packet(packets, 0, &packet, &Ended::callBack, &taken, &taken.call, nullptr), ZEL_OK);
  EXPECT_EQ(taken.wait(), ZEL_OK);
  EXPECT_EQ(zel_packet_free(packet), ZEL_OK);
  ASSERT_EQ(zel_begin_next_problem(problems, 0, &problem, &Ended::callBack, &failed, &failed.call, nullptr), ZEL_OK);
  ASSERT_EQ(zel_begin_next_link_state(links, 0, &state, &Ended::callBack, &changed, &changed.call, nullptr), ZEL_OK);
  simulated().unplug();
  EXPECT_EQ(failed.wait(), ZEL_OK);
  EXPECT_EQ(problem.status, ZEL_LOST);
  EXPECT_EQ(changed.wait(), ZEL_OK);
  EXPECT_NE(state, ZEL_LINK_FLOWING);
  for (zel_subscription* const one : {packets, problems, links}) EXPECT_EQ(zel_subscription_free(one), ZEL_OK);
  EXPECT_EQ(zel_stream_free(stream), ZEL_OK);
}

// -- Pictures, stitched and not

TEST_F(CBegunCallsTest, GiveAPictureThatCanBeStitched) {
  zel_camera* const camera = open();
  zel_subscription* pictures = nullptr;
  ASSERT_EQ(zel_pictures(camera, nullptr, nullptr, nullptr, nullptr, &pictures, nullptr), ZEL_OK);
  zel_picture *picture = nullptr, *panorama = nullptr;
  Ended ended;
  ASSERT_EQ(zel_begin_next_picture(pictures, 0, &picture, &Ended::callBack, &ended, &ended.call, nullptr), ZEL_OK);
  ASSERT_EQ(ended.wait(), ZEL_OK) << ended.error.message;
  std::uint8_t code = 0;
  ASSERT_EQ(zel_format_code(nullptr, &code, nullptr), ZEL_OK);
  EXPECT_EQ(code, 3) << "1440 x 720 at 30";
  char* offset = nullptr;
  ASSERT_EQ(zel_lens_offset(camera, 0, code, 0, &offset, nullptr), ZEL_OK);
  auto options = sized<zel_stitch_options>();
  options.offset = offset;
  options.width = 480;
  options.height = 240;
  zel_stitcher* stitcher = nullptr;
  ASSERT_EQ(zel_stitcher_new(camera, &options, &stitcher, nullptr), ZEL_OK);
  EXPECT_EQ(zel_close(camera), ZEL_OK);
  ASSERT_EQ(zel_stitch(stitcher, picture, &panorama, nullptr), ZEL_OK) << "it outlives the camera";
  auto from = sized<zel_picture_data>(), to = sized<zel_picture_data>();
  EXPECT_EQ(zel_picture_get(picture, &from, nullptr), ZEL_OK);
  EXPECT_EQ(zel_picture_get(panorama, &to, nullptr), ZEL_OK);
  EXPECT_EQ(to.width, 480);
  EXPECT_EQ(to.height, 240);
  EXPECT_EQ(to.time, from.time);
  for (zel_picture* const one : {picture, panorama}) EXPECT_EQ(zel_picture_free(one), ZEL_OK);
  EXPECT_EQ(zel_stitcher_free(stitcher), ZEL_OK);
  EXPECT_EQ(zel_stitcher_free(stitcher), ZEL_CLOSED);
  EXPECT_EQ(zel_subscription_free(pictures), ZEL_OK);
  zel_free(offset);
}

TEST_F(CBegunCallsTest, TellWhyAPictureCannotBeStitched) {
  zel_camera* const camera = open();
  auto options = sized<zel_stitch_options>();
  auto error = sized<zel_error>();
  zel_stitcher* stitcher = nullptr;
  EXPECT_EQ(zel_stitcher_new(camera, nullptr, &stitcher, &error), ZEL_INVALID);
  EXPECT_EQ(zel_stitcher_new(camera, &options, &stitcher, &error), ZEL_INVALID);
  EXPECT_STREQ(error.message, "options->offset is NULL");
  options.offset = "nonsense";
  options.width = 481;
  options.height = 240;
  EXPECT_EQ(zel_stitcher_new(camera, &options, &stitcher, &error), ZEL_INVALID);
  EXPECT_STREQ(error.message, "stitched pictures have two even sides above 0");
  options.width = 480;
  ASSERT_EQ(zel_stitcher_new(camera, &options, &stitcher, &error), ZEL_OK);
  zel_subscription* pictures = nullptr;
  ASSERT_EQ(zel_pictures(camera, nullptr, nullptr, nullptr, nullptr, &pictures, nullptr), ZEL_OK);
  zel_picture *picture = nullptr, *panorama = nullptr;
  ASSERT_EQ(zel_next_picture(pictures, 0, &picture, &error), ZEL_OK);
  EXPECT_EQ(zel_stitch(stitcher, picture, &panorama, &error), ZEL_MEDIA);
  EXPECT_GT(std::string(error.message).size(), 10u);
  EXPECT_EQ(panorama, nullptr);
  EXPECT_EQ(zel_picture_free(picture), ZEL_OK);
  EXPECT_EQ(zel_stitch(stitcher, picture, &panorama, &error), ZEL_CLOSED);
  EXPECT_EQ(zel_stitcher_free(stitcher), ZEL_OK);
  EXPECT_EQ(zel_subscription_free(pictures), ZEL_OK);
}

// -- The link

TEST_F(CBegunCallsTest, AreCountedByTheLink) {
  zel_camera* const camera = open();
  auto before = sized<zel_link_statistics>(), after = before;
  ASSERT_EQ(zel_get_link_statistics(camera, &before, nullptr), ZEL_OK);
  auto battery = sized<zel_battery_result>();
  ASSERT_EQ(zel_battery(camera, 0, &battery, nullptr), ZEL_OK);
  ASSERT_EQ(zel_get_link_statistics(camera, &after, nullptr), ZEL_OK);
  // Frames have 4 bytes of length and 2 of their type; messages begin with 2 of their code; the battery's answer has 2.
  EXPECT_GE(after.frames[ZEL_FRAME_MESSAGE], before.frames[ZEL_FRAME_MESSAGE] + 1);
  EXPECT_GE(after.bytes[ZEL_FRAME_MESSAGE], before.bytes[ZEL_FRAME_MESSAGE] + 10);
  EXPECT_GE(after.bytes_written, before.bytes_written + 8);
  EXPECT_EQ(after.markers_found, 1u);
  EXPECT_EQ(after.frames[ZEL_FRAME_PHOTO], 0u);
  EXPECT_EQ(zel_get_link_statistics(camera, nullptr, nullptr), ZEL_INVALID);
}

}  // namespace
}  // namespace zel::test
