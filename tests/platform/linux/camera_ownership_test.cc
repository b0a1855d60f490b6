// Two hosts at one camera, and a camera whose stream ends, as the accessory manager has them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <array>

#include "tests/platform/linux/bus_fixture.h"

namespace zel::platform {
namespace {

using test::listenAt;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kProtocol = "com.zelcam.ucd";

// Reads what comes, as a session thread does.
struct Reader final : StreamDelegate {
  void streamHandleEvent(Stream& stream, StreamEvent event) override {
    if (event != StreamEvent::hasBytesAvailable) return;
    std::array<std::uint8_t, 64> buffer{};
    const auto count = static_cast<InputStream&>(stream).read(buffer);
    received.insert(received.end(), buffer.begin(), buffer.begin() + std::max<std::ptrdiff_t>(count, 0));
  }
  std::vector<std::uint8_t> received;
};

class CameraOwnershipTest : public test::BusFixture {
 protected:
  CameraOwnershipTest() { listener_ = listenAt(folder_.file("a.sock")); }

  std::shared_ptr<Accessory> attached() {
    plug("a", 1);
    manager().registerForLocalNotifications();
    return manager().connectedAccessories().at(0);
  }

  std::unique_ptr<AccessorySession> open(const std::shared_ptr<Accessory>& accessory) {
    auto session = manager().openSession(accessory, kProtocol);
    if (!session) return nullptr;
    session->inputStream().setDelegate(reader_);
    session->inputStream().scheduleInRunLoop(ports().threads.currentRunLoop());
    session->inputStream().open();
    return session;
  }

  // The camera's end of the connection that was made last.
  UniqueDescriptor accepted() {
    pollfd query = {.fd = listener_.get(), .events = POLLIN, .revents = 0};
    return UniqueDescriptor(poll(&query, 1, 30'000) == 1 ? accept(listener_.get(), nullptr, nullptr) : -1);
  }
  bool somebodyConnects() {
    pollfd query = {.fd = listener_.get(), .events = POLLIN, .revents = 0};
    return poll(&query, 1, 0) == 1;
  }

  // A host that opens its camera whenever it comes, as a stack does.
  void openOnArrival() {
    onHeard_ = [this] {
      if (heard_.back().front() == '-') session_.reset();
      if (heard_.back().front() == '+') session_ = open(accessories_.back());
    };
  }

  // Another program's platform on the same bus.
  std::unique_ptr<LinuxPlatform> another(std::vector<CameraInUse>& refusals) {
    std::string error;
    LinuxPlatform::Options options;
    options.accessoriesFolder = folder_.path();
    options.inUse = [&refusals](const CameraInUse& one) { refusals.push_back(one); };
    options.program = "the other";
    return LinuxPlatform::create(std::move(options), error);
  }

  UniqueDescriptor listener_;
  const std::shared_ptr<Reader> reader_ = std::make_shared<Reader>();
  std::unique_ptr<AccessorySession> session_;
};

TEST_F(CameraOwnershipTest, TheSecondHostIsToldAtOnceWhoHasTheCamera) {
  const auto accessory = attached();
  session_ = open(accessory);
  ASSERT_NE(session_, nullptr);
  const UniqueDescriptor camera = accepted();
  std::vector<CameraInUse> refusals;
  const auto other = another(refusals);
  auto& others = other->ports().accessories;
  EXPECT_EQ(others.openSession(others.connectedAccessories().at(0), kProtocol), nullptr);
  ASSERT_EQ(refusals.size(), 1u);
  EXPECT_EQ(refusals[0].camera, "E1A0001");
  EXPECT_EQ(refusals[0].process, getpid());
  EXPECT_FALSE(somebodyConnects());
}

TEST_F(CameraOwnershipTest, ARefusalIsAWarningWhereNobodyAskedForIt) {
  const auto accessory = attached();
  std::vector<CameraInUse> refusals;
  const auto other = another(refusals);
  auto& others = other->ports().accessories;
  const auto session = others.openSession(others.connectedAccessories().at(0), kProtocol);
  ASSERT_NE(session, nullptr);
  EXPECT_EQ(manager().openSession(accessory, kProtocol), nullptr);
  EXPECT_THAT(warnings_.now(),
              ElementsAre("camera E1A0001 is in use by process " + std::to_string(getpid()) + " (the other)"));
}

TEST_F(CameraOwnershipTest, AnAccessoryWithoutASerialNumberIsKnownByItsFile) {
  std::string text = test::accessoryJson(1, test::unixEndpoint(folder_.file("a.sock")));
  text.replace(text.find("E1A0001"), 7, "");
  folder_.place("a.json", text);
  const auto session = manager().openSession(manager().connectedAccessories().at(0), kProtocol);
  ASSERT_NE(session, nullptr);
  EXPECT_EQ(manager().openSession(manager().connectedAccessories().at(0), kProtocol), nullptr);
  EXPECT_THAT(warnings_.now(), ElementsAre(::testing::StartsWith("camera a.json is in use by process ")));
}

TEST_F(CameraOwnershipTest, OneHostMayOpenAgainBeforeItsStreamsAreClosed) {
  const auto accessory = attached();
  const auto first = open(accessory);
  EXPECT_EQ(manager().openSession(accessory, kProtocol), nullptr) << "it has a session";
  first->letGo();
  EXPECT_NE(manager().openSession(accessory, kProtocol), nullptr);
}

TEST_F(CameraOwnershipTest, ACameraIsKeptUntilItsHostUnregisters) {
  const auto accessory = attached();
  open(accessory).reset();
  std::vector<CameraInUse> refusals;
  const auto other = another(refusals);
  auto& others = other->ports().accessories;
  const auto known = others.connectedAccessories().at(0);
  EXPECT_EQ(others.openSession(known, kProtocol), nullptr);
  manager().unregisterForLocalNotifications();
  EXPECT_NE(others.openSession(known, kProtocol), nullptr);
}

TEST_F(CameraOwnershipTest, ACameraThatCouldNotBeConnectedIsNotKept) {
  const auto accessory = attached();
  folder_.remove("a.sock");
  EXPECT_EQ(manager().openSession(accessory, kProtocol), nullptr);
  listener_ = listenAt(folder_.file("a.sock"));
  std::vector<CameraInUse> refusals;
  const auto other = another(refusals);
  auto& others = other->ports().accessories;
  EXPECT_NE(others.openSession(others.connectedAccessories().at(0), kProtocol), nullptr);
}

// -- the end of a stream

TEST_F(CameraOwnershipTest, TheEndOfTheStreamIsADeparture) {
  const auto accessory = attached();
  session_ = open(accessory);
  accepted().reset();
  EXPECT_THAT(heardAtLeast(1), ElementsAre("-1"));
  EXPECT_FALSE(accessory->isConnected());
  EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(CameraOwnershipTest, TheReturnIsTheConnectionOfTheNextSession) {
  openOnArrival();
  session_ = open(attached());
  accepted().reset();
  ASSERT_TRUE(runUntil([&] { return heard_.size() >= 2; }));
  EXPECT_THAT(heard_, ElementsAre("-1", "+1"));
  EXPECT_THAT(listed(), ElementsAre(1));
  ASSERT_NE(session_, nullptr);
  const UniqueDescriptor camera = accepted();
  ASSERT_EQ(send(camera.get(), "abc", 3, MSG_NOSIGNAL), 3);
  EXPECT_TRUE(runUntil([&] { return reader_->received.size() == 3; }));
  EXPECT_FALSE(somebodyConnects()) << "a second connection was made";
}

TEST_F(CameraOwnershipTest, ACameraThatDoesNotListenIsTriedUntilItDoes) {
  openOnArrival();
  session_ = open(attached());
  const UniqueDescriptor camera = accepted();
  listener_.reset();
  folder_.remove("a.sock");
  shutdown(camera.get(), SHUT_RDWR);
  ASSERT_TRUE(runUntil([&] { return heard_.size() == 1; }));
  listener_ = listenAt(folder_.file("a.sock"));
  ASSERT_TRUE(runUntil([&] { return heard_.size() >= 2; }));
  EXPECT_THAT(heard_, ElementsAre("-1", "+1"));
  EXPECT_NE(session_, nullptr);
  EXPECT_THAT(warnings_.now(), IsEmpty());
}

TEST_F(CameraOwnershipTest, ASessionThatCannotBeOpenedAgainIsADepartureToo) {
  const auto accessory = attached();
  open(accessory).reset();
  listener_.reset();
  folder_.remove("a.sock");
  EXPECT_EQ(manager().openSession(accessory, kProtocol), nullptr);
  EXPECT_THAT(heardAtLeast(1), ElementsAre("-1"));
}

TEST_F(CameraOwnershipTest, TheEndOfAStreamThatWasReplacedIsNone) {
  const auto accessory = attached();
  const auto first = open(accessory);
  const UniqueDescriptor camera = accepted();
  first->letGo();
  const auto second = open(accessory);
  shutdown(camera.get(), SHUT_RDWR);
  plug("b", 2);  // announced after it
  ASSERT_TRUE(runUntil([&] { return !heard_.empty(); }));
  settle();
  EXPECT_THAT(heard_, ElementsAre("+2"));
}

TEST_F(CameraOwnershipTest, AFileThatGoesAfterTheStreamIsNoSecondDeparture) {
  session_ = open(attached());
  const UniqueDescriptor camera = accepted();
  shutdown(camera.get(), SHUT_RDWR);
  ASSERT_TRUE(runUntil([&] { return heard_.size() == 1; }));
  unplug("a");
  plug("a", 2);
  EXPECT_THAT(heardAtLeast(2), ElementsAre("-1", "+2"));
}

TEST_F(CameraOwnershipTest, WithoutAHostThatWaitsItIsThereAsItsFileTells) {
  session_ = open(attached());
  manager().registerForLocalNotifications();  // somebody else of this process watches
  accepted().reset();
  ASSERT_TRUE(runUntil([&] { return heard_.size() == 1; }));
  session_.reset();
  manager().unregisterForLocalNotifications();  // the host closes its camera
  ASSERT_TRUE(runUntil([&] { return heard_.size() >= 2; }));
  EXPECT_THAT(heard_, ElementsAre("-1", "+1"));
  EXPECT_FALSE(somebodyConnects()) << "for nobody";
}

TEST_F(CameraOwnershipTest, AfterTheLastHostAListingHoldsWhatTheFilesTell) {
  session_ = open(attached());
  accepted().reset();
  ASSERT_TRUE(runUntil([&] { return heard_.size() == 1; }));
  manager().unregisterForLocalNotifications();
  EXPECT_THAT(listed(), ElementsAre(1));
  EXPECT_TRUE(manager().connectedAccessories().at(0)->isConnected());
}

TEST(CameraInUse, SaysWhoHasIt) {
  EXPECT_EQ((CameraInUse{"E1A0001", 4711, "zelcam serve"}.inWords()),
            "camera E1A0001 is in use by process 4711 (zelcam serve)");
  EXPECT_EQ((CameraInUse{"E1A0001", 4711, ""}.inWords()), "camera E1A0001 is in use by process 4711");
  EXPECT_EQ((CameraInUse{"E1A0001", 0, ""}.inWords()), "camera E1A0001 is in use by another program");
}

}  // namespace
}  // namespace zel::platform
