#include "bindings/c/callbacks.h"

#include "bindings/c/failure.h"

namespace zel::c {
namespace {
thread_local int callbacksOnCameraThread = 0;
}  // namespace

CameraThreadScope::CameraThreadScope(bool isOnCameraThread) : isMarked_(isOnCameraThread) {
  if (isMarked_) ++callbacksOnCameraThread;
}

CameraThreadScope::~CameraThreadScope() {
  if (isMarked_) --callbacksOnCameraThread;
}

void checkMayWait() {
  if (callbacksOnCameraThread > 0)
    refuse(
        "this call waits, and in a callback on the camera's thread it would wait for itself; zel_options.dispatch lets "
        "callbacks wait");
}

RequestOptions withTimeLimit(int milliseconds) {
  if (milliseconds < 0) refuse("a time limit is not below 0");
  return {.timeLimit = std::chrono::milliseconds(milliseconds)};
}

}  // namespace zel::c
