#pragma once

#include <cstddef>
#include <memory>

#include "simulator/camera_state.h"
#include "simulator/camera_world.h"
#include "simulator/faults.h"
#include "simulator/host_frames.h"
#include "simulator/storage.h"

namespace zel::simulator {

// Takes the files that the host sends to the card.
// Thread: the simulator's; the files are written on the worker.
class Uploads {
 public:
  // Owner:  all outlive it and the worker's jobs.
  Uploads(CameraWorld& world, CameraState& state, const Storage& storage, const Faults& faults)
      : world_(world), state_(state), storage_(storage), faults_(faults) {}

  // Answers once the file is written, or cannot be. Refused are paths that are not safe, and more than the card holds.
  // Errors: a payload that is too short for its header is dropped without an answer.
  void take(const std::shared_ptr<HostLink>& host, HostFile file);

 private:
  void answer(HostLink& host, const Bytes& path, std::uint16_t status) const;

  CameraWorld& world_;
  CameraState& state_;
  const Storage& storage_;
  const Faults& faults_;
  std::size_t waiting_ = 0;  // what the worker has not written yet, in bytes
};

}  // namespace zel::simulator
