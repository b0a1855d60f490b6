#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "base/shared_value.h"

class CameraSession;

// A placeholder for a separate writer: it refers to a session and writes nothing.
// Thread: any thread.
class ZELCameraDataWriter {
 public:
  // The only writer of the process.
  static ZELCameraDataWriter& defaultWriter();

  // Held weakly.
  void setCameraSession(std::weak_ptr<CameraSession> session) { cameraSession_.set(std::move(session)); }
  std::shared_ptr<CameraSession> cameraSession() const { return cameraSession_.get().lock(); }

  // writeData:length: - does nothing; bytes for the camera go through the session.
  void writeData(const std::uint8_t*, std::int32_t) {}

 private:
  zel::Guarded<std::weak_ptr<CameraSession>> cameraSession_;
};
