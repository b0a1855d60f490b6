#pragma once

#include <ZELTarkaSDK/Camera.h>
#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/Observation.h>
#include <ZELTarkaSDK/ZELError.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/shared_value.h"
#include "facade/callback_queue.h"
#include "facade/camera_host.h"
#include "facade/deadlines.h"
#include "facade/hub.h"
#include "facade/link_keeper.h"
#include "facade/openings.h"
#include "facade/request_lines.h"
#include "facade/watch.h"

namespace zel {

class Preview;

// What a request is called, and which requests it waits for: those of the same row of the catalogue.
struct RequestKind {
  std::string_view name;
  std::string_view row;
};

// A camera object's own, also while it is being opened.
//
// Owner:  shared by the camera object and by work in progress. close() before the last reference goes.
// Thread: any thread.
class CameraCore final : public detail::Patience, public std::enable_shared_from_this<CameraCore> {
 public:
  // See Camera.h.
  static Result<std::shared_ptr<CameraCore>> create(CameraOptions options);
  static Pending<Camera> open(CameraOptions options, const RequestOptions& request);
  Pending<void> connect(const RequestOptions& request);

  explicit CameraCore(CameraOptions options);
  ~CameraCore() override;
  CameraCore(const CameraCore&) = delete;
  CameraCore& operator=(const CameraCore&) = delete;

  // Ends everything: requests, subscriptions, the link and the camera's own platform.
  void close();

  // Makes the call with the stack. False once the camera is closed. The call must not wait, and must not call the host.
  bool withStack(const std::function<void(CameraStack&)>& call);
  CameraStack& stack() { return *stack_; }
  // Who the camera is, or was at its latest connection; null before the first.
  std::shared_ptr<const ZELAccessoryInfo> info();

  const std::shared_ptr<CallbackQueue>& callbacks() const { return callbacks_; }
  const std::shared_ptr<Deadlines>& deadlines() const { return deadlines_; }
  const CameraOptions& options() const { return options_; }

  const std::shared_ptr<Preview>& preview() const { return preview_; }
  DecodersOnDemand* decoders() { return host_->decoders(); }
  std::shared_ptr<ReadingBound> readingBound() const { return host_->readingBound(); }

  std::shared_ptr<void> watch(const RequestOptions& options, std::function<void(CameraError)> giveUp) override;
  // The same with a time limit that counts from the latest movement. moved: may be null.
  std::shared_ptr<void> watchWhileMoving(const RequestOptions& options, std::function<void(CameraError)> giveUp,
                                         const std::shared_ptr<const Movement>& moved);

  // Adds a request to its line. send: called with what takes the answer, once. failing: called before its caller is
  // told that there is none. moved: the time limit counts from there where that is later.
  template <class T>
  Pending<T> request(const RequestKind& kind, const RequestOptions& options,
                     std::function<void(CameraStack&, std::function<void(Result<T>)>)> send,
                     std::function<void()> failing = {}, const std::shared_ptr<const Movement>& moved = nullptr);

  template <class T>
  std::shared_ptr<detail::SubscriptionState<T>> makeSubscription(const SubscriptionOptions& options) {
    return std::make_shared<detail::SubscriptionState<T>>(options, callbacks_, shared_from_this());
  }
  // A subscription to the hub.
  template <class T>
  std::shared_ptr<detail::SubscriptionState<T>> subscribe(Hub<T>& hub, const SubscriptionOptions& options);

  // Nothing once the camera is closed.
  std::optional<CameraStatistics> statistics();
  std::shared_ptr<detail::SubscriptionState<CameraStatistics>> statisticsEvery(std::chrono::milliseconds interval,
                                                                               const SubscriptionOptions& options);

  Hub<Event> events;
  Hub<LinkStatus> linkChanges;

 private:
  class Receiver;

  void makeStack();
  void waitForFrames(detail::PendingBase& pending, const RequestOptions& request, Openings::Done done);
  void findCamera();
  void statusChanged(LinkStatus status);
  void askForMarker();
  CameraError whyNotOpen(const CameraError& why);
  void noteInUse(const CameraInUse& camera);
  void look();
  bool isAttached();
  void giveUp(const RequestKind& kind, RequestLines::Id id, const CameraError& why);

  const CameraOptions options_;
  std::unique_ptr<CameraHost> host_;
  std::shared_ptr<CallbackQueue> callbacks_;
  std::shared_ptr<Deadlines> deadlines_;
  const std::shared_ptr<RequestLines> lines_ = std::make_shared<RequestLines>();
  std::unique_ptr<CameraStack> stack_;
  const std::shared_ptr<Preview> preview_;
  Hub<CameraStatistics> statisticsTakers_;
  Observation statusObservation_;
  Guarded<std::shared_ptr<const ZELAccessoryInfo>> info_;  // of the latest connection

  std::mutex mutex_;
  std::condition_variable unused_;
  int users_ = 0;  // of the stack
  bool isClosed_ = false;
  Openings openings_;
  bool isLooking_ = false;  // main queue only
  LinkKeeper linkKeeper_;   // main queue only
};

// -- Templates

// A call that has failed before it began. callbacks: where its caller is called back; at once where there are none.
template <class T>
Pending<T> failed(CameraError why, std::shared_ptr<const detail::Callbacks> callbacks = nullptr) {
  if (!callbacks) callbacks = std::make_shared<detail::Callbacks>();
  const auto pending = std::make_shared<detail::PendingState<T>>(std::move(callbacks));
  pending->set(std::move(why));
  return Pending<T>(pending);
}

// Calls on a camera object that has been moved from.
inline CameraError movedFrom() { return {CameraError::Reason::closed, "this camera object has been moved from"}; }
template <class T>
Pending<T> nowhere() {
  return failed<T>(movedFrom());
}
template <class T>
Subscription<T> nothingFrom() {
  const auto callbacks = std::make_shared<detail::Callbacks>();
  const auto ended = std::make_shared<detail::SubscriptionState<T>>(SubscriptionOptions{}, callbacks, nullptr);
  ended->end(movedFrom());
  return Subscription<T>(ended);
}

// The options with that time limit, unless they have one of their own.
inline RequestOptions orLimit(RequestOptions options, std::chrono::milliseconds limit) {
  if (options.timeLimit.count() <= 0) options.timeLimit = limit;
  return options;
}

CameraError errorOf(std::string_view name, const ZELError& error);

template <class T>
Pending<T> CameraCore::request(const RequestKind& kind, const RequestOptions& options,
                               std::function<void(CameraStack&, std::function<void(Result<T>)>)> send,
                               std::function<void()> failing, const std::shared_ptr<const Movement>& moved) {
  const auto pending = std::make_shared<detail::PendingState<T>>(callbacks_);
  const RequestLines::Id id = lines_->nextId();
  const auto giveUp = [weak = weak_from_this(), kind, id](const CameraError& why) {
    if (const auto self = weak.lock()) self->giveUp(kind, id, why);
  };
  pending->setCancel([giveUp] { giveUp({CameraError::Reason::cancelled, {}}); });
  auto done = [lines = lines_, row = kind.row, id, pending](Result<T> result) {
    lines->answered(row, id);
    pending->set(std::move(result));
  };
  RequestLines::Request request;
  request.fail = [pending, failing = std::move(failing)](const CameraError& why) {
    if (failing) failing();
    pending->set(why);
  };
  request.send = [weak = weak_from_this(), send = std::move(send), done = std::move(done)] {
    if (const auto self = weak.lock()) self->withStack([&](CameraStack& stack) { send(stack, done); });
  };
  lines_->add(kind.row, id, std::move(request));
  // Once it is there to be given up: its stop may have been requested before.
  lines_->keep(kind.row, id, watchWhileMoving(orLimit(options, options_.timeLimit), giveUp, moved));
  return Pending<T>(pending);
}

template <class T>
std::shared_ptr<detail::SubscriptionState<T>> CameraCore::subscribe(Hub<T>& hub, const SubscriptionOptions& options) {
  auto state = makeSubscription<T>(options);
  hub.add(state);
  return state;
}

}  // namespace zel
