#include "gateway/mqtt/mqtt.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <random>
#include <utility>

#include "gateway/mqtt/mqtt_topics.h"

namespace zel::gateway {
namespace {

std::string nameOfThisMachine() {
  std::array<char, 256> name{};
  return ::gethostname(name.data(), name.size() - 1) == 0 && name[0] != '\0' ? name.data() : "zelcam";
}

// Another client of the same identifier would be thrown out by the broker, for ever and in turn.
std::string clientId(const std::string& gateway) {
  std::random_device random;
  return fmt::format("zelcam-{}-{:08x}", topicPart(gateway).substr(0, 40), random());
}

}  // namespace

Mqtt::Mqtt(std::string gateway, MqttCommands commands)
    : gateway_(std::move(gateway)), commands_(std::make_shared<const MqttCommands>(std::move(commands))) {}

std::unique_ptr<Mqtt> Mqtt::start(Options options, MqttCommands commands, std::string& error) {
  std::string gateway = options.gateway.empty() ? nameOfThisMachine() : options.gateway;
  std::unique_ptr<Mqtt> mqtt(new Mqtt(std::move(gateway), std::move(commands)));
  const std::string topic = gatewayTopic(mqtt->gateway_);
  MqttClient::Options client{.address = options.address, .id = clientId(mqtt->gateway_)};
  client.will = client.farewell = {topic, std::string(kOffline), true};
  client.certificates = options.certificates;
  client.firstWait = options.firstWait;
  client.longestWait = options.longestWait;
  client.tell = options.tell;
  client.received = [members = mqtt->members_](const MqttMessage& message) {
    for (const auto& camera : members->all()) camera->receive(message);
  };
  mqtt->client_ = MqttClient::start(std::move(client), error);
  if (!mqtt->client_) return nullptr;
  mqtt->reach_->set(mqtt->client_.get());
  mqtt->client_->publish({topic, std::string(kOnline), true});
  return mqtt;
}

Mqtt::~Mqtt() {
  reach_->set(nullptr);
  {
    const std::lock_guard lock(members_->mutex);
    members_->cameras.clear();
  }
  client_.reset();
}

std::vector<std::shared_ptr<MqttCamera>> Mqtt::Members::all() {
  std::vector<std::shared_ptr<MqttCamera>> all;
  const std::lock_guard lock(mutex);
  for (const auto& [serialNumber, camera] : cameras) all.push_back(camera);
  return all;
}

void Mqtt::add(const std::shared_ptr<HeldCamera>& camera) {
  const auto added = std::make_shared<MqttCamera>(camera, reach_, gateway_, commands_);
  {
    const std::lock_guard lock(members_->mutex);
    const auto isThere = [&](const auto& one) { return one.first == camera->serialNumber(); };
    if (std::ranges::any_of(members_->cameras, isThere)) return;
    members_->cameras.emplace_back(camera->serialNumber(), added);
  }
  added->begin();
}

MqttClient::Statistics Mqtt::statistics() const { return client_->statistics(); }

}  // namespace zel::gateway
