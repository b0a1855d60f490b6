#include "gateway/line/shared_camera.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <ZELTarkaSDK/WireConstants.h>

#include "base/has_memory_for.h"

namespace zel::gateway {
namespace {

using platform::StreamEvent;

constexpr std::size_t kReadBuffer = 256 * 1024;  // as much as a socket holds
constexpr std::size_t kMostHosts = 256;
constexpr int kReadsPerTurn = 8;                            // so that other cameras and hosts have theirs
constexpr std::uint32_t kLongestFrame = 16u * 1024 * 1024;  // besides photos
constexpr std::chrono::milliseconds kLookPeriod{500};
constexpr std::chrono::seconds kMarkerPeriod{1};
// As a link has it by itself: 3 s without a frame are silence, and a new session gets 5 s. A camera that stalls for
// less than 5 s goes on with all its hosts.
constexpr std::chrono::seconds kSilence{3}, kPatience{5};

LineTime clockNow() { return std::chrono::steady_clock::now(); }

}  // namespace

SharedCamera::SharedCamera(const platform::Ports& ports, std::shared_ptr<platform::LinuxRunLoop> loop,
                           std::function<void(LineState)> stateChanged)
    : ports_(ports),
      loop_(std::move(loop)),
      stateChanged_(std::move(stateChanged)),
      buffer_(kReadBuffer),
      line_(std::make_unique<CameraLine>()),
      timer_(loop_->context()) {}

SharedCamera::~SharedCamera() = default;

// -- The session

void SharedCamera::arrived(std::shared_ptr<platform::Accessory> accessory, bool isReturn) {
  if (isClosed_ || accessory_) return;
  accessory_ = std::move(accessory);
  nextLook_ = clockNow() + kLookPeriod;
  setState(LineState::opening);
  if (isReturn) {
    opened(ports_.accessories.openSession(accessory_, kAccessoryProtocol));
  } else {
    open();
  }
  arm();
}

void SharedCamera::departed(const std::shared_ptr<platform::Accessory>& accessory) {
  if (accessory_ != accessory) return;
  accessory_ = nullptr;
  closeSession();
  endHosts();  // also those that still waited for frames
  setState(LineState::absent);
}

void SharedCamera::close() {
  isClosed_ = true;
  accessory_ = nullptr;
  closeSession();
  endHosts();
  timer_.cancel();
}

// On a worker, since the camera's end may not answer for a while.
void SharedCamera::open() {
  isOpening_ = true;
  ports_.queues.globalQueue().post([self = shared_from_this(), accessory = accessory_] {
    const auto session = std::make_shared<std::unique_ptr<platform::AccessorySession>>(
        self->ports_.accessories.openSession(accessory, kAccessoryProtocol));
    self->loop_->perform([self, accessory, session] {
      self->isOpening_ = false;
      if (self->accessory_ == accessory) self->opened(std::move(*session));
      session->reset();
    });
  });
}

// Where it could not be opened, it is tried again with a later look.
void SharedCamera::opened(std::unique_ptr<platform::AccessorySession> session) {
  if (!session) return setState(LineState::absent);
  session_ = std::move(session);
  FrameSink& sink = *this;  // a private base
  cutter_ = std::make_unique<FrameCutter>(sink, statistics_);
  cutter_->setLongestFrame(kLongestFrame);
  cutter_->setNeedsMarker(true);
  hasMarker_ = isLost_ = false;
  now_ = lastFrame_ = lastMarker_ = clockNow();
  setState(LineState::opening);
  for (platform::Stream* stream : {static_cast<platform::Stream*>(&session_->inputStream()),
                                   static_cast<platform::Stream*>(&session_->outputStream())}) {
    stream->setDelegate(weak_from_this());
    stream->scheduleInRunLoop(*loop_);
    stream->open();
  }
  line_->askForMarker(true);
  serveAll();
}

void SharedCamera::closeSession() {
  if (session_) session_->letGo();
  session_.reset();
  if (!line_->hasFlowed()) return;
  endHosts();
  line_ = std::make_unique<CameraLine>();
}

void SharedCamera::reopen() {
  closeSession();
  setState(LineState::opening);
  if (accessory_ && !isOpening_) open();
}

void SharedCamera::streamHandleEvent(platform::Stream&, StreamEvent event) {
  if (!session_) return;
  switch (event) {
    case StreamEvent::hasBytesAvailable:
      if (!hasMemoryFor([this] { read(); })) isLost_ = true;
      break;
    case StreamEvent::hasSpaceAvailable:
      break;
    case StreamEvent::errorOccurred:
      isLost_ = true;
      break;
    case StreamEvent::endEncountered:  // the manager announces the departure
      closeSession();
      return setState(LineState::absent);
    case StreamEvent::openCompleted:
      return;
  }
  if (isLost_) return reopen();
  serveAll();
}

void SharedCamera::read() {
  now_ = clockNow();
  platform::InputStream& input = session_->inputStream();
  for (int reads = 0; reads < kReadsPerTurn && !isLost_ && input.hasBytesAvailable(); ++reads) {
    const std::ptrdiff_t count = input.read(buffer_);
    if (count < 1) break;
    cutter_->cut(ByteView(buffer_).first(static_cast<std::size_t>(count)));
    // The cutter leaves what follows the marker for another call.
    if (std::exchange(hasMarker_, false) && !isLost_) cutter_->cut();
  }
}

void SharedCamera::takeFrame(std::uint16_t type, ByteView payload) {
  lastFrame_ = now_;
  line_->takeFrame(type, payload, now_);
}

void SharedCamera::writeToCamera() {
  if (!session_) return;
  platform::OutputStream& output = session_->outputStream();
  for (ByteView bytes = line_->toCamera(); !bytes.empty() && output.hasSpaceAvailable(); bytes = line_->toCamera()) {
    const std::ptrdiff_t count = output.write(bytes);
    if (count < 1) return;
    line_->wroteToCamera(static_cast<std::size_t>(count), clockNow());
  }
}

// -- The hosts

void SharedCamera::admit(platform::UniqueDescriptor descriptor) {
  if (isClosed_ || !accessory_ || hosts_.size() >= kMostHosts) return;
  const auto moved = [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->serveAll();
  };
  const auto host = std::make_shared<HostSocket>(std::move(descriptor), loop_, *line_, buffer_, moved);
  if (host->start()) hosts_.push_back(host);
  arm();
}

// A socket that waits is kept by its wait: it is told.
void SharedCamera::endHosts() {
  for (const auto& host : std::exchange(hosts_, {})) host->end();
}

// What one host brings may be for the camera and for others, and make room for a third.
void SharedCamera::serveAll() {
  serveAgain_ = true;
  if (std::exchange(isServing_, true)) return;
  while (std::exchange(serveAgain_, false)) {
    writeToCamera();
    const LineTime now = clockNow();
    for (const auto& host : std::vector(hosts_)) host->serve(now);
    const std::size_t gone = std::erase_if(hosts_, [](const auto& host) { return host->isGone(); });
    writeToCamera();
    if (gone != 0) serveAgain_ = true;
  }
  isServing_ = false;
  arm();
}

// -- The time

void SharedCamera::arm() {
  if (isClosed_) return;
  const LineTime due = std::min(line_->due().value_or(nextLook_), nextLook_);
  if (armed_ && *armed_ <= due) return;
  armed_ = due;
  timer_.expires_at(due);
  timer_.async_wait(loop_->handler([weak = weak_from_this()](const std::error_code& error) {
    const auto self = weak.lock();
    if (self && !error) self->timer();
  }));
}

void SharedCamera::timer() {
  armed_.reset();
  const LineTime now = clockNow();
  if (now >= nextLook_) {
    nextLook_ = now + kLookPeriod;
    lookAtSilence();
  }
  line_->tick(now);
  serveAll();
}

void SharedCamera::lookAtSilence() {
  const LineTime now = clockNow();
  if (!session_) {
    if (accessory_ && accessory_->isConnected() && !isOpening_) open();
    return;
  }
  const auto silence = now - lastFrame_;
  if (silence > kPatience) return reopen();
  if (line_->hasFlowed()) {
    if (silence <= kSilence) return setState(LineState::streaming);
    line_->noteSilence();
    setState(LineState::silent);
  } else if (cutter_->needsMarker() && now - lastMarker_ >= kMarkerPeriod) {
    lastMarker_ = now;
    line_->askForMarker(false);
  }
}

void SharedCamera::setState(LineState state) {
  if (std::exchange(state_, state) != state) stateChanged_(state);
}

}  // namespace zel::gateway
