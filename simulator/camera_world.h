#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

#include "simulator/wire.h"

namespace zel::simulator {

// The services that the simulated camera needs.
// Thread: the simulator's, which also calls the camera.
class CameraWorld {
 public:
  virtual std::chrono::milliseconds uptime() const = 0;  // monotonic

  virtual void later(std::chrono::milliseconds time, std::function<void()> then) = 0;

  // Runs jobs in order on a worker thread, and the function that a job returns on the simulator's thread.
  virtual void onWorker(std::function<std::function<void()>()> job) = 0;

  // Sends a whole frame to the host, if connected.
  virtual void tellHost(Bytes frame) = 0;

  virtual void unplug() = 0;
  virtual void restart() = 0;  // unplugs, and plugs in again later

 protected:
  ~CameraWorld() = default;
};

// The host that sent a request. If its connection has ended when the reply is ready, the reply is dropped.
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
