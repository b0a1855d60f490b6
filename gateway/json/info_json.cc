#include "gateway/json/info_json.h"

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/ZELAccessoryInfo.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>

#include <cstddef>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace zel::gateway {
namespace {

using nlohmann::ordered_json;
using Shown = std::vector<ordered_json>;  // a reply's values

// The answers that have come, and who waits for all of them.
struct Gathering {
  std::mutex mutex;
  std::optional<Result<Battery>> battery;
  std::optional<Result<Card>> card;
  std::optional<Result<std::optional<std::string>>> serialNumber, uuid;
  std::optional<Result<std::uint32_t>> videoSeconds, photos;
  std::function<void(InfoAnswers)> done;

  bool isComplete() const { return battery && card && serialNumber && uuid && videoSeconds && photos; }
  InfoAnswers take() {
    return {std::move(*battery), std::move(*card),         std::move(*serialNumber),
            std::move(*uuid),    std::move(*videoSeconds), std::move(*photos)};
  }
};

// Keeps the answer under `slot`; the last one that comes calls who waits.
template <class T>
void gather(const std::shared_ptr<Gathering>& all, std::optional<Result<T>> Gathering::*slot, Pending<T> asked) {
  asked.then([all, slot](Result<T> answer) {
    std::unique_lock lock(all->mutex);
    ((*all).*slot).emplace(std::move(answer));
    if (!all->isComplete()) return;
    const auto done = std::exchange(all->done, nullptr);
    InfoAnswers answers = all->take();
    lock.unlock();
    done(std::move(answers));
  });
}

void addIdentity(ordered_json& object, Camera& camera) {
  if (const auto info = camera.info()) {
    object["name"] = info->name();
    object["manufacturer"] = info->manufacturer();
    object["modelNumber"] = info->modelNumber();
    object["serialNumber"] = info->serialNumber();
    object["firmwareRevision"] = info->firmwareRevision();
    object["hardwareRevision"] = info->hardwareRevision();
  }
  const ZELCameraAccessory& accessory = camera.stack().accessory();
  object["firewareVersion"] = accessory.firewareVersion();  // the interface's spelling
  object["status"] = accessory.status();
  object["clockOffset"] = accessory.timeOffset();
}

Shown textOf(const std::optional<std::string>& text) { return {text ? ordered_json(*text) : ordered_json()}; }
Shown numberOf(std::uint32_t number) { return {number}; }

}  // namespace

void askForInfo(Camera& camera, const RequestOptions& options, std::function<void(InfoAnswers)> done) {
  const auto all = std::make_shared<Gathering>();
  all->done = std::move(done);
  gather(all, &Gathering::battery, camera.battery(options));
  gather(all, &Gathering::card, camera.card(options));
  gather(all, &Gathering::serialNumber, camera.serialNumber(options));
  gather(all, &Gathering::uuid, camera.uuid(options));
  gather(all, &Gathering::videoSeconds, camera.videoSecondsRemaining(options));
  gather(all, &Gathering::photos, camera.photosRemaining(options));
}

ordered_json infoJson(Camera& camera, const InfoAnswers& answers,
                      const std::function<void(const std::string& key, const CameraError& error)>& failed) {
  ordered_json object;
  addIdentity(object, camera);
  const auto add = [&](const std::vector<std::string>& keys, const auto& answer, const auto& valuesOf) {
    const Shown values = answer ? valuesOf(*answer) : Shown(keys.size());
    for (std::size_t at = 0; at < keys.size(); ++at) object[keys[at]] = values[at];
    if (!answer) failed(keys.front(), answer.error());
  };
  add({"powerType", "batteryLevel"}, answers.battery, [](const Battery& now) {
    return Shown{now.powerType, now.level};
  });
  add({"cardState", "cardSpaceWhole", "cardSpaceFree"}, answers.card, [](const Card& now) {
    return Shown{now.state, now.capacityBytes, now.freeBytes};
  });
  add({"storedSerialNumber"}, answers.serialNumber, textOf);
  add({"uuid"}, answers.uuid, textOf);
  add({"videoTimeRemaining"}, answers.videoSeconds, numberOf);
  add({"photoShotsRemaining"}, answers.photos, numberOf);
  return object;
}

}  // namespace zel::gateway
