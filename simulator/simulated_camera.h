#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "simulator/camera_state.h"
#include "simulator/camera_world.h"
#include "simulator/captures.h"
#include "simulator/faults.h"
#include "simulator/host_frames.h"
#include "simulator/recorder.h"
#include "simulator/storage.h"
#include "simulator/system_control.h"
#include "simulator/uploads.h"

namespace zel::simulator {

// The camera's behaviour: answers the host's requests and files, and produces events.
// Thread: the simulator's.
class SimulatedCamera {
 public:
  // Owner:  all outlive it; the world's timers and jobs do not run after its destruction.
  SimulatedCamera(CameraWorld& world, const CameraStart& start, const Storage& storage, const Faults& faults);

  // Starts draining the battery.
  void start();

  void answer(const std::shared_ptr<HostLink>& host, const HostMessage& request);
  void take(const std::shared_ptr<HostLink>& host, HostFile file) { uploads_.take(host, std::move(file)); }

  // Changes from outside; each sends an event to the host.
  void setBattery(std::uint8_t powerType, std::uint8_t level);
  void setCard(std::uint8_t cardState);
  void fillCard();
  void changeOffset();
  void moveGyro();
  Recorder& recorder() { return recorder_; }
  void tellHost(Bytes frame) { world_.tellHost(std::move(frame)); }

  // Preview resolution code, 0 to 15.
  int resolution() const { return state_.modes.preview; }

 private:
  void shoot(const std::shared_ptr<HostLink>& host, const HostMessage& request);
  Bytes startRecording(const HostLink& host, const HostMessage& request);
  Bytes endRecording(const HostMessage& request);
  Bytes answerPreview(HostLink& host, const HostMessage& request);
  static Bytes answerSound(HostLink& host, const HostMessage& request);
  Bytes answerControl(const HostMessage& request);
  void drainBattery();

  CameraWorld& world_;
  CameraState state_;
  const Storage& storage_;
  Captures captures_;
  Recorder recorder_;
  Uploads uploads_;
  SystemControl control_;
};

}  // namespace zel::simulator
