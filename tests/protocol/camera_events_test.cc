#include "protocol/camera_events.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/command/command_test.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// An event as text: its type, then its values under their keys.
std::string shownEvent(std::int64_t type, const std::optional<ZELMessageFields>& value) {
  std::string text = std::to_string(type) + (value ? "" : " none");
  if (!value) return text;
  for (const char* key : {"intValue", "intValue2"}) {
    if (const auto number = value->get<std::int32_t>(key))
      text += std::string(" ") + key + ' ' + std::to_string(*number);
  }
  for (const char* key : {"uintValue", "uintValue2", "uintValue3"}) {
    if (const auto number = value->get<std::uint32_t>(key))
      text += std::string(" ") + key + ' ' + std::to_string(*number);
  }
  if (const auto number = value->get<std::uint64_t>("uint64Value")) text += " uint64Value " + std::to_string(*number);
  if (const auto name = value->get<std::string>("nsString")) text += " nsString \"" + *name + '"';
  if (const auto error = value->get<ZELError>("NSError")) text += " NSError " + std::to_string(error->code);
  return text;
}

class Listener final : public ZELCameraNotificationProtocol {
 public:
  explicit Listener(std::vector<std::string>& log, std::string name = "") : log_(log), name_(std::move(name)) {}
  void notificationType(std::int64_t type, const std::optional<ZELMessageFields>& value) override {
    log_.push_back(name_ + shownEvent(type, value));
  }

 private:
  std::vector<std::string>& log_;
  std::string name_;
};

class CameraEventsTest : public CommandTest {
 protected:
  // What the listeners heard of one event: code and payload.
  std::string heard(const std::string& codeAndPayload) {
    log.clear();
    answer(codeAndPayload);
    return log.size() == 1 ? log[0] : "heard " + std::to_string(log.size()) + " events";
  }

  std::vector<std::string> log;
  std::shared_ptr<Listener> listener = std::make_shared<Listener>(log);
};

struct EventCase {
  const char* name;
  const char* event;  // code and payload
  const char* heard;
};
void PrintTo(const EventCase& one, std::ostream* out) { *out << one.name; }

const EventCase kCases[] = {
    {"UpdateDone", "0160 01", "0"},
    {"UpdateFailed", "0160 00", "0 NSError 101"},
    {"UpdateWithoutAResult", "0160", "0 NSError 101"},
    {"AutoSplit", "0260 04030201 0100000000000000 412E6D703400",
     "1 uintValue 16909060 uint64Value 1 nsString \"A.mp4\""},
    {"AutoSplitOfTwelveBytes", "0260 04030201 0100000000000000", "1 uintValue 16909060 uint64Value 1"},
    {"AutoSplitOfElevenBytes", "0260 04030201 41424344454647",
     "1 uintValue 16909060 uint64Value 0 nsString \"ABCDEFG\""},
    {"AutoSplitOfFourBytes", "0260 04030201", "1 uintValue 16909060 uint64Value 0"},
    {"AutoSplitOfThreeBytes", "0260 414243", "1 uintValue 0 uint64Value 0 nsString \"ABC\""},
    {"AutoSplitWithoutAPayload", "0260", "1 uintValue 0 uint64Value 0"},
    {"AutoSplitWithAnEmptyName", "0260 04030201 0100000000000000 00",
     "1 uintValue 16909060 uint64Value 1 nsString \"\""},
    {"AutoSplitWhoseNameIsNotUtf8", "0260 04030201 0100000000000000 FF", "1 uintValue 16909060 uint64Value 1"},
    {"BatteryUpdate", "0360 01 28", "2 intValue 1 intValue2 40"},
    {"BatteryUpdateOfOneByte", "0360 01", "2 intValue 1 intValue2 0"},
    {"BatteryUpdateWithoutAPayload", "0360", "2 intValue 0 intValue2 0"},
    {"BatteryLow", "0460 05", "3 intValue 5"},
    {"BatteryShutDown", "0560 FF", "4 intValue 255"},
    {"BatteryShutDownWithoutAPayload", "0560", "4 intValue 0"},
    {"CardState", "0660 02", "5 intValue 2"},
    {"CardStateWithoutAPayload", "0660", "5 intValue 0"},
    {"KeyPressed", "0860 03 99", "7 intValue 3"},
    {"KeyPressedWithoutAPayload", "0860", "7 intValue 0"},
    {"MediaOffsetOfEightyBytes",
     "0960 07 00000000000000000000000000000000000000000000000000000000000000000000000000000000"
     "00000000000000000000000000000000000000000000000000000000000000000000000000000000",
     "8 intValue 7 nsString \"0_(null)_0_0_0\""},
    {"MediaOffsetOfOneByteLess",
     "0960 07 00000000000000000000000000000000000000000000000000000000000000000000000000000000"
     "000000000000000000000000000000000000000000000000000000000000000000000000000000",
     "8 intValue 7 nsString \"\""},
    {"MediaOffsetWithoutAPayload", "0960", "8 intValue 0 nsString \"\""},
    {"CardRunout", "0A60 04030201 0100000000000000 4100", "9 uintValue 16909060 uint64Value 1 nsString \"A\""},
    {"TimeRunout", "0B60 04030201 0100000000000000 4100", "10 uintValue 16909060 uint64Value 1 nsString \"A\""},
    {"GyroData", "0E60 0102", "11 none"},
    {"ShutterState", "0C60 01", "12 intValue 1"},
    {"ShutterStateWithoutAPayload", "0C60", "12 intValue 0"},
    {"DeleteProgress", "0D60 01000000 02000000 03000000", "13 uintValue 1 uintValue2 2 uintValue3 3"},
    {"DeleteProgressOfElevenBytes", "0D60 01000000 02000000 030000", "13 uintValue 1 uintValue2 2 uintValue3 0"},
    {"DeleteProgressOfSevenBytes", "0D60 01000000 020000", "13 uintValue 1 uintValue2 0 uintValue3 0"},
    {"DeleteProgressOfThreeBytes", "0D60 010000", "13 uintValue 0 uintValue2 0 uintValue3 0"},
};

class EventOnTheWire : public CameraEventsTest, public testing::WithParamInterface<EventCase> {};

TEST_P(EventOnTheWire, ReachesItsReceiversWithTheseValues) {
  ucd().addCameraNotificationReceiver(listener);
  EXPECT_EQ(heard(GetParam().event), GetParam().heard);
}

INSTANTIATE_TEST_SUITE_P(Events, EventOnTheWire, testing::ValuesIn(kCases),
                         [](const auto& one) { return std::string(one.param.name); });

struct KnownEvent {
  const char* registering;
  int type;
  int code;
};
const KnownEvent kKnownEvents[] = {
    {"registerMsgCameraReqFWUpdateDone", 0, 0x6001},     {"registerMsgCameraReqRecordAutoSplit", 1, 0x6002},
    {"registerMsgCameraReqBatteryUpdate", 2, 0x6003},    {"registerMsgCameraReqBatteryLow", 3, 0x6004},
    {"registerMsgCameraReqBatteryShutDown", 4, 0x6005},  {"registerMsgCameraReqCardState", 5, 0x6006},
    {"registerMsgCameraReqKeyPressed", 7, 0x6008},       {"registerMsgCameraReqMediaOffset", 8, 0x6009},
    {"registerMsgCameraReqRecordCardRunout", 9, 0x600A}, {"registerMsgCameraReqRecordTimeRunout", 10, 0x600B},
    {"registerMsgCameraReqShutterState", 12, 0x600C},    {"registerMsgCameraReqDelFileProgress", 13, 0x600D},
    {"registerMsgCameraReqGyroData", 11, 0x600E},
};

TEST(CameraEventTable, HoldsThirteenEventsInTheOrderOfTheirRegistration) {
  ASSERT_EQ(std::size(kEvents), 13u);
  for (std::size_t row = 0; row < std::size(kEvents); ++row) {
    const KnownEvent& known = kKnownEvents[row];
    EXPECT_EQ(kEvents[row].registering, known.registering);
    EXPECT_EQ(static_cast<int>(kEvents[row].type), known.type) << known.registering;
    EXPECT_EQ(static_cast<int>(kEvents[row].code), known.code) << known.registering;
  }
}

TEST_F(CameraEventsTest, DoesNotKnowTypeSix) {
  ucd().addCameraNotificationReceiver(listener);
  EXPECT_EQ(heard("0760 01"), "heard 0 events");
}

TEST_F(CameraEventsTest, ReachReceiversInTheOrderOfTheirAddition) {
  const auto second = std::make_shared<Listener>(log, "second ");
  ucd().addCameraNotificationReceiver(listener);
  ucd().addCameraNotificationReceiver(second);
  answer("0860 03");
  EXPECT_THAT(log, ElementsAre("7 intValue 3", "second 7 intValue 3"));
}

TEST_F(CameraEventsTest, ReachAReceiverThatWasAddedTwiceTwice) {
  ucd().addCameraNotificationReceiver(listener);
  ucd().addCameraNotificationReceiver(listener);
  EXPECT_EQ(heard("0860 03"), "heard 2 events");
  ucd().removeCameraNotificationReceiver(listener.get());
  EXPECT_EQ(heard("0860 03"), "heard 0 events");
}

class Acting final : public ZELCameraNotificationProtocol {
 public:
  explicit Acting(std::function<void()> act) : act_(std::move(act)) {}
  void notificationType(std::int64_t, const std::optional<ZELMessageFields>&) override { act_(); }

 private:
  const std::function<void()> act_;
};

// Removes a receiver on a thread of its own, which is in no callback.
class Removal {
 public:
  void begin(ZELCameraUCD& ucd, const ZELCameraNotificationProtocol& receiver) {
    thread_ = std::thread([this, &ucd, &receiver] {
      begun_.store(true);
      ucd.removeCameraNotificationReceiver(&receiver);
      over_.store(true);
    });
    while (!begun_.load()) std::this_thread::yield();
  }
  // Whether it is over although it was given only a little time.
  bool isSoonOver() const {
    for (int turn = 0; turn < 1000 && !over_.load(); ++turn) std::this_thread::yield();
    return over_.load();
  }
  bool isOver() const { return over_.load(); }
  void wait() { thread_.join(); }

 private:
  std::atomic<bool> begun_ = false, over_ = false;
  std::thread thread_;
};

TEST_F(CameraEventsTest, ReachNobodyWhoseRemovalIsOver) {
  Removal removal;
  int events = 0, heardAfterwards = 0;
  const auto second = std::make_shared<Acting>([&] { heardAfterwards += removal.isOver() ? 1 : 0; });
  const auto first = std::make_shared<Acting>([&] {
    if (++events != 1) return;
    removal.begin(ucd(), *second);
    removal.isSoonOver();
  });
  ucd().addCameraNotificationReceiver(first);
  ucd().addCameraNotificationReceiver(second);
  ucd().sendNotification(7, std::nullopt);
  removal.wait();
  ucd().sendNotification(7, std::nullopt);
  EXPECT_EQ(heardAfterwards, 0);
  EXPECT_EQ(events, 2);
}

TEST_F(CameraEventsTest, AreOverForAReceiverBeforeItsRemovalIs) {
  Removal removal;
  bool overTooSoon = false;
  std::shared_ptr<Acting> receiver;
  receiver = std::make_shared<Acting>([&] {
    removal.begin(ucd(), *receiver);
    overTooSoon = removal.isSoonOver();
  });
  ucd().addCameraNotificationReceiver(receiver);
  ucd().sendNotification(7, std::nullopt);
  removal.wait();
  EXPECT_FALSE(overTooSoon);
  EXPECT_TRUE(removal.isOver());
}

TEST_F(CameraEventsTest, PassAReceiverThatDoesNotCare) {
  class Indifferent final : public ZELCameraNotificationProtocol {};
  ucd().addCameraNotificationReceiver(std::make_shared<Indifferent>());
  ucd().addCameraNotificationReceiver(nullptr);
  ucd().addCameraNotificationReceiver(listener);
  EXPECT_EQ(heard("0860 03"), "7 intValue 3");
}

TEST_F(CameraEventsTest, KeepTheirReceiversAlive) {
  std::weak_ptr<Listener> weak = listener;
  ucd().addCameraNotificationReceiver(std::move(listener));
  EXPECT_FALSE(weak.expired());
  ucd().removeCameraNotificationReceiver(weak.lock().get());
  EXPECT_TRUE(weak.expired());
}

TEST_F(CameraEventsTest, ReachReceiversBeforeTheCallReturns) {
  ucd().addCameraNotificationReceiver(listener);
  ucd().sendNotification(2, ZELMessageFields{{"intValue", std::int32_t{1}}});
  EXPECT_THAT(log, ElementsAre("2 intValue 1"));
}

TEST_F(CameraEventsTest, LetAReceiverSendARequest) {
  class Asking final : public ZELCameraNotificationProtocol {
   public:
    explicit Asking(ZELCameraUCD& ucd) : ucd_(ucd) {}
    void notificationType(std::int64_t, const std::optional<ZELMessageFields>&) override {
      ucd_.msgReqBatteryWithRebackBlock([](const auto&, auto, auto) {});
    }

   private:
    ZELCameraUCD& ucd_;
  };
  ucd().addCameraNotificationReceiver(std::make_shared<Asking>(ucd()));
  answer("0860 03");
  EXPECT_EQ(written(), hex("08000000 0400 0140"));
}

TEST_F(CameraEventsTest, DoNoHarmWhereAReceiverRemovesItself) {
  class Leaving final : public ZELCameraNotificationProtocol {
   public:
    explicit Leaving(ZELCameraUCD& ucd) : ucd_(ucd) {}
    void notificationType(std::int64_t, const std::optional<ZELMessageFields>&) override {
      ucd_.removeCameraNotificationReceiver(this);
    }

   private:
    ZELCameraUCD& ucd_;
  };
  ucd().addCameraNotificationReceiver(std::make_shared<Leaving>(ucd()));
  ucd().addCameraNotificationReceiver(listener);
  EXPECT_EQ(heard("0860 03"), "7 intValue 3");
  EXPECT_EQ(heard("0860 03"), "7 intValue 3");
}

}  // namespace
}  // namespace zel::test
