#include "gateway/mqtt/mqtt_camera.h"

#include <chrono>
#include <utility>

#include "gateway/json/info_json.h"
#include "gateway/json/json_line.h"
#include "gateway/mqtt/mqtt_discovery.h"
#include "gateway/mqtt/mqtt_topics.h"

namespace zel::gateway {
namespace {

constexpr unsigned kStatisticsEvery = 10, kInfoEvery = 60;  // seconds
constexpr std::chrono::seconds kPatience{5};                // for each answer of the camera

std::string nameIn(const nlohmann::ordered_json& event) {
  const auto name = event.find("name");
  return name != event.end() && name->is_string() ? name->get<std::string>() : "unknown";
}

std::vector<std::string> namesOf(const MqttCommands& commands) {
  std::vector<std::string> names;
  for (const auto& [name, command] : commands) names.push_back(name);
  return names;
}

}  // namespace

MqttCamera::MqttCamera(std::shared_ptr<HeldCamera> camera, Client client, std::string gateway,
                       std::shared_ptr<const MqttCommands> commands)
    : camera_(std::move(camera)),
      client_(std::move(client)),
      gateway_(std::move(gateway)),
      commands_(std::move(commands)) {}

MqttCamera::~MqttCamera() = default;

void MqttCamera::begin() {
  const std::string commands = cameraTopic(camera_->serialNumber(), "command/+");
  client_->with([&](MqttClient* client) {
    if (client != nullptr) client->subscribe(commands);
  });
  notices_ = camera_->notices().take([this](const Notice& one) { notice(one); });
  publishStatus();
  publishInfoSoon();
}

void MqttCamera::send(MqttMessage message) const {
  client_->with([&](MqttClient* client) {
    if (client != nullptr) client->publish(std::move(message));
  });
}

// Calls it on the client's thread.
void MqttCamera::post(void (MqttCamera::*call)()) {
  client_->with([&](MqttClient* client) {
    if (client == nullptr) return;
    client->post([weak = weak_from_this(), call] {
      if (const auto self = weak.lock()) (self.get()->*call)();
    });
  });
}

// Takers must not wait, and so nothing is asked of the camera here.
void MqttCamera::notice(const Notice& notice) {
  switch (notice.kind) {
    case Notice::Kind::camera:
      publish("events/" + topicPart(nameIn(notice.value)), notice.value);
      return publishInfoSoon();
    case Notice::Kind::link:
      return post(&MqttCamera::tellLink);
    case Notice::Kind::statistics:
      return publishStatistics(notice);
  }
}

void MqttCamera::publish(std::string_view what, const nlohmann::ordered_json& value) {
  send({cameraTopic(camera_->serialNumber(), what), jsonLine(value), true});
}

// A camera's name is known only once it was attached, so that its discovery records change with its status.
void MqttCamera::publishStatus() {
  const CameraSummary summary = camera_->summary();
  publish("status", summaryJson(summary));
  const bool isThere = summary.status == CameraStatus::streaming;
  send({cameraTopic(camera_->serialNumber(), "availability"), std::string(isThere ? kOnline : kOffline), true});
  for (MqttMessage& record : discoveryRecords(summary, gateway_, namesOf(*commands_))) send(std::move(record));
}

void MqttCamera::publishStatistics(const Notice& notice) {
  const unsigned second = seconds_++;
  if (second % kStatisticsEvery == 0) publish("statistics", notice.value);
  if (second % kInfoEvery == 0) publishInfoSoon();
}

void MqttCamera::tellLink() {
  publishStatus();
  publishInfo();
}

void MqttCamera::publishInfoSoon() { post(&MqttCamera::publishInfo); }

// One question at a time: a camera that sends event after event is asked once more when it has answered.
void MqttCamera::publishInfo() {
  if (camera_->status() != CameraStatus::streaming) return;
  if (isAsking_.exchange(true)) {
    asksAgain_ = true;
    return;
  }
  askForInfo(camera_->camera(), {.timeLimit = kPatience}, [weak = weak_from_this()](const InfoAnswers& answers) {
    const auto self = weak.lock();
    if (!self) return;
    self->publish("info", infoJson(self->camera_->camera(), answers, [](const auto&, const auto&) {}));
    self->isAsking_ = false;
    if (self->asksAgain_.exchange(false)) self->publishInfoSoon();
  });
}

// -- Commands

void MqttCamera::receive(const MqttMessage& message) {
  const auto name = commandIn(message.topic, camera_->serialNumber());
  if (!name) return;
  const std::string topic = cameraTopic(camera_->serialNumber(), "answer/" + topicPart(*name));
  const auto answer = [weak = weak_from_this(), topic](std::string content) {
    if (const auto self = weak.lock()) self->send({topic, std::move(content), false});
  };
  if (running_->fetch_add(1) >= kMostCommands) {
    --*running_;
    return answer(jsonLine(
        {{"id", nullptr},
         {"status", 503},
         {"body", {{"status", 503}, {"title", "Service Unavailable"}, {"detail", "too many commands wait"}}}}));
  }
  runCommand(*commands_, camera_->serialNumber(), *name, message.content,
             [answer, running = running_](std::string content) {
               --*running;
               answer(std::move(content));
             });
}

}  // namespace zel::gateway
