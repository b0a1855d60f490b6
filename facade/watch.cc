#include "facade/watch.h"

#include <chrono>
#include <utility>

namespace zel {

std::shared_ptr<Watch> Watch::create(std::shared_ptr<Deadlines> deadlines,
                                     const std::shared_ptr<const CallbackQueue>& callbacks,
                                     const RequestOptions& options, GiveUp giveUp,
                                     std::shared_ptr<const Movement> moved) {
  const double now = deadlines->now();
  auto made = std::make_shared<Watch>(std::move(deadlines), giveUp, std::move(moved));
  if (options.timeLimit.count() > 0) made->limit(now, std::chrono::duration<double>(options.timeLimit).count());
  if (options.stop.stop_possible()) {
    made->stop_.emplace(options.stop, [callbacks, giveUp = std::move(giveUp)] {
      callbacks->postToMain([giveUp] { giveUp({CameraError::Reason::cancelled, "the wait was cancelled"}); });
    });
  }
  return made;
}

Watch::Watch(std::shared_ptr<Deadlines> deadlines, GiveUp giveUp, std::shared_ptr<const Movement> moved)
    : deadlines_(std::move(deadlines)), giveUp_(std::move(giveUp)), moved_(std::move(moved)) {}

Watch::~Watch() {
  if (deadline_) deadlines_->remove(*deadline_);
}

void Watch::limit(double from, double seconds) {
  deadline_ = deadlines_->add(from + seconds, [weak = weak_from_this(), seconds] {
    if (const auto self = weak.lock()) self->expire(seconds);
  });
}

void Watch::expire(double seconds) {
  const double moved = moved_ ? moved_->load() : 0;
  if (moved + seconds > deadlines_->now()) return limit(moved, seconds);
  giveUp_({CameraError::Reason::timeLimit, "nothing came in time"});
}

}  // namespace zel
