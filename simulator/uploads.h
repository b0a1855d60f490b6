#pragma once

#include <cstddef>
#include <memory>

#include "simulator/camera_state.h"
#include "simulator/camera_world.h"
#include "simulator/faults.h"
#include "simulator/host_frames.h"
#include "simulator/storage.h"

namespace zel::simulator {

// Receives the host's files.
// Thread: the simulator's; the files are written on the worker.
class Uploads {
 public:
  // Owner:  all outlive it and the worker's jobs.
  Uploads(CameraWorld& world, CameraState& state, const Storage& storage, const Faults& faults)
      : world_(world), state_(state), storage_(storage), faults_(faults) {}

  // Replies once the file is written or has failed. Refuses unsafe paths, and files that do not fit on the card.
  // Errors: a payload that is too short for its header is dropped without a reply.
  void take(const std::shared_ptr<HostLink>& host, HostFile file);

 private:
  void answer(HostLink& host, const Bytes& path, std::uint16_t status) const;

  CameraWorld& world_;
  CameraState& state_;
  const Storage& storage_;
  const Faults& faults_;
  std::size_t waiting_ = 0;  // bytes that the worker has not written yet
};

}  // namespace zel::simulator
