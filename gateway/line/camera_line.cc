#include "gateway/line/camera_line.h"

#include <algorithm>

#include <ZELTarkaSDK/WireConstants.h>

#include "protocol/catalogue.h"

namespace zel::gateway {
namespace {

using Verdict = RequestDesk::Verdict;

constexpr std::chrono::seconds kCameraLives{1};  // after a frame: hosts then see a silence soon after the line

constexpr std::uint16_t kReplyBit = 0x8000;

template <RowName name>
constexpr std::uint16_t kCode = static_cast<std::uint16_t>(kRow<name>.request);

constexpr auto kStartVideo = kCode<"registerMsgCmdStartVideo">;
constexpr auto kStopVideo = kCode<"registerMsgCmdStopVP">;
constexpr auto kSwitchSound = kCode<"registerMsgReqSwitchAudioStreamType">;
constexpr auto kSyncData = kCode<"registerMsgReqSendSyncData">;

bool isUnanswered(std::uint16_t code) {
  const auto* const row = std::ranges::find(kFamilies, UcdCode{code}, &Family::request);
  return row != std::end(kFamilies) && row->reply.form == Reply::Form::none;
}

ByteView bodyOf(const RequestDesk::Request& request) { return ByteView(request.frame).subspan(kMessageHeader); }

bool isSuccess(ByteView body) { return !body.empty() && body[0] != 0; }

std::int64_t millisecondsOf(LineTime time) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

SharedBytes messageOf(std::uint16_t code, ByteView body) { return SharedBytes::copyOf(messageFrame(code, body)); }

}  // namespace

// -- Hosts

HostId CameraLine::admit(LineTime now) {
  const HostId host = nextHost_++;
  hosts_.emplace(host, LineHost(zero_));
  now_ = now;
  return host;
}

LineHost* CameraLine::find(HostId host) {
  const auto found = hosts_.find(host);
  return found == hosts_.end() ? nullptr : &found->second;
}

void CameraLine::leave(HostId host, LineTime now) {
  now_ = now;
  LineHost* const gone = find(host);
  if (gone == nullptr) return;
  const bool ends = gone->hasPreview && !anotherHas(&LineHost::hasPreview, gone);
  const bool silences = gone->hasSound && !anotherHas(&LineHost::hasSound, gone);
  hosts_.erase(host);
  desk_.left(host, now);
  uploads_.left(host, now);
  if (stoodStill_ == host) stoodStill_.reset();
  if (ends) askOwn(kStopVideo, {}, now);
  if (silences) askOwn(kSwitchSound, ByteView(&kAudioStreamOff, 1), now);
}

// Nobody hears of its answer.
void CameraLine::askOwn(std::uint16_t code, ByteView body, LineTime now) {
  desk_.add({kNobody, code, messageFrame(code, body)}, now);
}

bool CameraLine::mayRead(HostId host) const { return toCameraBytes_ <= kMostToCamera && desk_.takesFrom(host); }

bool CameraLine::isCutOff(HostId host) {
  const LineHost* const one = find(host);
  return one != nullptr && (hosts_.at(host).queue().overflows() || stoodStill_ == host);
}

bool CameraLine::anotherHas(bool LineHost::*what, const LineHost* besides) const {
  return std::ranges::any_of(hosts_, [&](const auto& one) { return &one.second != besides && one.second.*what; });
}

void CameraLine::take(HostId id, HostFrame frame, LineTime now) {
  now_ = now;
  LineHost* const host = find(id);
  if (host == nullptr) return;
  if (frame.type == FrameType::file) {
    if (!hasFlowed_ || !uploads_.sent(id, now)) return;
    toCameraBytes_ += frame.bytes.size();
    toCamera_.push_back(std::move(frame.bytes));
    return;
  }
  if (frame.bytes.size() < kMessageHeader) return;
  const auto code = loadLittleEndian<std::uint16_t>(frame.payload().data());
  if ((code & kReplyBit) != 0) return;
  if (code == kSyncData && std::ranges::equal(frame.payload().subspan(2), dataSynchronismValue)) {
    return syncData(*host, now);
  }
  if (!hasFlowed_) return;  // there is no camera to ask yet
  const RequestDesk::Request request{id, code, std::move(frame.bytes)};
  if (isUnanswered(code)) {
    send(request);
  } else {
    desk_.add(request, now);
  }
}

// The camera's own marker begins the line, and must not come again: behind it the host's stream is the line's.
void CameraLine::syncData(LineHost& host, LineTime now) {
  constexpr std::uint8_t kDone = 1;
  if (host.isSynced()) return host.send(messageOf(kSyncData | kReplyBit, ByteView(&kDone, 1)));
  host.wantMarker();
  if (flows_) syncWaiting(now);
}

void CameraLine::syncWaiting(LineTime now) {
  constexpr std::uint8_t kDone = 1;
  Bytes bytes(dataSynchronismValue.begin(), dataSynchronismValue.end());
  const Bytes reply = messageFrame(kSyncData | kReplyBit, ByteView(&kDone, 1));
  bytes.insert(bytes.end(), reply.begin(), reply.end());
  for (auto& [id, host] : hosts_) {
    if (host.wantsMarker()) host.sync(SharedBytes::copyOf(bytes), now);
  }
}

// -- Requests whose turn has come

Verdict CameraLine::dispatch(const RequestDesk::Request& request) {
  LineHost* const host = find(request.host);
  if (request.code == kStartVideo && host != nullptr) return startPreview(*host, request);
  if (request.code == kStopVideo) return stopPreview(host, request);
  if (request.code == kSwitchSound) return switchSound(host, request);
  if (request.code == kSyncTimeRequest) clockAsked_ = now_;
  return send(request);
}

Verdict CameraLine::send(const RequestDesk::Request& request) {
  toCameraBytes_ += request.frame.size();
  toCamera_.push_back(request.frame);
  return Verdict::sent;
}

Verdict CameraLine::answer(LineHost* host, const RequestDesk::Request& request, ByteView body) {
  if (host != nullptr) host->send(messageOf(request.code | kReplyBit, body));
  return Verdict::answered;
}

Verdict CameraLine::startPreview(LineHost& host, const RequestDesk::Request& request) {
  const bool had = std::exchange(host.hasPreview, true);
  if (!anotherHas(&LineHost::previewConfirmed, &host)) {
    cache_.clear();
    host.begin();
    return send(request);
  }
  const Verdict verdict = answer(&host, request, startReply_);
  if (!had) host.join(cache_.items(), now_);
  host.previewConfirmed = true;
  return verdict;
}

Verdict CameraLine::stopPreview(LineHost* host, const RequestDesk::Request& request) {
  constexpr std::uint8_t kDone = 1;
  if (host != nullptr) {
    host->hasPreview = host->previewConfirmed = false;
    host->end();
  }
  if (anotherHas(&LineHost::hasPreview, host)) return answer(host, request, ByteView(&kDone, 1));
  cache_.clear();
  return send(request);
}

// The line's own switches off, where nobody wants sound any more.
Verdict CameraLine::switchSound(LineHost* host, const RequestDesk::Request& request) {
  constexpr std::uint8_t kDone = 1;
  const ByteView body = bodyOf(request);
  const bool turnsOn = body.size() == 1 && body[0] == kAudioStreamOn;
  const bool turnsOff = body.size() == 1 && body[0] == kAudioStreamOff;
  if (!turnsOn && !turnsOff) return send(request);
  if (host != nullptr) host->hasSound = turnsOn;
  if (anotherHas(&LineHost::hasSound, host)) return answer(host, request, ByteView(&kDone, 1));
  return send(request);
}

// -- The camera's frames

void CameraLine::takeFrame(std::uint16_t type, ByteView payload, LineTime now) {
  now_ = lastFrame_ = now;
  hasFlowed_ = true;
  if (!std::exchange(flows_, true)) syncWaiting(now);
  switch (FrameType{type}) {
    case FrameType::previewVideo:
      return takeMedia(MediaItem::Kind::video, payload, now);
    case FrameType::previewAudio:
      return takeMedia(MediaItem::Kind::audio, payload, now);
    case FrameType::timestamp:
      return takeMedia(payload.empty() || payload[0] == 0 ? MediaItem::Kind::videoTime : MediaItem::Kind::audioTime,
                       payload, now);
    case FrameType::photo:
      if (const auto host = desk_.photo(now)) {
        if (LineHost* const there = find(*host)) there->send(SharedBytes::frame(FrameType::photo, payload));
      }
      return;
    case FrameType::message:
      return takeMessage(payload, now);
    case FrameType::file:
      return takeFileReply(payload, now);
    case FrameType::registered:
    case FrameType::other:
      break;
  }
  const SharedBytes frame = SharedBytes::frame(FrameType{type}, payload);
  for (auto& [id, host] : hosts_) {
    if (host.isSynced()) host.offer(frame);
  }
}

void CameraLine::takeMessage(ByteView payload, LineTime now) {
  if (payload.size() < 2) return;
  const auto code = loadLittleEndian<std::uint16_t>(payload.data());
  if ((code & kReplyBit) != 0) return takeReply(code, payload, now);
  tellAll(SharedBytes::frame(FrameType::message, payload));
}

void CameraLine::tellAll(const SharedBytes& frame) {
  for (auto& [id, host] : hosts_) {
    if (host.isSynced()) host.send(frame);
  }
}

void CameraLine::takeReply(std::uint16_t code, ByteView payload, LineTime now) {
  const ByteView body = payload.subspan(2);
  const auto whose = desk_.whose(code);
  if (!whose && code == (kSyncData | kReplyBit)) return;  // to the line's own request
  // Before the next request is dispatched, for which this reply may make a difference.
  if (LineHost* const host = whose ? find(*whose) : nullptr) {
    noteReply(*host, static_cast<std::uint16_t>(code & ~kReplyBit), body, now);
    host->send(SharedBytes::frame(FrameType::message, payload));
  }
  desk_.noteReply(code, body, now);
}

void CameraLine::noteReply(LineHost& host, std::uint16_t request, ByteView body, LineTime now) {
  if (request == kStartVideo && isSuccess(body)) {
    host.previewConfirmed = host.hasPreview;
    startReply_.assign(body.begin(), body.end());
  } else if (request == kStartVideo) {
    host.hasPreview = host.previewConfirmed;
  } else if (request == kSwitchSound && !isSuccess(body)) {
    host.hasSound = false;
  } else if (request == kSyncTimeRequest) {
    noteClocks(host, body, now);
  }
}

// The camera has set its clock to 0, half way between request and reply. Only a whole time says so.
void CameraLine::noteClocks(LineHost& host, ByteView body, LineTime now) {
  if (body.size() < sizeof(std::int64_t)) return;
  before_ = used_;
  zero_ = millisecondsOf(clockAsked_ + (now - clockAsked_) / 2);
  host.setZero(zero_);
}

// From which zero a time counts: a camera may still have frames that it stamped before it set its clock to 0. Media are
// on their way for a moment only, so the zero is right that makes them the younger.
std::int64_t CameraLine::zeroOf(ByteView payload, LineTime now) {
  if (payload.size() < kTimestampPayload) return used_;
  const auto time = loadLittleEndian<std::uint64_t>(payload.data() + 1);
  const auto distance = [&](std::int64_t zero) {
    const auto age = static_cast<std::int64_t>(static_cast<std::uint64_t>(millisecondsOf(now)) - time -
                                               static_cast<std::uint64_t>(zero));
    return age < 0 ? ~age : age;
  };
  used_ = distance(before_) < distance(zero_) ? before_ : zero_;
  return used_;
}

//   0          2      4        6
//   +----------+------+--------+------
//   | not read | kind | status | path
//   +----------+------+--------+------
//
// Kind 2 ends an upload; so does an answer that is too short, which hosts take for a failure of all.
void CameraLine::takeFileReply(ByteView payload, LineTime now) {
  constexpr std::size_t kShortest = 6;
  constexpr std::uint16_t kUploaded = 2;
  const auto whose = uploads_.whose();
  if (!whose) return;
  if (LineHost* const host = find(*whose)) host->send(SharedBytes::frame(FrameType::file, payload));
  const bool isEnd = payload.size() < kShortest || loadLittleEndian<std::uint16_t>(payload.data() + 2) == kUploaded;
  if (isEnd) uploads_.finish(now);
}

void CameraLine::takeMedia(MediaItem::Kind kind, ByteView payload, LineTime now) {
  const bool isTime = kind == MediaItem::Kind::videoTime || kind == MediaItem::Kind::audioTime;
  FrameType type = FrameType::timestamp;
  if (!isTime) type = kind == MediaItem::Kind::video ? FrameType::previewVideo : FrameType::previewAudio;
  MediaItem item{kind, SharedBytes::frame(type, payload), false, isTime ? zeroOf(payload, now) : 0};
  if (kind == MediaItem::Kind::videoTime && payload.size() >= kTimestampPayload) time_ = item;
  const bool beginsKey = cache_.add(item);
  for (auto& [id, host] : hosts_) host.show(item, beginsKey, cache_.items());
}

// The last time of a picture, or an empty frame of sound, which is nothing to any host.
MediaItem CameraLine::signOfLife() const {
  if (time_) return *time_;
  return {MediaItem::Kind::audio, SharedBytes::frame(FrameType::previewAudio, {}), false, zero_};
}

// -- To the camera

void CameraLine::askForMarker(bool isFirst) {
  if (isFirst) {
    toCamera_.clear();
    toCameraBytes_ = begun_ = 0;
  }
  send({kNobody, kSyncData, messageFrame(kSyncData, dataSynchronismValue)});
}

ByteView CameraLine::toCamera() const {
  return toCamera_.empty() ? ByteView() : ByteView(toCamera_.front()).subspan(begun_);
}

void CameraLine::wroteToCamera(std::size_t count, LineTime now) {
  now_ = now;
  begun_ += count;
  toCameraBytes_ -= count;
  if (uploads_.whose()) uploads_.moved(now);
  while (!toCamera_.empty() && begun_ >= toCamera_.front().size()) {
    begun_ -= toCamera_.front().size();
    toCamera_.pop_front();
  }
}

// -- The time

void CameraLine::tick(LineTime now) {
  now_ = now;
  desk_.tick(now);
  if (const auto host = uploads_.tick(now)) stoodStill_ = host;
  const bool lives = flows_ && now - lastFrame_ < kCameraLives;
  const MediaItem sign = signOfLife();
  for (auto& [id, host] : hosts_) {
    host.catchUp(now);
    host.beat(sign, lives, now);
  }
}

std::optional<LineTime> CameraLine::due() const {
  std::optional<LineTime> first = desk_.due();
  const auto note = [&first](const std::optional<LineTime>& time) {
    if (time && (!first || *time < *first)) first = time;
  };
  note(uploads_.due());
  for (const auto& [id, host] : hosts_) note(host.due());
  return first;
}

}  // namespace zel::gateway
