#include "gateway/mqtt/mqtt.h"

#include <gmock/gmock.h>

#include "gateway/api/rows_of_cameras.h"
#include "gateway/cameras/cameras.h"
#include "simulator/camera_simulator.h"
#include "tests/gateway/mqtt/broker.h"

namespace zel::gateway::test {
namespace {

using nlohmann::json;
using std::chrono::milliseconds;
using zel::test::eventually;
using zel::test::TemporaryFolder;

// A machine of the fleet: a bus with a simulated camera, the gateway's cameras, and their place on the broker.
class Machine {
 public:
  Machine(const std::string& gateway, const std::string& serialNumber, const Broker& broker) {
    simulator::SimulatorOptions options;
    options.accessoriesFolder = bus_.path();
    options.identity.serial = serialNumber;
    options.warn = [](const std::string&) {};
    camera_ = std::make_unique<simulator::CameraSimulator>(std::move(options));
    std::string error;
    EXPECT_TRUE(camera_->start(error)) << error;
    Cameras::Options held;
    held.accessoriesFolder = bus_.path();
    held.timeLimit = zel::test::kLimit;
    held.warn = [](const std::string&) {};
    cameras_ = Cameras::create(std::move(held), error);
    EXPECT_TRUE(cameras_) << error;
    Mqtt::Options mqtt{.address = *parseMqttAddress(broker.address()), .gateway = gateway};
    mqtt.firstWait = mqtt.longestWait = milliseconds(20);
    mqtt_ = Mqtt::start(std::move(mqtt), commandsOf(cameraRows(*cameras_, zel::test::kLimit)), error);
    EXPECT_TRUE(mqtt_) << error;
    EXPECT_TRUE(cameras_->begin([this](const auto& one) { mqtt_->add(one); }, error)) << error;
  }
  ~Machine() { cameras_->stop(); }
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  simulator::CameraSimulator& camera() { return *camera_; }
  const Mqtt& mqtt() const { return *mqtt_; }

 private:
  TemporaryFolder bus_;
  std::unique_ptr<simulator::CameraSimulator> camera_;
  std::unique_ptr<Cameras> cameras_;
  std::unique_ptr<Mqtt> mqtt_;
};

class MqttTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!hasBroker()) GTEST_SKIP() << "needs mosquitto, of Debian's package of that name";
    broker_.start();
    listener_ = std::make_unique<Listener>(broker_.port());
  }
  json answerTo(const std::string& serialNumber, const std::string& command, const std::string& content) {
    const std::string topic = "zel/" + serialNumber + "/answer/" + command;
    listener_->forget();
    listener_->say("zel/" + serialNumber + "/command/" + command, content);
    EXPECT_TRUE(listener_->hears(topic, "status")) << content;
    return json::parse(listener_->at(topic).value_or("null"));
  }

  Broker broker_;
  std::unique_ptr<Listener> listener_;
};

TEST_F(MqttTest, AFleetOfFourGatewaysSharesABrokerThatMayBeRestarted) {
  std::vector<std::unique_ptr<Machine>> fleet;
  for (int one = 1; one <= 4; ++one) {
    const std::string number = std::to_string(one);
    fleet.push_back(std::make_unique<Machine>("machine" + number, "E1A000" + number, broker_));
  }
  const auto areAllThere = [&] {
    for (const char number : {'1', '2', '3', '4'}) {
      const std::string camera = std::string("zel/E1A000") + number;
      EXPECT_TRUE(listener_->hears(camera + "/availability", "online"));
      EXPECT_TRUE(listener_->hears(camera + "/status", R"("status":"streaming")"));
      EXPECT_TRUE(listener_->hears(camera + "/info", R"("batteryLevel":100)"));
      EXPECT_TRUE(listener_->hears(std::string("zel/gateways/machine") + number + "/availability", "online"));
      EXPECT_TRUE(listener_->hears(std::string("homeassistant/sensor/zel_E1A000") + number + "/battery/config",
                                   "zel/gateways/machine"));
    }
  };
  areAllThere();
  EXPECT_EQ(answerTo("E1A0003", "call", R"({"id": 3, "operation": "queryCameraBattery"})")["status"], 200);
  broker_.stop();
  listener_->forget();
  broker_.start();
  areAllThere();
  fleet.erase(fleet.begin());
  EXPECT_TRUE(listener_->hears("zel/gateways/machine1/availability", "offline"));
  EXPECT_EQ(listener_->at("zel/gateways/machine2/availability"), "online");
}

TEST_F(MqttTest, EventsAndLossesAreShown) {
  Machine machine("attic", "E1A0001", broker_);
  ASSERT_TRUE(listener_->hears("zel/E1A0001/availability", "online"));
  std::string error;
  ASSERT_TRUE(machine.camera().tell("battery 1 40", error)) << error;
  EXPECT_TRUE(listener_->hears("zel/E1A0001/events/batteryUpdate", R"("name":"batteryUpdate")"));
  EXPECT_TRUE(listener_->hears("zel/E1A0001/info", R"("batteryLevel":40)"));
  machine.camera().unplug();
  EXPECT_TRUE(listener_->hears("zel/E1A0001/availability", "offline"));
  EXPECT_TRUE(listener_->hears("zel/E1A0001/status", R"("status":"absent")"));
  machine.camera().plug();
  EXPECT_TRUE(listener_->hears("zel/E1A0001/availability", "online"));
}

TEST_F(MqttTest, CommandsAreAnsweredAndMalformedOnesHarmNothing) {
  Machine machine("attic", "E1A0001", broker_);
  ASSERT_TRUE(listener_->hears("zel/E1A0001/availability", "online"));
  EXPECT_EQ(answerTo("E1A0001", "record", R"({"id": "a", "action": "start"})"),
            json::parse(R"({"id": "a", "status": 200, "body": {"record": "start"}})"));
  EXPECT_EQ(answerTo("E1A0001", "record", R"({"action": "stop"})")["body"]["record"], "stop");
  EXPECT_EQ(answerTo("E1A0001", "record", R"({"action": "stop"})")["status"], 502);  // none was begun
  EXPECT_EQ(answerTo("E1A0001", "record", R"({"action": "explode"})")["status"], 422);
  EXPECT_EQ(answerTo("E1A0001", "call", R"({"operation": "noSuchOperation"})")["status"], 422);
  EXPECT_EQ(answerTo("E1A0001", "call", "\xFF\xFE\x01")["status"], 400);
  EXPECT_EQ(answerTo("E1A0001", "call", std::string(50'000, '{'))["status"], 400);
  EXPECT_EQ(answerTo("E1A0001", "nothing", "{}")["status"], 404);
  listener_->say("zel/E1A0001/command/call", std::string(1'000'000, 'x'));  // ignored
  listener_->say("zel/OTHER/command/call", "{}");                           // another's
  EXPECT_EQ(answerTo("E1A0001", "call", R"({"operation": "queryCameraBattery"})")["status"], 200);
  EXPECT_TRUE(machine.mqtt().statistics().isConnected);
  EXPECT_EQ(machine.mqtt().statistics().ignored, 1U);
}

}  // namespace
}  // namespace zel::gateway::test
