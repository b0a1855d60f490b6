#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "gateway/mqtt/mqtt_address.h"
#include "gateway/mqtt/mqtt_outbox.h"

namespace zel::gateway {

// A connection to a broker that is made again whenever it is lost, each time after twice the wait, on a thread of its
// own. What is to be sent waits in bounded queues meanwhile.
//
// Thread: any thread; the destructor says farewell for at most two seconds.
class MqttClient {
 public:
  struct Options {
    MqttAddress address;
    std::string id;                 // of the client; unique at the broker
    MqttMessage will = {};          // what the broker tells when this process is gone
    MqttMessage farewell = {};      // the same, sent by a process that ends
    std::string certificates = {};  // a file of authorities; empty: the system's
    std::chrono::milliseconds firstWait{1'000}, longestWait{60'000};
    std::function<void(const std::string&)> tell = {};  // sentences for people
    // Thread: the client's. It may call the client, and must not wait.
    std::function<void(const MqttMessage&)> received = {};
  };

  struct Statistics {
    bool isConnected = false;
    std::uint64_t connections = 0, sent = 0, received = 0;
    std::uint64_t dropped = 0;  // messages that were not sent
    std::uint64_t ignored = 0;  // messages that came and were retained, too large or too many
  };

  // Errors: null; `error` says what cannot be used. A broker that does not answer is no error.
  static std::unique_ptr<MqttClient> start(Options options, std::string& error);
  ~MqttClient();
  MqttClient(const MqttClient&) = delete;
  MqttClient& operator=(const MqttClient&) = delete;

  void publish(MqttMessage message);
  // On this connection and all later ones.
  void subscribe(const std::string& filter);
  // Runs it on the client's thread.
  void post(std::function<void()> call);

  Statistics statistics() const;

 private:
  class Run;
  explicit MqttClient(std::unique_ptr<Run> run);
  const std::unique_ptr<Run> run_;
};

}  // namespace zel::gateway
