// The camera object on a host's own ports, in virtual time: what takes minutes, in an instant and in any order.

#include <ZELTarkaSDK/Camera.h>
#include <gmock/gmock.h>

#include <optional>

#include "platform/simulated/simulated_platform.h"
#include "tests/link/bytes.h"
#include "tests/link/simulated_camera.h"

namespace zel::test {
namespace {

using Reason = CameraError::Reason;

class CameraInVirtualTimeTest : public testing::Test {
 protected:
  CameraOptions options() {
    CameraOptions options;
    options.ports = &host.ports();
    return options;
  }

  void open(const CameraOptions& with) {
    Camera::open(with).then([this](Result<Camera> result) {
      if (!result) return void(failure = result.error());
      camera.emplace(*std::move(result));
    });
    host.runUntilIdle();
  }
  void send(const Bytes& bytes) {
    accessory->current()->send(bytes);
    host.runUntilIdle();
  }
  void openAndSynchronise() {
    accessory = host.plug(cameraDescription());
    open(options());
    send(join(kMarker, bytes({7, 0, 0, 0, 2, 0, 5})));
    send(bytes({7, 0, 0, 0, 2, 0, 5}));
    accessory->current()->takeWritten();
  }

  // Lets the time pass at a camera that sends a frame every tenth of a second.
  void advance(int tenths) {
    for (int tenth = 0; tenth < tenths; ++tenth) {
      host.advance(0.1);
      send(bytes({7, 0, 0, 0, 2, 0, 5}));
    }
  }

  // An opening that is under way keeps itself until its time is over.
  void TearDown() override {
    camera.reset();
    host.advance(11);
  }

  platform::SimulatedPlatform host;
  std::shared_ptr<platform::ScriptedAccessory> accessory;
  std::optional<Camera> camera;
  std::optional<CameraError> failure;
};

TEST_F(CameraInVirtualTimeTest, AsksForTheMarkerAtOnce) {
  accessory = host.plug(cameraDescription());
  open(options());
  EXPECT_THAT(accessory->current()->takeWritten(),
              testing::ContainerEq(join(bytes({18, 0, 0, 0, 4, 0, 0x2E, 0x40}), kMarker)));
}

TEST_F(CameraInVirtualTimeTest, SaysThatTheCameraIsSilentAfterTenSeconds) {
  accessory = host.plug(cameraDescription());
  open(options());
  host.advance(9.9);
  EXPECT_FALSE(failure);
  host.advance(0.2);
  ASSERT_TRUE(failure);
  EXPECT_EQ(*failure, (CameraError{Reason::silent, "the camera E1A0007 is attached but sent nothing in time", "", 0}));
}

TEST_F(CameraInVirtualTimeTest, AStreamAsksTheCameraWithItsFirstFrame) {
  accessory = host.plug(cameraDescription());
  camera.emplace(*Camera::create(options()));
  const auto connecting = camera->connect();
  host.runUntilIdle();
  EXPECT_EQ(camera->linkStatus(), LinkStatus::open);
  accessory->current()->takeWritten();
  auto stream = camera->beginStream({.resolution = 3});
  ASSERT_TRUE(stream);
  auto problems = stream->problems();
  host.runUntilIdle();
  EXPECT_TRUE(accessory->current()->takeWritten().empty()) << "an answer in front of the marker would be lost";
  send(join(kMarker, bytes({7, 0, 0, 0, 2, 0, 5})));
  send(bytes({7, 0, 0, 0, 2, 0, 5}));
  const Bytes written = accessory->current()->takeWritten();
  ASSERT_GT(written.size(), 16u);
  EXPECT_EQ(Bytes(written.begin() + 16, written.end()),
            join(bytes({9, 0, 0, 0, 4, 0, 0x04, 0x00, 3}), bytes({9, 0, 0, 0, 4, 0, 0x0E, 0x00, 1})))
      << "behind the comparison of the clocks";
  auto problem = problems.next();
  problem.cancel();
  EXPECT_EQ(problem.get().error().reason, Reason::cancelled) << "nothing was lost";
}

TEST_F(CameraInVirtualTimeTest, ARequestWaitsFiveSecondsAndItsLineTwoMore) {
  openAndSynchronise();
  std::vector<std::string> ends;
  camera->battery().then([&](const Result<Battery>& battery) { ends.push_back(battery.error().message); });
  advance(49);
  EXPECT_TRUE(ends.empty());
  advance(2);
  EXPECT_THAT(ends, testing::ElementsAre("battery: the camera did not answer in time"));
  accessory->current()->takeWritten();
  std::optional<int> level;
  camera->battery().then([&](const Result<Battery>& battery) { level = battery->level; });
  advance(18);
  EXPECT_TRUE(accessory->current()->takeWritten().empty()) << "the answer of the first may still come";
  advance(2);
  EXPECT_EQ(accessory->current()->takeWritten(), bytes({8, 0, 0, 0, 4, 0, 0x01, 0x40}));
  send(bytes({10, 0, 0, 0, 4, 0, 0x01, 0xC0, 1, 77}));
  EXPECT_EQ(level, 77);
}

TEST_F(CameraInVirtualTimeTest, TwoOfAKindAreSentOneAfterTheOther) {
  openAndSynchronise();
  std::vector<int> levels;
  for (int one = 0; one < 2; ++one) {
    camera->battery().then([&](const Result<Battery>& battery) { levels.push_back(battery->level); });
  }
  host.runUntilIdle();
  EXPECT_EQ(accessory->current()->takeWritten(), bytes({8, 0, 0, 0, 4, 0, 0x01, 0x40}));
  send(bytes({10, 0, 0, 0, 4, 0, 0x01, 0xC0, 1, 20}));
  EXPECT_EQ(accessory->current()->takeWritten(), bytes({8, 0, 0, 0, 4, 0, 0x01, 0x40}));
  send(bytes({10, 0, 0, 0, 4, 0, 0x01, 0xC0, 1, 21}));
  EXPECT_THAT(levels, testing::ElementsAre(20, 21));
}

TEST_F(CameraInVirtualTimeTest, ASilentLinkIsOpenedAgain) {
  openAndSynchronise();
  std::vector<LinkStatus> seen;
  auto link = camera->linkChanges();
  link.each([&](LinkStatus status) { seen.push_back(status); });
  host.advance(10);
  EXPECT_THAT(seen, testing::ElementsAre(LinkStatus::silent, LinkStatus::open));
}

// A request that was given up tells nothing more, although what it asked for may still come.
TEST_F(CameraInVirtualTimeTest, AProgressEndsWithItsRequest) {
  openAndSynchronise();
  std::vector<TransferProgress> told;
  CaptureOptions options;
  options.progress = [&](const TransferProgress& progress) { told.push_back(progress); };
  auto photo = camera->photo(options);
  host.runUntilIdle();
  send(join(bytes({21, 0, 0, 0, 4, 0, 0x07, 0x80}), Bytes(13)));
  EXPECT_THAT(told, testing::ElementsAre(TransferProgress{0, 1}));
  photo.cancel();
  send(join(bytes({71, 0, 0, 0, 3, 0}), Bytes(65)));
  advance(10);
  EXPECT_THAT(told, testing::ElementsAre(TransferProgress{0, 1}));
}

TEST_F(CameraInVirtualTimeTest, ASubscriptionWithoutRoomKeepsOne) {
  openAndSynchronise();
  auto link = camera->linkChanges({.capacity = 0});
  host.advance(10);  // silent, and opened again
  EXPECT_EQ(*link.next().get(), LinkStatus::open);
  EXPECT_EQ(link.dropped(), 1u);
}

TEST_F(CameraInVirtualTimeTest, PicturesNeedADecoder) {
  openAndSynchronise();
  std::optional<CameraError> why;
  auto pictures = camera->pictures();
  pictures.next().then([&](const Result<Picture>& picture) { why = picture.error(); });
  host.runUntilIdle();
  EXPECT_EQ(why, (CameraError{Reason::media, "this platform decodes no video", "", 0}));
}

// -- A camera object that is there before its camera

class ConnectTest : public CameraInVirtualTimeTest {
 protected:
  void create(CameraOptions with) { camera.emplace(*Camera::create(std::move(with))); }
  // The end of a connection that is under way, once it has one.
  std::shared_ptr<std::optional<Result<void>>> connect() {
    auto end = std::make_shared<std::optional<Result<void>>>();
    camera->connect().then([end](const Result<void>& result) { *end = result; });
    host.runUntilIdle();
    return end;
  }
  void plugAndSynchronise() {
    accessory = host.plug(cameraDescription());
    host.runUntilIdle();
    synchronise();
  }
  void synchronise() {
    send(join(kMarker, bytes({7, 0, 0, 0, 2, 0, 5})));
    send(bytes({7, 0, 0, 0, 2, 0, 5}));
  }
};

TEST_F(ConnectTest, LooksForNoCameraBeforeItIsTold) {
  accessory = host.plug(cameraDescription());
  create(options());
  host.advance(60);
  EXPECT_FALSE(accessory->current());
  EXPECT_EQ(camera->info(), nullptr);
}

TEST_F(ConnectTest, ShowsTheLinkFromItsFirstStateOn) {
  create(options());
  std::vector<LinkStatus> seen;
  auto link = camera->linkChanges();
  link.each([&](LinkStatus status) { seen.push_back(status); });
  const auto end = connect();
  plugAndSynchronise();
  ASSERT_TRUE(*end);
  EXPECT_TRUE(**end);
  EXPECT_THAT(seen, testing::ElementsAre(LinkStatus::open, LinkStatus::flowing));
  EXPECT_TRUE(*connect()) << "frames arrive already";
}

TEST_F(ConnectTest, FindsTheCameraAlsoAfterTheTimeLimit) {
  create(options());
  const auto end = connect();
  host.advance(10.1);
  ASSERT_TRUE(*end);
  EXPECT_EQ((**end).error(), (CameraError{Reason::noCamera, "no camera was attached in time", "", 0}));
  plugAndSynchronise();
  EXPECT_EQ(camera->linkStatus(), LinkStatus::flowing);
}

TEST_F(ConnectTest, EndsWithTheCameraObject) {
  create(options());
  const auto end = connect();
  camera.reset();
  host.runUntilIdle();
  ASSERT_TRUE(*end);
  EXPECT_EQ((**end).error().reason, Reason::closed);
}

TEST_F(ConnectTest, ALinkThatIsNotKeptIsOpenedAgainByTheNextConnectAlone) {
  std::vector<std::string> told;
  CameraOptions with = options();
  with.keepsLink = false;
  with.tell = [&](const std::string& line) { told.push_back(line); };
  create(with);
  connect();
  plugAndSynchronise();
  host.advance(60);
  EXPECT_EQ(camera->linkStatus(), LinkStatus::silent);
  const auto again = connect();
  EXPECT_EQ(camera->linkStatus(), LinkStatus::open);
  synchronise();
  EXPECT_TRUE(*again && **again);
  EXPECT_THAT(told, testing::IsEmpty());
}

TEST_F(ConnectTest, TellsThatItOpensASilentLinkAgain) {
  std::vector<std::string> told;
  CameraOptions with = options();
  with.tell = [&](const std::string& line) { told.push_back(line); };
  create(with);
  connect();
  plugAndSynchronise();
  host.advance(5);
  EXPECT_THAT(told, testing::ElementsAre("the link does not heal by itself; opening the camera again"));
}

TEST_F(CameraInVirtualTimeTest, IsOpenedAndClosedAThousandTimesAndLeavesNothing) {
  for (int round = 0; round < 1000; ++round) {
    openAndSynchronise();
    ASSERT_TRUE(camera) << round;
    std::optional<CameraError> end;
    camera->battery().then([&](const Result<Battery>& battery) { end = battery.error(); });
    camera.reset();
    host.runUntilIdle();
    ASSERT_TRUE(end);
    EXPECT_EQ(end->reason, Reason::closed);
    host.unplug(accessory);
    host.runUntilIdle();
    ASSERT_EQ(host.liveThreads("session thread"), 0);
  }
  EXPECT_EQ(host.liveTasks(), 0u);
}

// The order of threads and queues, by the seed.
class AnyOrder : public testing::TestWithParam<std::uint64_t> {};

TEST_P(AnyOrder, EveryCallEndsOnceWhereverTheCameraIsDestroyed) {
  platform::SimulatedPlatform host(GetParam());
  const auto accessory = host.plug(cameraDescription());
  std::optional<Camera> camera;
  Camera::open({.ports = &host.ports()}).then([&](Result<Camera> result) { camera.emplace(*std::move(result)); });
  host.runUntilIdle();
  for (const Bytes& sent : {join(kMarker, bytes({7, 0, 0, 0, 2, 0, 5})), bytes({7, 0, 0, 0, 2, 0, 5})}) {
    accessory->current()->send(sent);
    host.runUntilIdle();
  }
  ASSERT_TRUE(camera);
  int ended = 0;
  for (int one = 0; one < 10; ++one) {
    camera->battery().then([&, one](const Result<Battery>&) {
      ++ended;
      if (one == static_cast<int>(GetParam() % 10)) camera.reset();
    });
    camera->card().then([&](const Result<Card>&) { ++ended; });
  }
  accessory->current()->send(bytes({10, 0, 0, 0, 4, 0, 0x01, 0xC0, 1, 20}));
  for (int second = 0; second < 60 && ended < 20; ++second) host.advance(1);
  EXPECT_EQ(ended, 20);
  camera.reset();
  host.runUntilIdle();
  EXPECT_EQ(ended, 20);
}

INSTANTIATE_TEST_SUITE_P(Seeds, AnyOrder, testing::Range<std::uint64_t>(1, 51));

}  // namespace
}  // namespace zel::test
