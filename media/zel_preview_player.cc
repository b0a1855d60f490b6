#include <ZELTarkaSDK/ZELPreviewPlayer.h>

#include <atomic>
#include <utility>

#include <ZELTarkaSDK/platform/ports.h>

#include "base/has_memory_for.h"
#include "base/mutex.h"
#include "media/adts.h"
#include "media/h264_nalu_parser.h"
#include "media/nal_unit.h"
#include "media/preview_clocks.h"
#include "media/preview_decoding.h"
#include "protocol/frame.h"

using zel::ByteView;
using zel::MutexLock;
using zel::NalType;
using zel::platform::PixelBufferRef;

namespace {

constexpr std::int32_t kShortestPreviewUnit = 6;
// Larger than any frame of the camera.
constexpr std::size_t kMostBytes = std::size_t{1} << 30;

using Unit = std::shared_ptr<orq::MediaBuffer>;

ByteView bytesOf(const Unit& unit) { return {unit->data(), static_cast<std::size_t>(unit->size())}; }

}  // namespace

struct ZELPreviewPlayer::State {
  State(const zel::platform::Ports& ports, std::function<std::int64_t()> version)
      : firewareVersion(std::move(version)), decoding(ports) {}

  bool clocksRunByFrames() const { return firewareVersion() < kFirewareVersion190; }
  void decoderVideo(const Unit& unit);
  void handleSlice(const Unit& unit, bool keyFrame);
  void decoderAudioData(ByteView frame);
  void sendParameterSets();
  std::int64_t timeOfNextSlice();
  std::shared_ptr<ZELCameraMediaDataDelegate> mediaDelegate() const;
  std::shared_ptr<ZELPixelBufferDataProtocol> pictureDelegate() const;
  struct Stream;
  void beginStream();
  void makeSpareStream();
  void endStream(const std::shared_ptr<Stream>& next);
  void show(const Stream* from, const PixelBufferRef& pixelBuffer, std::int64_t timestamp);

  const std::function<std::int64_t()> firewareVersion;
  std::weak_ptr<ZELPreviewPlayer> player;  // set when the player is created
  orq::H264NaluParser h264NaluParser;      // session thread only; a reset leaves it as it is
  zel::PreviewDecoding decoding;
  std::atomic<std::int32_t> imageWidth = 0, imageHeight = 0;

  mutable zel::Mutex clocksMutex;
  zel::PreviewClocks clocks ZEL_GUARDED_BY(clocksMutex);

  mutable zel::Mutex delegatesMutex;
  std::weak_ptr<ZELCameraMediaDataDelegate> mediaDataDelegate ZEL_GUARDED_BY(delegatesMutex);
  std::weak_ptr<ZELPixelBufferDataProtocol> pixelBufferDelegate ZEL_GUARDED_BY(delegatesMutex);

  mutable zel::Mutex dataCallBackMutex;
  PixelBufferBlock currentPixelBufferBlock ZEL_GUARDED_BY(dataCallBackMutex);
  const Stream* stream ZEL_GUARDED_BY(dataCallBackMutex) = nullptr;       // whose pictures are used
  std::shared_ptr<Stream> spareStream ZEL_GUARDED_BY(dataCallBackMutex);  // for a reset without memory
};

// Receives the pictures of one stream, until the player's next reset.
struct ZELPreviewPlayer::State::Stream final : ZELPixelBufferDataProtocol {
  explicit Stream(std::weak_ptr<ZELPreviewPlayer> receiver) : player(std::move(receiver)) {}
  void onPixelBuffer(const PixelBufferRef& pixelBuffer, std::int64_t timestamp) override {
    if (const auto kept = player.lock()) kept->state_->show(this, pixelBuffer, timestamp);
  }
  const std::weak_ptr<ZELPreviewPlayer> player;
};

void ZELPreviewPlayer::State::makeSpareStream() {
  const MutexLock lock(dataCallBackMutex);
  spareStream = std::make_shared<Stream>(player);
}

std::shared_ptr<ZELPreviewPlayer> ZELPreviewPlayer::create(const zel::platform::Ports& ports,
                                                           std::function<std::int64_t()> firewareVersion) {
  std::shared_ptr<ZELPreviewPlayer> player(
      new ZELPreviewPlayer(std::make_unique<State>(ports, std::move(firewareVersion))));
  player->state_->player = player;
  player->state_->makeSpareStream();
  player->state_->beginStream();
  return player;
}

ZELPreviewPlayer::ZELPreviewPlayer(std::unique_ptr<State> state) : state_(std::move(state)) {}

ZELPreviewPlayer::~ZELPreviewPlayer() = default;

// Video

void ZELPreviewPlayer::appendVideoBytes(ByteView bytes) {
  if (bytes.size() > kMostBytes) return;
  state_->h264NaluParser.AppendData(bytes.data(), static_cast<int>(bytes.size()),
                                    [this](const Unit& unit) { state_->decoderVideo(unit); });
}

void ZELPreviewPlayer::setLargestUnit(std::int32_t bytes) { state_->h264NaluParser.setLargestPending(bytes); }

void ZELPreviewPlayer::State::decoderVideo(const Unit& unit) {
  if (unit->size() < kShortestPreviewUnit) return;
  switch (zel::nalType(unit->data()[zel::kNalHeaderAt])) {
    case NalType::sps:
      return decoding.offerSps(bytesOf(unit));
    case NalType::pps:
      decoding.offerPps(bytesOf(unit));
      return sendParameterSets();
    case NalType::slice:
      return handleSlice(unit, false);
    case NalType::idrSlice:
      return handleSlice(unit, true);
  }
}

// Deliberate: every PPS sends the sets again, also an ignored one.
void ZELPreviewPlayer::State::sendParameterSets() {
  const zel::ParameterSets sets = decoding.sets();
  const auto delegate = mediaDelegate();
  if (!delegate || !sets.areComplete()) return;
  {
    const MutexLock lock(clocksMutex);
    clocks.parameterSetsSent = true;
  }
  delegate->onSps(sets.sps(), sets.pps());
}

// The delegate no longer uses the bytes after its call, so the length replaces the start code.
void ZELPreviewPlayer::State::handleSlice(const Unit& unit, bool keyFrame) {
  const std::int64_t time = timeOfNextSlice();
  if (const auto delegate = mediaDelegate()) delegate->onH264Nalu(bytesOf(unit), keyFrame, time);
  unit->setTimestamp(static_cast<std::uint64_t>(time));
  zel::writeLengthPrefix(unit->data(), static_cast<std::size_t>(unit->size()));
  decoding.append(unit);
}

std::int64_t ZELPreviewPlayer::State::timeOfNextSlice() {
  const bool advances = clocksRunByFrames();
  const MutexLock lock(clocksMutex);
  if (advances) clocks.advanceVideo();
  return clocks.video;
}

// Audio

void ZELPreviewPlayer::appendAudioBytes(ByteView bytes) {
  zel::forEachAdtsFrame(bytes, [this](ByteView frame) { state_->decoderAudioData(frame); });
}

void ZELPreviewPlayer::State::decoderAudioData(ByteView frame) {
  const auto delegate = mediaDelegate();
  if (frame.size() < zel::kAdtsHeader || !delegate) return;
  delegate->onAACHeader(zel::audioSpecificConfig(frame));
  const bool advances = clocksRunByFrames();
  std::int64_t time = 0;
  {
    const MutexLock lock(clocksMutex);
    if (advances) clocks.advanceAudio();
    time = clocks.audio;
  }
  if (time != 0) delegate->onAACAdts(frame.subspan(zel::kAdtsHeader), time);
}

// Pictures

void ZELPreviewPlayer::onPixelBuffer(const PixelBufferRef& pixelBuffer, std::int64_t timestamp) {
  state_->show(nullptr, pixelBuffer, timestamp);
}

// from: null for a picture without a stream. A picture of a stream that was reset during decoding sets no size and
// completes no snapshot.
void ZELPreviewPlayer::State::show(const Stream* from, const PixelBufferRef& pixelBuffer, std::int64_t timestamp) {
  PixelBufferBlock block;
  {
    const MutexLock lock(dataCallBackMutex);
    if (from != nullptr && from != stream) return;
    imageWidth.store(pixelBuffer->width(), std::memory_order_relaxed);
    imageHeight.store(pixelBuffer->height(), std::memory_order_relaxed);
    block.swap(currentPixelBufferBlock);
  }
  if (block) block(pixelBuffer);
  if (const auto delegate = pictureDelegate()) delegate->onPixelBuffer(pixelBuffer, timestamp);
}

void ZELPreviewPlayer::createSnapshot(PixelBufferBlock block) {
  const MutexLock lock(state_->dataCallBackMutex);
  state_->currentPixelBufferBlock.swap(block);  // the earlier one is destroyed after the lock, with the parameter
}

bool ZELPreviewPlayer::hasPendingSnapshot() const {
  const MutexLock lock(state_->dataCallBackMutex);
  return state_->currentPixelBufferBlock != nullptr;
}

PixelBufferRef ZELPreviewPlayer::copyNextFrame(std::int64_t* timestamp) {
  const auto picture = state_->decoding.nextPicture();
  if (!picture) return nullptr;
  if (timestamp != nullptr) *timestamp = picture->timestamp;
  return picture->pixelBuffer;
}

zel::PreviewStatistics ZELPreviewPlayer::statistics() const { return state_->decoding.statistics(); }

void ZELPreviewPlayer::resetPlayer() { state_->beginStream(); }

// A reset succeeds without memory once; after another one no picture is shown until the next.
void ZELPreviewPlayer::State::beginStream() {
  std::shared_ptr<Stream> next;
  if (!zel::hasMemoryFor([&] { next = std::make_shared<Stream>(player); })) {
    const MutexLock lock(dataCallBackMutex);
    next.swap(spareStream);
  }
  endStream(next);
}

// The old stream's pictures are ignored before the new one can begin.
void ZELPreviewPlayer::State::endStream(const std::shared_ptr<Stream>& next) {
  {
    const MutexLock lock(dataCallBackMutex);
    stream = next.get();
    imageWidth.store(0, std::memory_order_relaxed);
    imageHeight.store(0, std::memory_order_relaxed);
  }
  decoding.reset(next);
}

// Properties

std::shared_ptr<ZELCameraMediaDataDelegate> ZELPreviewPlayer::State::mediaDelegate() const {
  const MutexLock lock(delegatesMutex);
  return mediaDataDelegate.lock();
}

void ZELPreviewPlayer::setMediaDataDelegate(std::weak_ptr<ZELCameraMediaDataDelegate> delegate) {
  {
    const MutexLock lock(state_->delegatesMutex);
    state_->mediaDataDelegate = std::move(delegate);
  }
  const MutexLock lock(state_->clocksMutex);
  state_->clocks.restartAudio();
}

std::shared_ptr<ZELCameraMediaDataDelegate> ZELPreviewPlayer::mediaDataDelegate() const {
  return state_->mediaDelegate();
}

void ZELPreviewPlayer::setPixelBufferDelegate(std::weak_ptr<ZELPixelBufferDataProtocol> delegate) {
  const MutexLock lock(state_->delegatesMutex);
  state_->pixelBufferDelegate = std::move(delegate);
}

std::shared_ptr<ZELPixelBufferDataProtocol> ZELPreviewPlayer::pixelBufferDelegate() const {
  return state_->pictureDelegate();
}

std::shared_ptr<ZELPixelBufferDataProtocol> ZELPreviewPlayer::State::pictureDelegate() const {
  const MutexLock lock(delegatesMutex);
  return pixelBufferDelegate.lock();
}

std::int32_t ZELPreviewPlayer::imageWidth() const { return state_->imageWidth.load(std::memory_order_relaxed); }
std::int32_t ZELPreviewPlayer::imageHeight() const { return state_->imageHeight.load(std::memory_order_relaxed); }

void ZELPreviewPlayer::setImageWidth(std::int32_t width) { state_->imageWidth.store(width, std::memory_order_relaxed); }

void ZELPreviewPlayer::setImageHeight(std::int32_t height) {
  state_->imageHeight.store(height, std::memory_order_relaxed);
}

std::int32_t ZELPreviewPlayer::fps() const {
  const MutexLock lock(state_->clocksMutex);
  return state_->clocks.fps;
}

void ZELPreviewPlayer::setFps(std::int32_t fps) {
  const MutexLock lock(state_->clocksMutex);
  state_->clocks.fps = fps;
}

std::int64_t ZELPreviewPlayer::nextVideoTimestamp() const {
  const MutexLock lock(state_->clocksMutex);
  return state_->clocks.video;
}

std::int64_t ZELPreviewPlayer::nextAudioTimestamp() const {
  const MutexLock lock(state_->clocksMutex);
  return state_->clocks.audio;
}

void ZELPreviewPlayer::setNextVideoTimestamp(std::int64_t timestamp) {
  const MutexLock lock(state_->clocksMutex);
  state_->clocks.video = timestamp;
}

void ZELPreviewPlayer::setNextAudioTimestamp(std::int64_t timestamp) {
  const MutexLock lock(state_->clocksMutex);
  state_->clocks.audio = timestamp;
}

void ZELPreviewPlayer::synTimestamp() {
  const MutexLock lock(state_->clocksMutex);
  state_->clocks.synchronise();
}

bool ZELPreviewPlayer::isValid(std::uint8_t nalHeader) { return zel::isValidParameterSetHeader(nalHeader); }
