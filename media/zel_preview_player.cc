#include <ZELTarkaSDK/ZELPreviewPlayer.h>

#include <utility>

#include <ZELTarkaSDK/platform/ports.h>

#include "base/has_memory_for.h"
#include "base/shared_value.h"
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
  void decoderVideo(const Unit& unit) {
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

  // The delegate no longer uses the bytes after its call, so the length replaces the start code.
  void handleSlice(const Unit& unit, bool keyFrame) {
    const bool advances = clocksRunByFrames();
    const std::int64_t time = clocks.with([advances](zel::PreviewClocks& all) {
      if (advances) all.advanceVideo();
      return all.video;
    });
    if (const auto delegate = mediaDataDelegate.get().lock()) delegate->onH264Nalu(bytesOf(unit), keyFrame, time);
    unit->setTimestamp(static_cast<std::uint64_t>(time));
    zel::writeLengthPrefix(unit->data(), static_cast<std::size_t>(unit->size()));
    decoding.append(unit);
  }

  void decoderAudioData(ByteView frame) {
    const auto delegate = mediaDataDelegate.get().lock();
    if (frame.size() < zel::kAdtsHeader || !delegate) return;
    delegate->onAACHeader(zel::audioSpecificConfig(frame));
    const bool advances = clocksRunByFrames();
    const std::int64_t time = clocks.with([advances](zel::PreviewClocks& all) {
      if (advances) all.advanceAudio();
      return all.audio;
    });
    if (time != 0) delegate->onAACAdts(frame.subspan(zel::kAdtsHeader), time);
  }

  // Deliberate: every PPS sends the sets again, also an ignored one.
  void sendParameterSets() {
    const zel::ParameterSets sets = decoding.sets();
    const auto delegate = mediaDataDelegate.get().lock();
    if (!delegate || !sets.areComplete()) return;
    clocks.set(&zel::PreviewClocks::parameterSetsSent, true);
    delegate->onSps(sets.sps(), sets.pps());
  }

  // Receives the pictures of one stream, until the player's next reset.
  struct Stream final : ZELPixelBufferDataProtocol {
    explicit Stream(std::weak_ptr<ZELPreviewPlayer> receiver) : player(std::move(receiver)) {}
    void onPixelBuffer(const PixelBufferRef& pixelBuffer, std::int64_t timestamp) override {
      if (const auto kept = player.lock()) kept->state_->show(this, pixelBuffer, timestamp);
    }
    const std::weak_ptr<ZELPreviewPlayer> player;
  };

  // A reset succeeds without memory once; after another one no picture is shown until the next.
  void beginStream() {
    std::shared_ptr<Stream> next;
    if (!zel::hasMemoryFor([&] { next = std::make_shared<Stream>(player); })) {
      const MutexLock lock(dataCallBackMutex);
      next.swap(spareStream);
    }
    endStream(next);
  }

  // The old stream's pictures are ignored before the new one can begin.
  void endStream(const std::shared_ptr<Stream>& next) {
    {
      const MutexLock lock(dataCallBackMutex);
      stream = next.get();
      imageWidth.set(0);
      imageHeight.set(0);
    }
    decoding.reset(next);
  }

  // from: null for a picture without a stream. A picture of a stream that was reset during decoding sets no size and
  // completes no snapshot.
  void show(const Stream* from, const PixelBufferRef& pixelBuffer, std::int64_t timestamp) {
    PixelBufferBlock block;
    {
      const MutexLock lock(dataCallBackMutex);
      if (from != nullptr && from != stream) return;
      imageWidth.set(pixelBuffer->width());
      imageHeight.set(pixelBuffer->height());
      block.swap(currentPixelBufferBlock);
    }
    if (block) block(pixelBuffer);
    if (const auto delegate = pixelBufferDelegate.get().lock()) delegate->onPixelBuffer(pixelBuffer, timestamp);
  }

  const std::function<std::int64_t()> firewareVersion;
  std::weak_ptr<ZELPreviewPlayer> player;  // set when the player is created
  orq::H264NaluParser h264NaluParser;      // session thread only; a reset leaves it as it is
  zel::PreviewDecoding decoding;
  zel::Relaxed<std::int32_t> imageWidth = 0, imageHeight = 0;

  zel::Guarded<zel::PreviewClocks> clocks;
  zel::Guarded<std::weak_ptr<ZELCameraMediaDataDelegate>> mediaDataDelegate;
  zel::Guarded<std::weak_ptr<ZELPixelBufferDataProtocol>> pixelBufferDelegate;

  mutable zel::Mutex dataCallBackMutex;
  PixelBufferBlock currentPixelBufferBlock ZEL_GUARDED_BY(dataCallBackMutex);
  const Stream* stream ZEL_GUARDED_BY(dataCallBackMutex) = nullptr;       // whose pictures are used
  std::shared_ptr<Stream> spareStream ZEL_GUARDED_BY(dataCallBackMutex);  // for a reset without memory
};

std::shared_ptr<ZELPreviewPlayer> ZELPreviewPlayer::create(const zel::platform::Ports& ports,
                                                           std::function<std::int64_t()> firewareVersion) {
  std::shared_ptr<ZELPreviewPlayer> player(
      new ZELPreviewPlayer(std::make_unique<State>(ports, std::move(firewareVersion))));
  State& state = *player->state_;
  state.player = player;
  {
    const MutexLock lock(state.dataCallBackMutex);
    state.spareStream = std::make_shared<State::Stream>(player);
  }
  state.beginStream();
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

// Audio

void ZELPreviewPlayer::appendAudioBytes(ByteView bytes) {
  zel::forEachAdtsFrame(bytes, [this](ByteView frame) { state_->decoderAudioData(frame); });
}

// Pictures

void ZELPreviewPlayer::onPixelBuffer(const PixelBufferRef& pixelBuffer, std::int64_t timestamp) {
  state_->show(nullptr, pixelBuffer, timestamp);
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

// Properties

void ZELPreviewPlayer::setMediaDataDelegate(std::weak_ptr<ZELCameraMediaDataDelegate> delegate) {
  state_->mediaDataDelegate.set(std::move(delegate));
  state_->clocks.with([](zel::PreviewClocks& clocks) { clocks.restartAudio(); });
}

std::shared_ptr<ZELCameraMediaDataDelegate> ZELPreviewPlayer::mediaDataDelegate() const {
  return state_->mediaDataDelegate.get().lock();
}

void ZELPreviewPlayer::setPixelBufferDelegate(std::weak_ptr<ZELPixelBufferDataProtocol> delegate) {
  state_->pixelBufferDelegate.set(std::move(delegate));
}

std::shared_ptr<ZELPixelBufferDataProtocol> ZELPreviewPlayer::pixelBufferDelegate() const {
  return state_->pixelBufferDelegate.get().lock();
}

std::int32_t ZELPreviewPlayer::imageWidth() const { return state_->imageWidth.get(); }
std::int32_t ZELPreviewPlayer::imageHeight() const { return state_->imageHeight.get(); }
void ZELPreviewPlayer::setImageWidth(std::int32_t width) { state_->imageWidth.set(width); }
void ZELPreviewPlayer::setImageHeight(std::int32_t height) { state_->imageHeight.set(height); }

std::int32_t ZELPreviewPlayer::fps() const { return state_->clocks.get(&zel::PreviewClocks::fps); }
void ZELPreviewPlayer::setFps(std::int32_t fps) { state_->clocks.set(&zel::PreviewClocks::fps, fps); }

std::int64_t ZELPreviewPlayer::nextVideoTimestamp() const { return state_->clocks.get(&zel::PreviewClocks::video); }
std::int64_t ZELPreviewPlayer::nextAudioTimestamp() const { return state_->clocks.get(&zel::PreviewClocks::audio); }

void ZELPreviewPlayer::setNextVideoTimestamp(std::int64_t timestamp) {
  state_->clocks.set(&zel::PreviewClocks::video, timestamp);
}

void ZELPreviewPlayer::setNextAudioTimestamp(std::int64_t timestamp) {
  state_->clocks.set(&zel::PreviewClocks::audio, timestamp);
}

void ZELPreviewPlayer::synTimestamp() {
  state_->clocks.with([](zel::PreviewClocks& clocks) { clocks.synchronise(); });
}

bool ZELPreviewPlayer::isValid(std::uint8_t nalHeader) { return zel::isValidParameterSetHeader(nalHeader); }
