#include <ZELTarkaSDK/Camera.h>
#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>

#include <utility>

#include "facade/camera_core.h"
#include "facade/captures.h"
#include "facade/operation_call.h"
#include "facade/preview.h"
#include "facade/stream_run.h"

namespace zel {

Pending<Camera> Camera::open(CameraOptions options, const RequestOptions& request) {
  return CameraCore::open(std::move(options), request);
}

Result<Camera> Camera::create(CameraOptions options) {
  auto core = CameraCore::create(std::move(options));
  if (!core) return core.error();
  return Camera(*std::move(core));
}

Pending<void> Camera::connect(const RequestOptions& request) {
  return core_ ? core_->connect(request) : nowhere<void>();
}

Camera::Camera(std::shared_ptr<CameraCore> core) { core_ = std::move(core); }

Camera& Camera::operator=(Camera&& other) noexcept {
  if (this == &other) return *this;
  if (core_) core_->close();
  core_ = std::move(other.core_);
  return *this;
}

Camera::~Camera() {
  if (core_) core_->close();
}

std::shared_ptr<const ZELAccessoryInfo> Camera::info() const { return core_ ? core_->info() : nullptr; }
LinkStatus Camera::linkStatus() const { return core_ ? core_->stack().accessory().linkStatus() : LinkStatus::closed; }
LinkStatistics Camera::statistics() const { return core_ ? core_->stack().statistics() : LinkStatistics{}; }
CameraStatistics Camera::allStatistics() const {
  return core_ ? core_->statistics().value_or(CameraStatistics{}) : CameraStatistics{};
}

Subscription<CameraStatistics> Camera::statisticsEvery(std::chrono::milliseconds interval,
                                                       const SubscriptionOptions& options) {
  if (!core_) return nothingFrom<CameraStatistics>();
  return Subscription<CameraStatistics>(core_->statisticsEvery(interval, options));
}

CameraStack& Camera::stack() { return core_->stack(); }

Pending<Photo> Camera::photo(const CaptureOptions& options, const RequestOptions& request) {
  return core_ ? takePhoto(core_, options, request) : nowhere<Photo>();
}

Pending<PhotoSeries> Camera::bracket(const std::vector<std::int8_t>& steps, const CaptureOptions& options,
                                     const RequestOptions& request) {
  return core_ ? takeBracket(core_, steps, options, request) : nowhere<PhotoSeries>();
}

Pending<void> Camera::upload(std::int64_t type, const std::string& path, const ZELData& content,
                             const std::function<void(const TransferProgress&)>& progress,
                             const RequestOptions& request) {
  return core_ ? uploadFile(core_, type, path, content, progress, request) : nowhere<void>();
}

Subscription<Picture> Camera::pictures(const PictureOptions& options) {
  return core_ ? Subscription<Picture>(core_->preview()->look(options)) : nothingFrom<Picture>();
}

Pending<CameraStream> Camera::stream(const StreamOptions& options, const RequestOptions& request) {
  return core_ ? StreamRun::start(core_, options, request) : nowhere<CameraStream>();
}

Pending<OperationReply> Camera::call(const Operation& operation, const std::vector<Operation::Value>& arguments,
                                     const RequestOptions& request) {
  return core_ ? callOperation(core_, operation, arguments, request) : nowhere<OperationReply>();
}

Result<CameraStream> Camera::beginStream(const StreamOptions& options) {
  return core_ ? StreamRun::begin(core_, options) : movedFrom();
}

Subscription<Event> Camera::events(const SubscriptionOptions& options) {
  return core_ ? Subscription<Event>(core_->subscribe(core_->events, options)) : nothingFrom<Event>();
}

Subscription<LinkStatus> Camera::linkChanges(const SubscriptionOptions& options) {
  return core_ ? Subscription<LinkStatus>(core_->subscribe(core_->linkChanges, options)) : nothingFrom<LinkStatus>();
}

}  // namespace zel
