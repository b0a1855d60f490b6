#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>

#include "base/shared_value.h"
#include "gateway/cameras/held_camera.h"
#include "gateway/mqtt/mqtt_client.h"
#include "gateway/mqtt/mqtt_commands.h"

namespace zel::gateway {

// One camera on the broker: its topics, and the commands that come for it.
//
// Thread: any thread.
class MqttCamera : public std::enable_shared_from_this<MqttCamera> {
 public:
  // The client, while it is there: a camera's answer may come later than its end.
  using Client = std::shared_ptr<Guarded<MqttClient*>>;

  MqttCamera(std::shared_ptr<HeldCamera> camera, Client client, std::string gateway,
             std::shared_ptr<const MqttCommands> commands);
  ~MqttCamera();
  MqttCamera(const MqttCamera&) = delete;
  MqttCamera& operator=(const MqttCamera&) = delete;

  // Publishes what there is, and whatever changes from now on.
  void begin();

  // Takes a message, if it is one of this camera's commands.
  void receive(const MqttMessage& message);

 private:
  // Commands that may wait for the camera at once; more are refused.
  static constexpr int kMostCommands = 16;

  void send(MqttMessage message) const;
  void post(void (MqttCamera::*call)());
  void notice(const Notice& notice);
  void tellLink();
  void publish(std::string_view what, const nlohmann::ordered_json& value);
  void publishStatus();
  void publishStatistics(const Notice& notice);
  void publishInfoSoon();
  void publishInfo();

  const std::shared_ptr<HeldCamera> camera_;
  const Client client_;
  const std::string gateway_;
  const std::shared_ptr<const MqttCommands> commands_;
  const std::shared_ptr<std::atomic<int>> running_ = std::make_shared<std::atomic<int>>(0);
  std::atomic<bool> isAsking_ = false, asksAgain_ = false;
  std::atomic<unsigned> seconds_ = 0;
  std::shared_ptr<void> notices_;  // last: what it tells uses the rest
};

}  // namespace zel::gateway
