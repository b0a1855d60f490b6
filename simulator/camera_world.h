#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

#include "simulator/wire.h"

namespace zel::simulator {

// What a camera needs of the world around it.
// Thread: the simulator's, which calls the camera as well.
class CameraWorld {
 public:
  virtual std::chrono::milliseconds uptime() const = 0;  // never goes back

  virtual void later(std::chrono::milliseconds time, std::function<void()> then) = 0;

  // Runs the job on a thread of its own, one job after the other, and what the job returns on the simulator's.
  virtual void onWorker(std::function<std::function<void()>()> job) = 0;

  // Sends a whole frame to the host, if there is one.
  virtual void tellHost(Bytes frame) = 0;

  virtual void unplug() = 0;
  virtual void restart() = 0;  // unplugs, and plugs again a while later

 protected:
  ~CameraWorld() = default;
};

// The host that asked. Its connection may have ended when the answer is ready; the answer is then dropped.
// Thread: the simulator's.
class HostLink {
 public:
  // code: the request's.
  virtual void reply(std::uint16_t code, Bytes body) = 0;
  virtual void send(Bytes frame) = 0;

  virtual void startPreview(int resolution) = 0;
  virtual void stopPreview() = 0;
  virtual void switchSound(bool on) = 0;  // of the preview

  // Units:  milliseconds of the connection's media clock.
  virtual std::int64_t mediaTime() const = 0;

 protected:
  ~HostLink() = default;
};

}  // namespace zel::simulator
