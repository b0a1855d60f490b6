#pragma once

#include <ZELTarkaSDK/Pending.h>

namespace zel::c {

// Marks that this thread runs a program's callback on a camera's own thread, where nobody may wait for a camera.
class CameraThreadScope {
 public:
  // isOnCameraThread: false where the program's own loop runs it; then nothing is marked.
  explicit CameraThreadScope(bool isOnCameraThread);
  ~CameraThreadScope();
  CameraThreadScope(const CameraThreadScope&) = delete;
  CameraThreadScope& operator=(const CameraThreadScope&) = delete;

 private:
  const bool isMarked_;
};

// Errors: refused on such a thread, before anything was asked of the camera.
void checkMayWait();

// Errors: refused below 0.
RequestOptions withTimeLimit(int milliseconds);

}  // namespace zel::c
