#pragma once

#include <functional>
#include <memory>

#include <ZELTarkaSDK/platform/accessory.h>

namespace zel::platform {

// What whoever opened a session hears of it.
struct SessionObserver {
  // The other end has ended the stream.
  //
  // Thread: that of the input stream, inside the read that found the end.
  std::function<void()> ended = {};
  // AccessorySession::letGo() was called. Both are destroyed with the session, after its streams.
  //
  // Thread: any thread.
  std::function<void()> wasLetGo = {};
};

// A session over one descriptor: a stream socket or a character device. Each direction has its own duplicate, so that
// either can be closed, and scheduled on a run loop, without the other.
// Owner:  takes the descriptor, and makes it non-blocking, also for those that share its description.
// Errors: null when the host has no descriptor left; the descriptor is closed then.
std::unique_ptr<AccessorySession> makeDescriptorSession(int descriptor, SessionObserver observer = {});

}  // namespace zel::platform
