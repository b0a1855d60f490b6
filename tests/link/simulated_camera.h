#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>

#include "link/camera_data_parser.h"
#include "link/camera_session.h"
#include "platform/simulated/simulated_platform.h"
#include "tests/link/bytes.h"

namespace zel::test {

inline platform::AccessoryDescription cameraDescription(std::uint64_t connectionID = 7,
                                                        const std::string& firmware = "E1_2.0.1_192") {
  platform::AccessoryDescription description;
  description.connectionID = connectionID;
  description.name = "Example 360";
  description.serialNumber = "E1A000" + std::to_string(connectionID);
  description.firmwareRevision = firmware;
  description.protocolStrings = {"com.zelcam.ucd"};
  return description;
}

// One camera stack on the simulated platform, and a scripted camera at the other end.
class SimulatedCameraTest : public testing::Test {
 protected:
  ZELCameraAccessory& accessory() { return stack.accessory(); }
  CameraSession& session() { return accessory().cameraSession(); }

  void attach(const platform::AccessoryDescription& description = cameraDescription()) {
    camera = host.plug(description);
    host.runUntilIdle();
  }

  // Attaches and opens: status 1, looking for the marker.
  void open(const platform::AccessoryDescription& description = cameraDescription()) {
    attach(description);
    accessory().openCamera();
    host.runUntilIdle();
  }

  platform::ScriptedLink& link() { return *camera->current(); }

  void send(const Bytes& bytes) {
    link().send(bytes);
    host.runUntilIdle();
  }

  // The marker, and one frame behind it: status 2.
  void openAndSynchronise(const platform::AccessoryDescription& description = cameraDescription()) {
    open(description);
    send(join(kMarker, kAudioFrame));
    send(kAudioFrame);
    link().takeWritten();
  }

  static inline const Bytes kAudioFrame = bytes({7, 0, 0, 0, 2, 0, 5});

  platform::SimulatedPlatform host;
  std::shared_ptr<platform::ScriptedAccessory> camera;
  CameraStack stack{host.ports()};
};

}  // namespace zel::test
