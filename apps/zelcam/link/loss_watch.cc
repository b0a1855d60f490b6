#include "apps/zelcam/link/loss_watch.h"

#include "apps/zelcam/host/interrupt.h"

namespace zel::app {

LossWatch::LossWatch(Camera& camera, Silence silence)
    : silence_(silence), link_(camera.linkChanges()), user_(interruption(), [this] { stop_.request_stop(); }) {
  link_.each([this](LinkStatus status) { note(status); });
  note(camera.linkStatus());
}

// A session that was opened again has forgotten what it was asked for.
void LossWatch::note(LinkStatus status) {
  if (status == LinkStatus::flowing || (status == LinkStatus::silent && silence_ == Silence::isBorne)) return;
  if (status == LinkStatus::open) wasReopened_ = true;
  isLost_ = true;
  stop_.request_stop();
}

}  // namespace zel::app
