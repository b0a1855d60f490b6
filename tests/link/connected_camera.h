#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>

#include "base/wire.h"
#include "link/camera_data_parser.h"
#include "platform/simulated/simulated_platform.h"
#include "tests/link/bytes.h"

namespace zel::test {

// One camera stack on the simulated platform whose camera's frames arrive: status 2. For programs without a test
// fixture.
// Thread: one.
class ConnectedCamera {
 public:
  explicit ConnectedCamera(std::uint64_t seed = 1) : host(seed) {
    stack->accessory().openCamera();
    plug();
  }

  // Attaches the camera anew and lets its frames arrive.
  void plug() {
    platform::AccessoryDescription description;
    description.connectionID = ++connections_;
    description.firmwareRevision = "E1_2.0.1_192";
    description.protocolStrings = {"com.zelcam.ucd"};
    camera = host.plug(description);
    host.runUntilIdle();
    synchronise();
  }
  void unplug() {
    host.unplug(camera);
    host.runUntilIdle();
  }
  // The marker, and frames behind it.
  void synchronise() {
    camera->current()->send(join(kMarker, kAudioFrame));
    host.runUntilIdle();
    camera->current()->send(kAudioFrame);
    host.runUntilIdle();
    camera->current()->takeWritten();
  }

  // A message of the camera, straight to its reader.
  void deliver(std::uint16_t code, ByteView body) {
    Bytes payload;
    appendLittleEndian(payload, code);
    payload.insert(payload.end(), body.begin(), body.end());
    stack->parser().parserMsg(payload.data(), payload.size());
  }

  static inline const Bytes kAudioFrame = bytes({7, 0, 0, 0, 2, 0, 5});

  platform::SimulatedPlatform host;
  std::unique_ptr<CameraStack> stack = std::make_unique<CameraStack>(host.ports());
  std::shared_ptr<platform::ScriptedAccessory> camera;

 private:
  std::uint64_t connections_ = 0;
};

}  // namespace zel::test
