#include "simulator/camera_connection.h"

#include <algorithm>
#include <utility>

#include "simulator/camera_answers.h"
#include "simulator/reply_faults.h"

namespace zel::simulator {
namespace {

constexpr std::size_t kQueueForMedia = 1024 * 1024;     // queued bytes above which pictures are dropped
constexpr std::size_t kQueueForAll = 64 * 1024 * 1024;  // a host that sends requests and never reads is disconnected
constexpr double kHeartbeat = 0.5;                      // seconds
constexpr double kToFirstPicture = 0.1;                 // seconds, the delay of the camera's encoder
constexpr std::size_t kPhoneTime = 8;                   // bytes, which the camera ignores
constexpr int kPicturesBeforeFault = 20;
constexpr double kLook = 0.002;        // seconds between two reads of an external clock
constexpr double kMakingPause = 0.01;  // seconds, while the next picture is being rendered

std::chrono::steady_clock::duration steady(double seconds) {
  return std::chrono::duration_cast<std::chrono::steady_clock::duration>(std::chrono::duration<double>(seconds));
}

}  // namespace

CameraConnection::CameraConnection(Socket socket, ConnectionSetup setup)
    : socket_(std::move(socket)),
      setup_(std::move(setup)),
      source_(setup_.options.seed),
      random_(setup_.options.seed),
      clockStart_(mediaSeconds()) {}

void CameraConnection::start() {
  // The connection begins in the middle of a stream, with the rest of a frame.
  send(source_.tornFrame());
  if (setup_.options.faults.earlyMarker) sendMarker();
  receive();
  sendHeartbeats();
  if (setup_.options.faults.stall) stallEverySoOften();
}

void CameraConnection::close() {
  if (std::exchange(closed_, true)) return;
  asio::error_code ignored;
  socket_.close(ignored);
  setup_.closed();
}

void CameraConnection::beSilent(double seconds) {
  silentUntil_ = Clock::now() + steady(seconds);
  wait(steady(seconds), [this] { write(); });
}

void CameraConnection::receive() {
  socket_.async_read_some(asio::buffer(received_),
                          [self = shared_from_this()](asio::error_code error, std::size_t size) {
                            if (error || self->closed_) return self->close();
                            self->requests_.append({self->received_.data(), size});
                            while (auto frame = self->requests_.next()) self->take(std::move(*frame));
                            if (self->requests_.fault().empty()) return self->receive();
                            self->setup_.options.warn(self->requests_.fault() + "; the connection is closed");
                            self->close();
                          });
}

void CameraConnection::take(HostFrame frame) {
  if (closed_) return;
  if (const auto* request = std::get_if<HostMessage>(&frame)) return answer(*request);
  setup_.camera.take(shared_from_this(), std::get<HostFile>(std::move(frame)));
}

void CameraConnection::answer(const HostMessage& request) {
  setup_.requestSeen(request.code);
  const Faults& faults = setup_.options.faults;
  if (faults.noReply.contains(request.code)) return;
  if (faults.refuse.contains(request.code)) return reply(request.code, refusal(request.code));
  if (request.code == kSyncData) return answerSyncData(request);
  if (request.code == kSyncTime && setup_.options.identity.firmware >= kFirmwareWithClock)
    return answerSyncTime(request);
  setup_.camera.answer(shared_from_this(), request);
}

void CameraConnection::answerSyncData(const HostMessage& request) {
  if (!std::ranges::equal(request.body, kMarkerBytes)) return reply(kSyncData, {0});
  if (!markerSent_) sendMarker();
  reply(kSyncData, {1});
}

void CameraConnection::sendMarker() {
  markerSent_ = true;
  Bytes garbage(setup_.options.faults.garbage);
  for (auto& byte : garbage) byte = static_cast<std::uint8_t>(random_());
  send(std::move(garbage));
  send(copyOf(kMarkerBytes));
}

// The camera's media time starts here, so the host's offset is the time of this exchange.
void CameraConnection::answerSyncTime(const HostMessage& request) {
  if (request.body.size() != kPhoneTime) return reply(kSyncTime, refusal(kSyncTime));
  clockStart_ = mediaSeconds();
  if (media_) media_->startClock(sinceMediaBegan());
  const auto answerNow = [this] { reply(kSyncTime, packed(static_cast<std::uint64_t>(mediaTime()))); };
  if (setup_.options.faults.slowSync == 0) return answerNow();
  wait(std::chrono::milliseconds(setup_.options.faults.slowSync), answerNow);
}

void CameraConnection::reply(std::uint16_t code, Bytes body) {
  const auto late = setup_.options.faults.lateReply.find(code);
  if (late == setup_.options.faults.lateReply.end()) return sendReply(code, body);
  wait(std::chrono::milliseconds(late->second), [this, code, body = std::move(body)] { sendReply(code, body); });
}

void CameraConnection::sendReply(std::uint16_t code, const Bytes& body) {
  const Bytes whole = message(code | kReplyBit, replyAfterFaults(setup_.options.faults, code, body, random_));
  send(whole);
  if (setup_.options.faults.duplicateReply.contains(code)) send(whole);
}

void CameraConnection::startPreview(int) {
  stopPreview();
  wait(steady(kToFirstPicture), [this, preview = preview_] {
    if (preview != preview_) return;
    beginMedia();
    sendMedia(preview);
  });
}

void CameraConnection::stopPreview() {
  ++preview_;
  media_.reset();
  nextFrame_.reset();
}

std::int64_t CameraConnection::mediaTime() const {
  return static_cast<std::int64_t>((mediaSeconds() - clockStart_) * 1000);
}

// Starts with the loop's first picture, at the current size and rate. The camera's clock continues.
void CameraConnection::beginMedia() {
  const PreviewFormat format = previewFormat(setup_.camera.resolution(), setup_.options.bitrate, setup_.options.slices);
  MediaSetup media;
  media.video = setup_.media.video(format);
  media.audio = setup_.media.audio();
  media.rate = format.rate;
  media.timestamps = setup_.options.identity.firmware >= kFirmwareWithClock;
  media.faults = setup_.options.faults.media;
  media.seed = setup_.options.seed;
  mediaStart_ = mediaSeconds();
  media_.emplace(std::move(media));
  media_->startClock(-static_cast<double>(mediaTime()) / 1000);
}

void CameraConnection::sendMedia(std::uint64_t preview) {
  if (preview != preview_) return;
  const double now = sinceMediaBegan();
  for (; nextFrame_ && nextFrame_->due <= now; nextFrame_ = media_->next(now)) sendMediaFrame(*nextFrame_);
  if (!nextFrame_) nextFrame_ = media_->next(now);
  double pause = nextFrame_ ? std::max(0.0, nextFrame_->due - now) : kMakingPause;
  if (setup_.options.mediaSeconds) pause = kLook;  // an external clock has an unknown speed
  wait(steady(pause), [this, preview] { sendMedia(preview); });
}

void CameraConnection::sendMediaFrame(const MediaFrame& media) {
  if (queued_ > kQueueForMedia || (media.sound && !sound_)) return;
  send(frame(media.type, media.payload));
  if (media.type != kVideo) return;
  ++pictures_;
  if (setup_.options.faults.unknownTypes) send(source_.unknownFrame());
  if (markerSent_ && pictures_ >= kPicturesBeforeFault) sendImpossibleLengths();
}

double CameraConnection::mediaSeconds() const {
  if (setup_.options.mediaSeconds) return setup_.options.mediaSeconds();
  return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
}

void CameraConnection::sendImpossibleLengths() {
  Faults& faults = setup_.options.faults;
  if (faults.lengthZero > 0) {
    --faults.lengthZero;
    send({0, 0, 0, 0, 1, 0});
  } else if (faults.length4GiB > 0) {
    --faults.length4GiB;
    send({0xFF, 0xFF, 0xFF, 0xFF, 1, 0});
  }
}

void CameraConnection::sendHeartbeats() {
  if (!nextFrame_) {
    send(source_.heartbeat(mediaTime()));
    if (setup_.options.faults.unknownTypes) send(source_.unknownFrame());
  }
  wait(steady(kHeartbeat), [this] { sendHeartbeats(); });
}

void CameraConnection::stallEverySoOften() {
  wait(steady(setup_.options.faults.stall->every), [this] {
    beSilent(setup_.options.faults.stall->seconds);
    wait(steady(setup_.options.faults.stall->seconds), [this] { stallEverySoOften(); });
  });
}

void CameraConnection::send(Bytes bytes) {
  if (bytes.empty() || closed_) return;
  queued_ += bytes.size();
  outgoing_.push_back(std::move(bytes));
  if (queued_ > kQueueForAll) {
    setup_.options.warn("the host does not read; the connection is closed");
    return close();
  }
  write();
}

std::size_t CameraConnection::nextPiece() {
  const std::size_t left = outgoing_.front().size() - written_;
  std::size_t piece = left;
  if (setup_.options.faults.split) piece = 1 + random_() % left;
  if (setup_.options.faults.oneByteWrites) piece = 1;
  const std::uint64_t end = setup_.options.faults.disconnect;
  return end == 0 ? piece : static_cast<std::size_t>(std::min<std::uint64_t>(piece, end - bytesSent_));
}

void CameraConnection::write() {
  if (writing_ || closed_ || outgoing_.empty() || Clock::now() < silentUntil_) return;
  writing_ = true;
  const auto piece = asio::buffer(outgoing_.front().data() + written_, nextPiece());
  socket_.async_write_some(piece, [self = shared_from_this()](asio::error_code error, std::size_t size) {
    self->writing_ = false;
    if (error || self->closed_) return self->close();
    self->bytesSent_ += size;
    self->queued_ -= size;
    self->written_ += size;
    if (self->written_ == self->outgoing_.front().size()) {
      self->outgoing_.pop_front();
      self->written_ = 0;
    }
    if (self->bytesSent_ == self->setup_.options.faults.disconnect) return self->setup_.unplug();
    self->write();
  });
}

void CameraConnection::wait(Clock::duration time, std::function<void()> then) {
  const auto timer = std::make_shared<asio::steady_timer>(socket_.get_executor(), time);
  timer->async_wait([self = shared_from_this(), timer, then = std::move(then)](asio::error_code) {
    if (!self->closed_) then();
  });
}

}  // namespace zel::simulator
