#include "facade/camera_core.h"

#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <fmt/format.h>

#include <algorithm>
#include <tuple>

#include "facade/events.h"
#include "facade/preview.h"
#include "facade/statistics_ticker.h"

namespace zel {
namespace {

using Reason = CameraError::Reason;

constexpr double kLateAnswer = 2;     // seconds that an answer is waited for when its caller no longer does
constexpr double kLookPeriod = 0.25;  // seconds
constexpr std::chrono::milliseconds kShortestInterval{10};

const CameraError kClosed{Reason::closed, "the camera object was destroyed"};

}  // namespace

CameraError errorOf(std::string_view name, const ZELError& error) {
  const auto made = [&](Reason reason, std::string_view why) {
    return CameraError{reason, fmt::format("{}: {}", name, why), error.domain, error.code};
  };
  switch (error.code) {
    case kZELErrorNotConnected:
      return made(Reason::lost, "the camera is not connected");
    case kZELErrorOldFirmware:
      return made(Reason::oldFirmware, "the camera's firmware is too old");
    default:
      return made(Reason::refused, "the camera refused, or its answer cannot be read");
  }
}

// Hands the camera's events on.
class CameraCore::Receiver final : public ZELCameraNotificationProtocol {
 public:
  explicit Receiver(CameraCore& core) : core_(core.weak_from_this()) {}
  void notificationType(std::int64_t type, const std::optional<ZELMessageFields>& value) override {
    const auto core = core_.lock();
    if (core) core->events.publish(eventOf(type, value));
  }

 private:
  const std::weak_ptr<CameraCore> core_;
};

CameraCore::CameraCore(CameraOptions options)
    : options_(std::move(options)), preview_(std::make_shared<Preview>(*this)) {}
CameraCore::~CameraCore() { close(); }

// -- Opening

Result<std::shared_ptr<CameraCore>> CameraCore::create(CameraOptions options) {
  auto core = std::make_shared<CameraCore>(std::move(options));
  std::string error;
  core->host_ = CameraHost::create(
      core->options_,
      [weak = core->weak_from_this()](const CameraInUse& camera) {
        if (const auto self = weak.lock()) self->noteInUse(camera);
      },
      error);
  if (!core->host_) return CameraError{Reason::platform, error};
  const platform::Ports& ports = core->host_->ports();
  core->callbacks_ = std::make_shared<CallbackQueue>(ports.queues.mainQueue(), core->options_.executor);
  core->deadlines_ = std::make_shared<Deadlines>(ports);
  core->makeStack();
  return core;
}

void CameraCore::makeStack() {
  stack_ = std::make_unique<CameraStack>(host_->ports(), options_.serialNumber);
  stack_->ucd().addCameraNotificationReceiver(std::make_shared<Receiver>(*this));
  statusObservation_ = stack_->accessory().observeStatus([weak = weak_from_this()](std::uint64_t status) {
    if (const auto self = weak.lock()) self->statusChanged(LinkStatus{status});
  });
}

Pending<Camera> CameraCore::open(CameraOptions options, const RequestOptions& request) {
  const auto made = create(std::move(options));
  if (!made) return failed<Camera>(made.error());
  const std::shared_ptr<CameraCore>& core = *made;
  const auto opening = std::make_shared<detail::PendingState<Camera>>(core->callbacks_);
  // It holds the core as long as nobody else does: the opening ends in any case.
  core->waitForFrames(*opening, request, [core, opening](const std::optional<CameraError>& why) {
    if (!why) return void(opening->set(Camera(core)));
    core->close();
    opening->set(*why);
  });
  return Pending<Camera>(opening);
}

Pending<void> CameraCore::connect(const RequestOptions& request) {
  const auto pending = std::make_shared<detail::PendingState<void>>(callbacks_);
  waitForFrames(*pending, request, [pending](const std::optional<CameraError>& why) {
    pending->set(why ? Result<void>(*why) : Result<void>());
  });
  return Pending<void>(pending);
}

void CameraCore::waitForFrames(detail::PendingBase& pending, const RequestOptions& request, Openings::Done done) {
  const Openings::Id id = openings_.add(std::move(done));
  const auto giveUp = [weak = weak_from_this(), id](const CameraError& why) {
    if (const auto self = weak.lock()) self->openings_.end(id, self->whyNotOpen(why));
  };
  pending.setCancel([giveUp] { giveUp({Reason::cancelled, {}}); });
  openings_.keep(id, watch(orLimit(request, options_.openTimeLimit), giveUp));
  // The wait may have ended meanwhile, and an opening with it: its stop was requested before, or its time is over.
  callbacks_->postToMain([weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->findCamera();
  });
}

// Again where the link was lost. A session that is open is left to send its first frame.
void CameraCore::findCamera() {
  bool isFlowing = false;
  withStack([&](CameraStack& stack) {
    if (options_.ports == nullptr) callbacks_->noteMainThread();
    const LinkStatus status = stack.accessory().linkStatus();
    isFlowing = status == LinkStatus::flowing;
    if (status == LinkStatus::closed || status == LinkStatus::silent) stack.accessory().openCamera();
  });
  if (isFlowing) openings_.endAll(std::nullopt);
  if (!std::exchange(isLooking_, true)) look();
}

// The accessory forgets it with the session.
std::shared_ptr<const ZELAccessoryInfo> CameraCore::info() {
  return info_.with([this](std::shared_ptr<const ZELAccessoryInfo>& known) {
    if (auto now = stack_->accessory().accessoryInfo()) known = std::move(now);
    return known;
  });
}

void CameraCore::statusChanged(LinkStatus status) {
  if (status == LinkStatus::flowing) static_cast<void>(info());
  linkChanges.publish(status);
  ifMemoryAllows([this, status] {
    callbacks_->postToMain([self = shared_from_this(), status] {
      if (status == LinkStatus::open) self->askForMarker();
      // First, so that whoever waited for the camera finds the preview and the stream begun again.
      self->preview_->linkChanged(status);
      if (status == LinkStatus::flowing) self->openings_.endAll(std::nullopt);
    });
  });
}

// At once, instead of with the next look of the link at itself, which is up to a second later.
void CameraCore::askForMarker() {
  withStack([](CameraStack& stack) {
    if (stack.accessory().linkStatus() != LinkStatus::open) return;
    stack.ucd().msgReqSendSyncData(ZELData(std::span<const std::uint8_t>(dataSynchronismValue)), nullptr);
  });
}

// Why no frame came within the time limit.
CameraError CameraCore::whyNotOpen(const CameraError& why) {
  if (why.reason != Reason::timeLimit) return {why.reason, "the opening was cancelled"};
  std::shared_ptr<const ZELAccessoryInfo> info;
  withStack([&](CameraStack& stack) { info = stack.accessory().accessoryInfo(); });
  if (info) return {Reason::silent, "the camera " + info->serialNumber() + " is attached but sent nothing in time"};
  const std::string which = options_.serialNumber.empty() ? "no camera" : "no camera " + options_.serialNumber;
  const std::string where = host_ ? host_->busFolder() : std::string();
  return {Reason::noCamera, which + " was attached in time" + (where.empty() ? "" : "; looked in " + where)};
}

void CameraCore::noteInUse(const CameraInUse& camera) {
  callbacks_->postToMain([weak = weak_from_this(), words = camera.inWords()] {
    const auto self = weak.lock();
    if (!self) return;
    bool hasOther = false;
    self->withStack([&](CameraStack& stack) { hasOther = stack.accessory().accessoryInfo() != nullptr; });
    if (!hasOther) self->openings_.endAll(CameraError{Reason::inUse, words});
  });
}

// -- The link is opened again

bool CameraCore::isAttached() {
  const auto accessories = host_->ports().accessories.connectedAccessories();
  return std::ranges::any_of(accessories, [&](const auto& one) {
    return options_.serialNumber.empty() || one->description().serialNumber == options_.serialNumber;
  });
}

void CameraCore::look() {
  const bool isWanted = options_.keepsLink || !openings_.areNone();
  const bool isOpen = withStack([&](CameraStack& stack) {
    const LinkStatus status = isWanted ? stack.accessory().linkStatus() : LinkStatus::flowing;
    if (!linkKeeper_.isDue(status, status == LinkStatus::closed && isAttached(), deadlines_->now())) return;
    if (options_.tell) options_.tell("the link does not heal by itself; opening the camera again");
    stack.accessory().openCamera();
  });
  if (!isOpen) return;
  deadlines_->add(deadlines_->now() + kLookPeriod, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->look();
  });
}

// -- The end

bool CameraCore::withStack(const std::function<void(CameraStack&)>& call) {
  {
    const std::lock_guard lock(mutex_);
    if (isClosed_) return false;
    ++users_;
  }
  {
    const StackUse use;
    call(*stack_);
  }
  const std::lock_guard lock(mutex_);
  if (--users_ == 0) unused_.notify_all();
  return true;
}

void CameraCore::close() {
  {
    std::unique_lock lock(mutex_);
    if (std::exchange(isClosed_, true)) return;
    unused_.wait(lock, [this] { return users_ == 0; });
  }
  openings_.endAll(kClosed);
  if (!stack_) return;
  preview_->close(kClosed);
  lines_->failAll(kClosed);
  events.end(kClosed);
  linkChanges.end(kClosed);
  statisticsTakers_.end(kClosed);
  statusObservation_.reset();
  stack_.reset();
  deadlines_->close();
  callbacks_->close();
  host_.reset();
}

// -- Statistics

std::optional<CameraStatistics> CameraCore::statistics() {
  CameraStatistics now;
  const bool isOpen = withStack([&](CameraStack& stack) {
    now.time = platform::absoluteTimeMilliseconds(stack.ports().clock);
    now.status = stack.accessory().linkStatus();
    now.clockOffset = stack.accessory().timeOffset();
    now.link = stack.statistics();
  });
  if (!isOpen) return std::nullopt;
  std::tie(now.preview, now.stream) = preview_->statistics();
  return now;
}

std::shared_ptr<detail::SubscriptionState<CameraStatistics>> CameraCore::statisticsEvery(
    std::chrono::milliseconds interval, const SubscriptionOptions& options) {
  auto state = subscribe(statisticsTakers_, options);
  if (interval < kShortestInterval) {
    state->end({Reason::invalid, "statistics: the interval is below 10 ms"});
    return state;
  }
  const auto read = [weak = weak_from_this()] {
    const auto self = weak.lock();
    return self ? self->statistics() : std::nullopt;
  };
  auto ticker = std::make_shared<StatisticsTicker>(deadlines_, read, interval, state);
  ticker->wait(deadlines_->now());
  state->setRelease([ticker = std::move(ticker)]() mutable { ticker.reset(); });
  return state;
}

// -- Requests

void CameraCore::giveUp(const RequestKind& kind, RequestLines::Id id, const CameraError& why) {
  CameraError told = why;
  const bool isLate = why.reason == Reason::timeLimit;
  told.message = fmt::format("{}: {}", kind.name, isLate ? "the camera did not answer in time" : "cancelled");
  if (!lines_->giveUp(kind.row, id, told)) return;
  deadlines_->add(deadlines_->now() + kLateAnswer, [lines = lines_, row = kind.row, id] { lines->answered(row, id); });
}

std::shared_ptr<void> CameraCore::watch(const RequestOptions& options, std::function<void(CameraError)> giveUp) {
  return watchWhileMoving(options, std::move(giveUp), nullptr);
}

std::shared_ptr<void> CameraCore::watchWhileMoving(const RequestOptions& options,
                                                   std::function<void(CameraError)> giveUp,
                                                   const std::shared_ptr<const Movement>& moved) {
  return Watch::create(deadlines_, callbacks_, options, std::move(giveUp), moved);
}

}  // namespace zel
