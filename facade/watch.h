#pragma once

#include <ZELTarkaSDK/Pending.h>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

#include "facade/callback_queue.h"
#include "facade/deadlines.h"

namespace zel {

// When a transfer has moved last: the clock's steady time.
using Movement = std::atomic<double>;

// A time limit and a stop token at work, until it is destroyed. Where something is transferred, the limit counts from
// the latest movement.
//
// Thread: any thread.
class Watch : public std::enable_shared_from_this<Watch> {
 public:
  using GiveUp = std::function<void(CameraError)>;

  // giveUp: called once, on the main queue. moved: null where nothing is transferred.
  static std::shared_ptr<Watch> create(std::shared_ptr<Deadlines> deadlines,
                                       const std::shared_ptr<const CallbackQueue>& callbacks,
                                       const RequestOptions& options, GiveUp giveUp,
                                       std::shared_ptr<const Movement> moved);

  Watch(std::shared_ptr<Deadlines> deadlines, GiveUp giveUp, std::shared_ptr<const Movement> moved);
  ~Watch();
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

 private:
  void limit(double from, double seconds);
  void expire(double seconds);

  const std::shared_ptr<Deadlines> deadlines_;
  const GiveUp giveUp_;
  const std::shared_ptr<const Movement> moved_;
  std::optional<Deadlines::Id> deadline_;  // set before it is handed out, and then on the main queue, which holds it
  std::optional<std::stop_callback<std::function<void()>>> stop_;
};

}  // namespace zel
