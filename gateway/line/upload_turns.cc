#include "gateway/line/upload_turns.h"

#include <algorithm>

namespace zel::gateway {

bool UploadTurns::mayBegin(HostId host, LineTime now) {
  if (std::ranges::find(line_, host) == line_.end()) {
    line_.push_back(host);
    if (line_.size() == 1) moved(now);
  }
  return line_.front() == host && !isSent_;
}

void UploadTurns::moved(LineTime now) {
  if (!line_.empty()) deadline_ = now + (line_.front() == kNobody ? kLimitOfNobody : kLimit);
}

bool UploadTurns::sent(HostId host, LineTime now) {
  if (line_.empty() || line_.front() != host || isSent_) return false;
  isSent_ = true;
  moved(now);
  return true;
}

std::optional<HostId> UploadTurns::whose() const {
  if (!isSent_) return std::nullopt;
  return line_.front();
}

void UploadTurns::finish(LineTime now) {
  if (isSent_) next(now);
}

void UploadTurns::next(LineTime now) {
  isSent_ = false;
  line_.pop_front();
  moved(now);
}

void UploadTurns::left(HostId host, LineTime now) {
  const bool isFirst = !line_.empty() && line_.front() == host;
  if (isFirst && isSent_) {
    line_.front() = kNobody;
    moved(now);
  } else if (isFirst) {
    next(now);
  } else {
    std::erase(line_, host);
  }
}

std::optional<HostId> UploadTurns::tick(LineTime now) {
  if (line_.empty() || now < deadline_) return std::nullopt;
  const HostId host = line_.front();
  const bool wasSent = isSent_;
  next(now);
  if (wasSent) return std::nullopt;
  return host;
}

std::optional<LineTime> UploadTurns::due() const {
  if (line_.empty()) return std::nullopt;
  return deadline_;
}

}  // namespace zel::gateway
