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

#include "facade/callback_queue.h"
#include "facade/camera_host.h"
#include "facade/deadlines.h"
#include "facade/hub.h"
#include "facade/request_lines.h"

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
  static Pending<Camera> open(CameraOptions options, const RequestOptions& request);

  explicit CameraCore(CameraOptions options);
  ~CameraCore() override;
  CameraCore(const CameraCore&) = delete;
  CameraCore& operator=(const CameraCore&) = delete;

  // Ends everything: requests, subscriptions, the link and the camera's own platform.
  void close();

  // Makes the call with the stack. False once the camera is closed. The call must not wait, and must not call the host.
  bool withStack(const std::function<void(CameraStack&)>& call);
  CameraStack& stack() { return *stack_; }

  const std::shared_ptr<CallbackQueue>& callbacks() const { return callbacks_; }
  const std::shared_ptr<Deadlines>& deadlines() const { return deadlines_; }
  const CameraOptions& options() const { return options_; }

  const std::shared_ptr<Preview>& preview() const { return preview_; }
  DecodersOnDemand* decoders() { return host_->decoders(); }

  std::shared_ptr<void> watch(const RequestOptions& options, std::function<void(CameraError)> giveUp) override;

  // Adds a request to its line. send: called with what takes the answer, once.
  template <class T>
  Pending<T> request(const RequestKind& kind, const RequestOptions& options,
                     std::function<void(CameraStack&, std::function<void(Result<T>)>)> send);

  template <class T>
  std::shared_ptr<detail::SubscriptionState<T>> makeSubscription(const SubscriptionOptions& options) {
    return std::make_shared<detail::SubscriptionState<T>>(options, callbacks_, shared_from_this());
  }
  // A subscription to the hub.
  template <class T>
  std::shared_ptr<detail::SubscriptionState<T>> subscribe(Hub<T>& hub, const SubscriptionOptions& options);

  Hub<Event> events;
  Hub<LinkStatus> linkChanges;

 private:
  class Receiver;

  void start(std::shared_ptr<detail::PendingState<Camera>> opening, const RequestOptions& request);
  void statusChanged(LinkStatus status);
  void askForMarker();
  void finishOpening();
  void failOpening(const CameraError& why);
  CameraError whyNotOpen(const CameraError& why);
  void noteInUse(const CameraInUse& camera);
  void look();
  bool isAttached();
  std::shared_ptr<detail::PendingState<Camera>> takeOpening();
  RequestOptions withLimit(const RequestOptions& options) const;
  void giveUp(RequestLines::Id id, std::string_view name, const CameraError& why);

  const CameraOptions options_;
  std::unique_ptr<CameraHost> host_;
  std::shared_ptr<CallbackQueue> callbacks_;
  std::shared_ptr<Deadlines> deadlines_;
  const std::shared_ptr<RequestLines> lines_ = std::make_shared<RequestLines>();
  std::unique_ptr<CameraStack> stack_;
  const std::shared_ptr<Preview> preview_;
  Observation statusObservation_;

  std::mutex mutex_;
  std::condition_variable unused_;
  int users_ = 0;  // of the stack
  bool isClosed_ = false;
  std::shared_ptr<detail::PendingState<Camera>> opening_;
  std::shared_ptr<void> openingWatch_;
  double brokenSince_ = 0;  // main queue only; 0: the link is not broken
  double pause_ = 0;        // main queue only
};

// -- Templates

// A call on a camera object that has been moved from.
template <class T>
Pending<T> nowhere() {
  const auto pending = std::make_shared<detail::PendingState<T>>(std::make_shared<detail::Callbacks>());
  pending->set(CameraError{CameraError::Reason::closed, "this camera object has been moved from"});
  return Pending<T>(pending);
}

CameraError errorOf(std::string_view name, const ZELError& error);

template <class T>
Pending<T> CameraCore::request(const RequestKind& kind, const RequestOptions& options,
                               std::function<void(CameraStack&, std::function<void(Result<T>)>)> send) {
  const auto pending = std::make_shared<detail::PendingState<T>>(callbacks_);
  const RequestLines::Id id = lines_->nextId();
  const auto giveUp = [weak = weak_from_this(), id, name = kind.name](const CameraError& why) {
    if (const auto self = weak.lock()) self->giveUp(id, name, why);
  };
  pending->setCancel([giveUp] { giveUp({CameraError::Reason::cancelled, {}}); });
  auto done = [lines = lines_, id, pending](Result<T> result) {
    lines->answered(id);
    pending->set(std::move(result));
  };
  RequestLines::Request request;
  request.fail = [pending](const CameraError& why) { pending->set(why); };
  request.watch = watch(withLimit(options), giveUp);
  request.send = [weak = weak_from_this(), send = std::move(send), done = std::move(done)] {
    if (const auto self = weak.lock()) self->withStack([&](CameraStack& stack) { send(stack, done); });
  };
  lines_->add(kind.row, id, std::move(request));
  return Pending<T>(pending);
}

template <class T>
std::shared_ptr<detail::SubscriptionState<T>> CameraCore::subscribe(Hub<T>& hub, const SubscriptionOptions& options) {
  auto state = makeSubscription<T>(options);
  hub.add(state);
  return state;
}

}  // namespace zel
