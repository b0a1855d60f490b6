#pragma once

namespace zel {

// Marks that this thread runs the callbacks of a camera on the queue that all its answers come through: whoever waits
// for an answer here waits for himself.
class CallbackThread {
 public:
  CallbackThread();
  ~CallbackThread();
  CallbackThread(const CallbackThread&) = delete;
  CallbackThread& operator=(const CallbackThread&) = delete;

  // Of any camera.
  static bool isThis();
};

}  // namespace zel
