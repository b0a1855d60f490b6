#include "bindings/gstreamer/camera_run.h"

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/WireConstants.h>
#include <ZELTarkaSDK/platform/ports.h>

#include <system_error>
#include <utility>

#include "bindings/gstreamer/messages.h"

namespace zel::gst {
namespace {

using Reason = CameraError::Reason;
using std::chrono::milliseconds;

// Between the threads of the camera and its callbacks.
constexpr std::size_t kMostWaitingPackets = 512, kMostWaitingPictures = 4;

constexpr const char* kLost = "the camera was lost; the stream waits for it";

}  // namespace

CameraRun::CameraRun(GstElement& element, Settings settings)
    : element_(element), settings_(std::move(settings)), pads_(element, settings_) {}

CameraRun::~CameraRun() { end(); }

bool CameraRun::start() {
  try {
    thread_ = std::jthread([this](const std::stop_token& stop) { run(stop); });
    return true;
  } catch (const std::system_error&) {
    return false;
  }
}

void CameraRun::requestStop() {
  thread_.request_stop();
  pads_.flush();
}

void CameraRun::end() {
  requestStop();
  if (thread_.joinable()) thread_.join();
  pads_.stop();
  panoramas_.reset();
  camera_.reset();
}

void CameraRun::run(const std::stop_token& stop) {
  const auto why = open(stop);
  if (why && !stop.stop_requested()) endWith({*why});
  if (!why) supervise(stop);
  close();
}

// -- Opening

std::optional<CameraError> CameraRun::open(const std::stop_token& stop) {
  CameraOptions options;
  options.serialNumber = settings_.serialNumber;
  options.openTimeLimit = milliseconds(settings_.openTimeout);
  options.accessoriesFolder = settings_.folder;
  options.direct = settings_.direct;
  options.program = "zelcamsrc";
  options.decoderThreads = static_cast<int>(settings_.decoderThreads);
  options.warn = [this](const std::string& words) { postWarning(element_, words); };
  auto camera = Camera::open(std::move(options), {.stop = stop}).get();
  if (!camera) return camera.error();
  camera_.emplace(*std::move(camera));
  if (auto why = preparePanoramas(stop)) return why;
  if (auto why = startStream(stop)) return why;
  return showPads(stop);
}

std::optional<CameraError> CameraRun::preparePanoramas(const std::stop_token& stop) {
  if (settings_.output != Output::stitched) return std::nullopt;
  panoramas_ = std::make_unique<Panoramas>(*camera_->stack().ports().mediaLibrary, settings_);
  if (panoramas_->canStitch()) return askForOffset(stop);
  return CameraError{Reason::invalid, "there are no panoramas of " + std::to_string(settings_.width) + " x " +
                                          std::to_string(settings_.height) + " pixels; both sides must be even"};
}

std::optional<CameraError> CameraRun::askForOffset(const std::stop_token& stop) {
  const auto offset = camera_->lensOffset(kMediaOffsetOfCamera, settings_.resolution, {.stop = stop}).get();
  if (!offset) return offset.error();
  panoramas_->setOffset(offset->value_or(""));
  return std::nullopt;
}

// Pictures are looked at before the stream has begun, so that its first key picture is decoded.
std::optional<CameraError> CameraRun::startStream(const std::stop_token& stop) {
  StreamOptions options;
  options.resolution = settings_.resolution;
  options.startTimeLimit = milliseconds(settings_.startTimeout);
  options.tell = [this](const std::string& words) { postWarning(element_, words); };
  auto starting = camera_->stream(options, {.stop = stop});
  if (settings_.output != Output::camera) {
    subscriptions_.pictures = camera_->pictures({settings_.resolution, {.capacity = kMostWaitingPictures}});
    subscriptions_.pictures->each([this](const Picture& picture) { onPicture(picture); });
  }
  auto stream = starting.get();
  if (!stream) return stream.error();
  {
    const std::lock_guard lock(mutex_);
    stream_.emplace(*std::move(stream));
  }
  watchForProblems();
  return std::nullopt;
}

std::optional<CameraError> CameraRun::showPads(const std::stop_token& stop) {
  if (auto why = awaitPicture(stop)) return why;
  platform::PixelBufferRef picture;
  {
    const std::lock_guard lock(mutex_);
    picture = std::exchange(firstPicture_, nullptr);
  }
  if (panoramas_ && !(picture = panoramas_->stitched(picture))) return panoramas_->failure();
  pads_.show(stream_->headers(), picture, panoramas_.get());
  isShown_ = true;
  subscriptions_.packets = stream_->packets({.capacity = kMostWaitingPackets});
  subscriptions_.packets->each([this](const MediaPacket& packet) { onPacket(packet); });
  return std::nullopt;
}

// A camera may be lost from the stream's first picture on, which is before anybody can be told.
void CameraRun::watchForProblems() {
  subscriptions_.problems = stream_->problems();
  subscriptions_.problems->each([this](const StreamProblem& problem) { onProblem(problem.error); });
  const LinkStatus now = camera_->linkStatus();
  if (now == LinkStatus::closed || now == LinkStatus::open) onProblem({Reason::lost, kLost});
}

// The caps of pictures are known with the first one only.
std::optional<CameraError> CameraRun::awaitPicture(const std::stop_token& stop) {
  if (settings_.output == Output::camera) return std::nullopt;
  std::unique_lock lock(mutex_);
  const bool isThere =
      changed_.wait_for(lock, stop, milliseconds(settings_.startTimeout), [this] { return firstPicture_ != nullptr; });
  if (isThere) return std::nullopt;
  return CameraError{Reason::media, "the stream did not start: no picture could be decoded"};
}

// -- What comes

void CameraRun::onPacket(const MediaPacket& packet) {
  if (packet.discontinuity) {
    const std::lock_guard lock(mutex_);
    isBack_ = std::exchange(isLost_, false) || isBack_;
    if (isBack_) patience_.reset();
    changed_.notify_all();
  }
  pads_.packet(packet);
}

void CameraRun::onPicture(const Picture& picture) {
  if (isShown_) {
    if (const auto time = stream_->timeOf(picture)) pads_.picture(picture.pixels, *time);
    return;
  }
  const std::lock_guard lock(mutex_);
  firstPicture_ = picture.pixels;
  changed_.notify_all();
}

void CameraRun::onProblem(const CameraError& problem) {
  const std::lock_guard lock(mutex_);
  const bool isLoss = problem.reason == Reason::lost, waits = isLoss && settings_.onLoss == OnLoss::wait;
  if (isLoss && std::exchange(isLost_, true)) return;  // is known
  losses_ += isLoss ? 1 : 0;
  problems_.push_back({problem, !waits});
  if (waits && settings_.lossTimeout > 0) patience_ = Clock::now() + milliseconds(settings_.lossTimeout);
  changed_.notify_all();
}

// -- While it runs

void CameraRun::supervise(const std::stop_token& stop) {
  while (const auto problem = nextProblem(stop)) {
    if (problem->isEnd) return endWith(*problem);
    postWarning(element_, problem->error);
  }
}

std::optional<CameraRun::Problem> CameraRun::nextProblem(const std::stop_token& stop) {
  std::unique_lock lock(mutex_);
  const auto isNew = [this] { return !problems_.empty() || isBack_; };
  while (!stop.stop_requested()) {
    if (!problems_.empty()) {
      const Problem problem = std::move(problems_.front());
      problems_.pop_front();
      return problem;
    }
    if (std::exchange(isBack_, false)) {
      lock.unlock();
      goOn(stop);
      lock.lock();
    } else if (!patience_) {
      changed_.wait(lock, stop, [&] { return isNew() || patience_; });
    } else if (!changed_.wait_until(lock, stop, *patience_, isNew) && patience_ && Clock::now() >= *patience_) {
      return Problem{{Reason::lost, "the camera was lost, and did not come back within " +
                                        std::to_string(settings_.lossTimeout) + " milliseconds"}};
    }
  }
  return std::nullopt;
}

// Another camera may have come in its place.
void CameraRun::goOn(const std::stop_token& stop) {
  postInfo(element_, "the camera is back");
  if (!panoramas_) return;
  if (const auto why = askForOffset(stop); why && !stop.stop_requested()) postWarning(element_, *why);
}

void CameraRun::endWith(const Problem& problem) {
  const bool isComplete = problem.error.reason == Reason::lost && settings_.onLoss == OnLoss::eos;
  isComplete ? postWarning(element_, problem.error) : postError(element_, problem.error);
  pads_.end();
}

// Callbacks end first, outside the lock, which they take.
void CameraRun::close() {
  subscriptions_ = {};
  std::optional<CameraStream> stream;
  {
    const std::lock_guard lock(mutex_);
    if (stream_) last_ = stream_->statistics();
    stream.swap(stream_);
  }
  stream.reset();
}

GstStructure* CameraRun::statistics() const {
  const std::lock_guard lock(mutex_);
  const EncodedStreamStatistics now = stream_ ? stream_->statistics() : last_;
  return gst_structure_new("zelcam-stats", "pictures", G_TYPE_UINT64, now.pictures, "audio-frames", G_TYPE_UINT64,
                           now.audioFrames, "video-bytes", G_TYPE_UINT64, now.videoBytes, "audio-bytes", G_TYPE_UINT64,
                           now.audioBytes, "dropped-video", G_TYPE_UINT64, pads_.droppedVideo(), "dropped-audio",
                           G_TYPE_UINT64, pads_.droppedAudio(), "losses", G_TYPE_UINT64, losses_, nullptr);
}

}  // namespace zel::gst
