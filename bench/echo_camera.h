#pragma once

#include <cstdint>
#include <string>
#include <thread>

#include "platform/linux/unique_descriptor.h"

namespace zel::bench {

// A camera that answers at once: every frame comes back with its code made a reply's, byte for byte otherwise. The
// marker request brings the marker and a frame besides. It serves one connection after another, on a thread of its own,
// with blocking reads and writes.
class EchoCamera {
 public:
  EchoCamera();
  // Waits for the thread; the host must have closed its connection.
  ~EchoCamera();
  EchoCamera(const EchoCamera&) = delete;
  EchoCamera& operator=(const EchoCamera&) = delete;

  // The folder of an accessory bus where it is attached, and its socket.
  const std::string& folder() const { return folder_; }
  std::string socketPath() const { return folder_ + "/camera.sock"; }

  // A blocking connection to it.
  platform::UniqueDescriptor connect() const;

 private:
  void attach() const;
  void run();
  void serve(int host);

  std::string folder_;
  platform::UniqueDescriptor listener_;
  std::thread thread_;
};

}  // namespace zel::bench
