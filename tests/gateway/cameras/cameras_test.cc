#include "gateway/cameras/cameras.h"

#include <gmock/gmock.h>

#include "tests/facade/bus_camera.h"

namespace zel::gateway {
namespace {

using testing::ElementsAre;

class CamerasTest : public test::SimulatedBus {
 protected:
  void begin(const std::string& serialNumber = {}) {
    Cameras::Options options;
    options.accessoriesFolder = folder_.path();
    options.serialNumber = serialNumber;
    options.timeLimit = test::kLimit;
    options.warn = [this](const std::string& words) { warnings_.add(words); };
    std::string error;
    cameras_ = Cameras::create(std::move(options), error);
    ASSERT_TRUE(cameras_) << error;
    const auto added = [this](const std::shared_ptr<HeldCamera>& one) { added_.add(one->serialNumber()); };
    ASSERT_TRUE(cameras_->begin(added, error)) << error;
  }
  std::shared_ptr<HeldCamera> find(const std::string& serialNumber) {
    EXPECT_TRUE(test::eventually([&] { return cameras_->find(serialNumber) != nullptr; }));
    return cameras_->find(serialNumber);
  }
  static bool becomes(const HeldCamera& camera, CameraStatus status) {
    return test::eventually([&] { return camera.status() == status; });
  }

  test::Recorded<std::string> added_, warnings_;
  std::unique_ptr<Cameras> cameras_;
};

TEST_F(CamerasTest, ThoseThatAreThereAndThoseThatComeAreHeld) {
  attach();
  begin();
  EXPECT_TRUE(becomes(*find("E1A0001"), CameraStatus::streaming));
  attach({}, "E1A0002");
  EXPECT_TRUE(becomes(*find("E1A0002"), CameraStatus::streaming));
  EXPECT_THAT(added_.now(), ElementsAre("E1A0001", "E1A0002"));
  EXPECT_EQ(cameras_->all().size(), 2u);
  EXPECT_EQ(cameras_->find("E1A0003"), nullptr);
}

TEST_F(CamerasTest, OneThatHasGoneIsAbsentAndComesBackAsItself) {
  attach();
  begin();
  const auto camera = find("E1A0001");
  ASSERT_TRUE(becomes(*camera, CameraStatus::streaming));
  test::Recorded<std::string> told;
  const auto token = camera->notices().take([&](const Notice& notice) {
    if (notice.kind == Notice::Kind::link) told.add(notice.value["status"]);
  });
  simulated().unplug();
  EXPECT_TRUE(becomes(*camera, CameraStatus::absent));
  EXPECT_EQ(cameras_->all().size(), 1u);
  simulated().plug();
  EXPECT_TRUE(becomes(*camera, CameraStatus::streaming));
  EXPECT_EQ(find("E1A0001"), camera);
  EXPECT_THAT(added_.now(), ElementsAre("E1A0001"));
  EXPECT_TRUE(test::eventually([&] { return told.now().size() >= 2 && told.now().back() == "streaming"; }));
}

TEST_F(CamerasTest, OnlyTheOneThatIsNamedIsHeld) {
  attach();
  attach({}, "E1A0002");
  begin("E1A0002");
  EXPECT_TRUE(becomes(*find("E1A0002"), CameraStatus::streaming));
  EXPECT_EQ(cameras_->all().size(), 1u);
}

TEST_F(CamerasTest, OneWithoutASerialNumberIsLeftOutInWords) {
  folder_.place("bare.json", R"({"connectionID": 7, "manufacturer": "Example", "name": "Bare", "modelNumber": "E1",
                                 "serialNumber": "", "firmwareRevision": "1", "hardwareRevision": "1",
                                 "dockType": "usb", "protocolStrings": ["com.zelcam.ucd"],
                                 "endpoint": {"type": "unix", "path": "/nowhere.sock"}})");
  begin();
  ASSERT_FALSE(warnings_.wait(1).empty());
  EXPECT_EQ(warnings_.now()[0], "Bare has no serial number to address it by, and is left out");
  EXPECT_TRUE(cameras_->all().empty());
}

TEST_F(CamerasTest, OneThatAnotherProgramHasIsBusyUntilItIsFree) {
  attach();
  std::optional<Camera> other(*Camera::open({.serialNumber = "E1A0001",
                                             .openTimeLimit = test::kLimit,
                                             .accessoriesFolder = folder_.path(),
                                             .program = "another host"})
                                   .get());
  begin();
  const auto camera = find("E1A0001");
  EXPECT_TRUE(test::eventually([&] { return camera->summary().user.has_value(); }));
  EXPECT_THAT(camera->summary().user.value_or(""), testing::HasSubstr("(another host)"));
  EXPECT_EQ(summaryJson(camera->summary())["busy"], true);
  EXPECT_EQ(camera->status(), CameraStatus::opening);
  other.reset();
  EXPECT_TRUE(becomes(*camera, CameraStatus::streaming));
  EXPECT_EQ(summaryJson(camera->summary()).dump(),
            R"({"serial":"E1A0001","name":"Example 360","firmware":"E1_2.0.1_192","status":"streaming","busy":false})");
}

}  // namespace
}  // namespace zel::gateway
