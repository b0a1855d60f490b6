#pragma once

#include <functional>
#include <memory>

#include <ZELTarkaSDK/platform/accessory.h>

namespace zel::platform {

// Callbacks to the code that opened a session.
struct SessionObserver {
  // Called when the other end has ended the stream.
  //
  // Thread: that of the input stream, inside the read that detects the end.
  std::function<void()> ended = {};
  // Called by AccessorySession::letGo(). Both functions are destroyed with the session, after its streams.
  //
  // Thread: any thread.
  std::function<void()> wasLetGo = {};
};

// A session over one file descriptor: a stream socket or a character device. Each direction has its own duplicate, so
// that it can be closed and scheduled on a run loop independently.
// Owner:  takes the descriptor, and makes it non-blocking, also for others that share its file description.
// Errors: null when the host has no file descriptor left; the given one is then closed.
std::unique_ptr<AccessorySession> makeDescriptorSession(int descriptor, SessionObserver observer = {});

}  // namespace zel::platform
