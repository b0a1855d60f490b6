#pragma once

#include <ZELTarkaSDK/platform/task.h>

namespace zel::platform {

// Runs tasks asynchronously.
// Thread: any thread may post.
class Queue {
 public:
  virtual ~Queue() = default;

  // Runs the task later, never inside the call.
  virtual void post(Task task) = 0;
};

// The host's two queues.
class Queues {
 public:
  virtual ~Queues() = default;

  // Serial, in the order of posting, on the host's main thread.
  virtual Queue& mainQueue() = 0;

  // Concurrent, default priority. A task may block forever; it is not joined at exit.
  virtual Queue& globalQueue() = 0;
};

}  // namespace zel::platform
