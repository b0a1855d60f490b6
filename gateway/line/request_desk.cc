#include "gateway/line/request_desk.h"

#include <algorithm>
#include <utility>

#include "protocol/catalogue.h"
#include "protocol/frame.h"

namespace zel::gateway {
namespace {

constexpr std::uint32_t kCaptures = 0x10000;  // beside all reply codes

constexpr auto kShutter = static_cast<std::uint16_t>(kRow<"registerMsgCmdShutter">.request);
constexpr auto kShutterExtra = static_cast<std::uint16_t>(kRow<"registerMsgCmdShutterExtra">.request);
constexpr auto kShutterAEB = static_cast<std::uint16_t>(kRow<"registerMsgCmdShutterAEB">.request);

constexpr std::uint16_t replyCodeOf(std::uint16_t request) {
  return static_cast<std::uint16_t>(replyTo(UcdCode{request}));
}

bool isCapture(std::uint16_t request) {
  return request == kShutter || request == kShutterExtra || request == kShutterAEB;
}

// A bracket's count stands behind the sensor triple. A host that asked for none takes one.
int photosOf(const RequestDesk::Request& request) {
  constexpr std::size_t kCountAt = kMessageHeader + 24 + 24 + 16;
  if (request.code != kShutterAEB || request.frame.size() <= kCountAt) return 1;
  return std::max<int>(request.frame[kCountAt], 1);
}

}  // namespace

RequestDesk::Lane RequestDesk::laneOf(std::uint16_t replyCode) {
  return isCapture(replyCode & 0x7FFF) ? kCaptures : replyCode;
}

void RequestDesk::add(Request request, LineTime now) {
  Line& line = lines_[laneOf(replyCodeOf(request.code))];
  if (request.host != kNobody) ++ofHost_[request.host];
  ++ofAll_;
  line.waiting.push_back(std::move(request));
  advance(line, now);
}

bool RequestDesk::takesFrom(HostId host) const {
  const auto found = ofHost_.find(host);
  return ofAll_ < kMostOfAll && (found == ofHost_.end() || found->second < kMostOfHost);
}

// A host alone is served as by the camera itself: it may ask again before its answer.
bool RequestDesk::mayGo(const Line& line, LineTime now) const {
  if (line.waiting.empty()) return false;
  const Request& next = line.waiting.front();
  if (line.codes.empty()) return next.host == line.served || now >= line.restsUntil;
  return !isCapture(next.code) && next.host == line.host && next.host != kNobody;
}

void RequestDesk::advance(Line& line, LineTime now) {
  while (mayGo(line, now)) {
    const Request request = std::move(line.waiting.front());
    line.waiting.pop_front();
    if (owner_.dispatch(request) == Verdict::sent) {
      begin(line, request, now);
    } else {
      forget(request.host);
    }
  }
}

void RequestDesk::begin(Line& line, const Request& request, LineTime now) {
  line.host = request.host;
  line.codes.push_back(request.code);
  line.photosLeft = isCapture(request.code) ? photosOf(request) : 0;
  line.replied = false;
  setDeadline(line, now);
}

void RequestDesk::setDeadline(Line& line, LineTime now) const {
  const bool isLong = line.host != kNobody && isCapture(line.codes.front());
  line.deadline = now + (isLong ? kCaptureLimit : kReplyLimit);
}

// One request is completed, or given up.
void RequestDesk::finish(Line& line, LineTime now) {
  forget(line.host);
  line.codes.pop_front();
  line.served = line.host;
  line.restsUntil = now + rest_;
  if (!line.codes.empty()) setDeadline(line, now);
}

void RequestDesk::forget(HostId host) {
  --ofAll_;
  const auto found = ofHost_.find(host);
  if (found != ofHost_.end() && --found->second == 0) ofHost_.erase(found);
}

std::optional<HostId> RequestDesk::whose(std::uint16_t replyCode) const {
  const auto found = lines_.find(laneOf(replyCode));
  if (found == lines_.end()) return std::nullopt;
  const Line& line = found->second;
  const bool isAwaited = !line.codes.empty() && !line.replied && replyCodeOf(line.codes.front()) == replyCode;
  if (!isAwaited) return std::nullopt;
  return line.host;
}

void RequestDesk::noteReply(std::uint16_t replyCode, ByteView body, LineTime now) {
  const auto found = lines_.find(laneOf(replyCode));
  if (!whose(replyCode)) {
    rest_ = kLongRest;
    if (found != lines_.end()) found->second.restsUntil = now + rest_;
    return;
  }
  Line& line = found->second;
  if (isCapture(line.codes.front())) {
    constexpr std::size_t kShortestResult = 13;  // a time, a size, and at least the end of a name
    line.replied = true;
    if (body.size() < kShortestResult) line.photosLeft = 0;  // refused: no photo comes
    setDeadline(line, now);
    endCaptureIfDone(line, now);
  } else {
    finish(line, now);
  }
  advance(line, now);
}

std::optional<HostId> RequestDesk::photo(LineTime now) {
  const auto found = lines_.find(kCaptures);
  if (found == lines_.end() || found->second.codes.empty()) return std::nullopt;
  Line& line = found->second;
  const HostId host = line.host;
  line.photosLeft = std::max(line.photosLeft - 1, 0);
  setDeadline(line, now);
  endCaptureIfDone(line, now);
  advance(line, now);
  return host;
}

void RequestDesk::endCaptureIfDone(Line& line, LineTime now) {
  if (line.replied && line.photosLeft == 0) finish(line, now);
}

bool RequestDesk::awaitsPhoto() const {
  const auto found = lines_.find(kCaptures);
  return found != lines_.end() && !found->second.codes.empty();
}

void RequestDesk::left(HostId host, LineTime now) {
  for (auto& [lane, line] : lines_) {
    const auto waits = [host](const Request& request) { return request.host == host; };
    ofAll_ -= std::erase_if(line.waiting, waits);
    if (line.host == host && !line.codes.empty()) {
      line.host = kNobody;
      line.deadline = std::min(line.deadline, now + kReplyLimit);
    }
    if (line.served == host) line.served = kNobody;
  }
  ofHost_.erase(host);
}

void RequestDesk::tick(LineTime now) {
  for (auto& [lane, line] : lines_) {
    while (!line.codes.empty() && now >= line.deadline) {
      line.replied = false;
      finish(line, now);
    }
    advance(line, now);
  }
  std::erase_if(lines_, [now](const auto& one) {
    return one.second.codes.empty() && one.second.waiting.empty() && now >= one.second.restsUntil;
  });
}

std::optional<LineTime> RequestDesk::due() const {
  std::optional<LineTime> first;
  for (const auto& [lane, line] : lines_) {
    if (line.codes.empty() && line.waiting.empty()) continue;
    const LineTime time = line.codes.empty() ? line.restsUntil : line.deadline;
    if (!first || time < *first) first = time;
  }
  return first;
}

}  // namespace zel::gateway
