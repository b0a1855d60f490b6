#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "gateway/cameras/held_camera.h"
#include "gateway/mqtt/mqtt_outbox.h"

namespace zel::gateway {

// The records by which home-automation hubs find a camera's sensors and buttons by themselves, as
// PREFIX/COMPONENT/NODE/OBJECT/config, retained. Each is unavailable while its camera cannot be asked, and once its
// gateway is gone.
//
// gateway: the name whose availability counts. commands: the names of those that there are.
std::vector<MqttMessage> discoveryRecords(const CameraSummary& camera, std::string_view gateway,
                                          const std::vector<std::string>& commands);

// An identifier of such a record: letters, digits, "_" and "-" alone, and different for different names.
std::string discoveryId(std::string_view name);

}  // namespace zel::gateway
