#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "base/mutex.h"

class CameraSession;

// A placeholder for a separate writer: it refers to a session and writes nothing.
// Thread: any thread.
class ZELCameraDataWriter {
 public:
  // The only writer of the process.
  static ZELCameraDataWriter& defaultWriter();

  ZELCameraDataWriter() = default;
  ZELCameraDataWriter(const ZELCameraDataWriter&) = delete;
  ZELCameraDataWriter& operator=(const ZELCameraDataWriter&) = delete;

  // Held weakly.
  void setCameraSession(std::weak_ptr<CameraSession> session) {
    const zel::MutexLock lock(mutex_);
    cameraSession_.swap(session);
  }
  std::shared_ptr<CameraSession> cameraSession() const {
    const zel::MutexLock lock(mutex_);
    return cameraSession_.lock();
  }

  // writeData:length: - does nothing; bytes for the camera go through the session.
  void writeData(const std::uint8_t*, std::int32_t) {}

 private:
  mutable zel::Mutex mutex_;
  std::weak_ptr<CameraSession> cameraSession_ ZEL_GUARDED_BY(mutex_);
};
