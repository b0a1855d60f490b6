#include <ZELTarkaSDK/CameraStream.h>

#include <utility>

#include "facade/stream_run.h"

namespace zel {

CameraStream::CameraStream(std::shared_ptr<StreamRun> run) : run_(std::move(run)) {}
CameraStream::CameraStream(CameraStream&&) noexcept = default;
CameraStream& CameraStream::operator=(CameraStream&& other) noexcept {
  if (this == &other) return *this;
  if (run_) run_->stop();
  run_ = std::move(other.run_);
  return *this;
}
CameraStream::~CameraStream() {
  if (run_) run_->stop();
}

StreamHeaders CameraStream::headers() const { return run_->headers(); }
EncodedStreamStatistics CameraStream::statistics() const { return run_->statistics(); }
std::optional<std::string> CameraStream::failure() const { return run_->failure(); }
void CameraStream::stop() { run_->stop(); }
std::vector<OutputReport> CameraStream::outputs() const { return run_->outputs().reports(); }

Subscription<MediaPacket> CameraStream::packets(const SubscriptionOptions& options) {
  return Subscription<MediaPacket>(run_->packets(options));
}

std::optional<std::int64_t> CameraStream::timeOf(const Picture& picture) const { return run_->timeOf(picture.time); }

Subscription<StreamProblem> CameraStream::problems(const SubscriptionOptions& options) {
  return Subscription<StreamProblem>(run_->problems(options));
}

Result<int> CameraStream::addOutput(const std::string& address) { return run_->addOutput(address); }

Result<OutputReport> CameraStream::removeOutput(int id) {
  auto report = run_->outputs().remove(id);
  if (report) return *std::move(report);
  return CameraError{CameraError::Reason::invalid, "there is no output " + std::to_string(id)};
}

}  // namespace zel
