#pragma once

#include <ZELTarkaSDK/CameraStream.h>

#include <deque>
#include <mutex>
#include <utility>

#include "bindings/c/handles.h"

namespace zel::c {

// A stream that a program holds.
//
// Thread: any thread.
class StreamObject {
 public:
  using Handle = zel_stream;
  static constexpr Kind kKind = Kind::stream;

  StreamObject(CameraStream started, bool callsOnCameraThread)
      : stream(std::move(started)), isOnCameraThread(callsOnCameraThread) {}

  // The stream's headers, which live as long as this object, whatever they become.
  const StreamHeaders& keepHeaders();

  CameraStream stream;
  const bool isOnCameraThread;  // where callbacks run

 private:
  std::mutex mutex_;
  std::deque<StreamHeaders> given_;  // grows where the headers have changed
};

}  // namespace zel::c
