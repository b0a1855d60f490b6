#pragma once

#include <ZELTarkaSDK/Camera.h>

#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace zel::gateway {

// What a camera answered about itself and its state.
struct InfoAnswers {
  Result<Battery> battery;
  Result<Card> card;
  Result<std::optional<std::string>> serialNumber, uuid;
  Result<std::uint32_t> videoSeconds, photos;
};

// Asks for all of it at once, and calls `done` with the answers, where the camera's callbacks run.
void askForInfo(Camera& camera, const RequestOptions& options, std::function<void(InfoAnswers)> done);

// Who the camera is and how it is, as one flat object; null for what was not answered.
//
// failed: called for each question that was not answered, with the key of its first value.
nlohmann::ordered_json infoJson(Camera& camera, const InfoAnswers& answers,
                                const std::function<void(const std::string& key, const CameraError& error)>& failed);

}  // namespace zel::gateway
