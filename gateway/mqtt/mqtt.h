#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "gateway/mqtt/mqtt_camera.h"

namespace zel::gateway {

// A gateway's cameras on a broker: state and events as retained topics, commands by topic, and records by which
// home-automation hubs find them; see mqtt_topics.h. Many gateways share one broker, each under a name of its own.
//
//   std::string error;
//   const auto mqtt = Mqtt::start({.address = *parseMqttAddress("mqtt://broker"), .gateway = "attic"}, rows, error);
//   for (const auto& camera : cameras.all()) mqtt->add(camera);
//
// Thread: any thread.
class Mqtt {
 public:
  struct Options {
    MqttAddress address;
    std::string gateway;            // its name on the broker; empty: this machine's
    std::string certificates = {};  // see MqttClient::Options
    std::chrono::milliseconds firstWait{1'000}, longestWait{60'000};
    std::function<void(const std::string&)> tell = {};  // sentences for people
  };

  // commands: see commandsOf().
  //
  // Errors: null; `error` says why. A broker that does not answer is none.
  static std::unique_ptr<Mqtt> start(Options options, MqttCommands commands, std::string& error);
  // Tells the broker that the gateway is offline.
  ~Mqtt();
  Mqtt(const Mqtt&) = delete;
  Mqtt& operator=(const Mqtt&) = delete;

  // A camera of the gateway, from now on. One that was added already is left as it is.
  void add(const std::shared_ptr<HeldCamera>& camera);

  MqttClient::Statistics statistics() const;

 private:
  // The cameras, which the client's thread looks at also while this object ends.
  struct Members {
    std::mutex mutex;
    std::vector<std::pair<std::string, std::shared_ptr<MqttCamera>>> cameras;  // by their serial numbers

    std::vector<std::shared_ptr<MqttCamera>> all();
  };

  Mqtt(std::string gateway, MqttCommands commands);

  const std::string gateway_;
  const std::shared_ptr<const MqttCommands> commands_;
  const std::shared_ptr<Members> members_ = std::make_shared<Members>();
  const MqttCamera::Client reach_ = std::make_shared<Guarded<MqttClient*>>(nullptr);
  std::unique_ptr<MqttClient> client_;
};

}  // namespace zel::gateway
