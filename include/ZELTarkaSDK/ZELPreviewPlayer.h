#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#include <ZELTarkaSDK/PreviewConsumer.h>
#include <ZELTarkaSDK/PreviewStatistics.h>
#include <ZELTarkaSDK/ZELCameraMediaDataDelegate.h>
#include <ZELTarkaSDK/ZELPixelBufferDataProtocol.h>
#include <ZELTarkaSDK/platform/export.h>

namespace zel::platform {
struct Ports;
}

// Turns the camera's preview into pictures, and hands its encoded video and audio on.
// Units:  timestamps in milliseconds.
// Owner:  the host holds it; the de-multiplexer and the decode thread know it weakly. The host's ports must outlive it
//         and its decode thread, which ends by itself shortly after the player.
// Thread: the operations of PreviewConsumer on the session thread, the rest on any thread.
class ZEL_EXPORT ZELPreviewPlayer final : public zel::PreviewConsumer, public ZELPixelBufferDataProtocol {
 public:
  using PixelBufferBlock = std::function<void(const zel::platform::PixelBufferRef&)>;

  // suitablePreviewPlayer - a new player that receives the preview of the process-wide stack, at its current
  // resolution. CameraStack::suitablePreviewPlayer() does the same for any stack.
  static std::shared_ptr<ZELPreviewPlayer> suitablePreviewPlayer();

  // init - a player that receives nothing yet. firewareVersion tells which camera it is that sends.
  static std::shared_ptr<ZELPreviewPlayer> create(const zel::platform::Ports& ports,
                                                  std::function<std::int64_t()> firewareVersion);
  ~ZELPreviewPlayer() override;
  ZELPreviewPlayer(const ZELPreviewPlayer&) = delete;
  ZELPreviewPlayer& operator=(const ZELPreviewPlayer&) = delete;

  // Receives slices, parameter sets and audio; held weakly. A new one stops the audio clock, and hears no audio before
  // it runs again.
  void setMediaDataDelegate(std::weak_ptr<ZELCameraMediaDataDelegate> delegate);
  std::shared_ptr<ZELCameraMediaDataDelegate> mediaDataDelegate() const;

  // Receives every picture; held weakly.
  void setPixelBufferDelegate(std::weak_ptr<ZELPixelBufferDataProtocol> delegate);
  std::shared_ptr<ZELPixelBufferDataProtocol> pixelBufferDelegate() const;

  // Size of the last picture, or what the resolution promises; 0 after a reset.
  std::int32_t imageWidth() const;
  std::int32_t imageHeight() const;
  void setImageWidth(std::int32_t width) override;
  void setImageHeight(std::int32_t height) override;

  // Pictures a second, by which the video clock of a camera before firmware 190 runs; 30 at first.
  std::int32_t fps() const;
  void setFps(std::int32_t fps) override;

  // Times that the next slice and the next AAC frame get.
  std::int64_t nextVideoTimestamp() const;
  std::int64_t nextAudioTimestamp() const;
  void setNextVideoTimestamp(std::int64_t timestamp) override;
  void setNextAudioTimestamp(std::int64_t timestamp) override;

  // appendVideoBytes:length: - the next bytes of the H.264 stream. A unit takes effect once the start code behind it
  // has come. The first SPS and PPS count until the player is reset.
  void appendVideoBytes(std::span<const std::uint8_t> bytes) override;

  // appendAudioBytes:length: - whole ADTS frames; what a frame lacks at the end is not waited for.
  void appendAudioBytes(std::span<const std::uint8_t> bytes) override;

  // Forgets the parameter sets and the picture's size and ends decoding, for a stream of another kind to follow. No
  // picture of the old stream comes after it: only a delivery that has begun on the decode thread still ends.
  void resetPlayer() override;

  // createSnapshot: - calls the block once, with the next picture; it replaces a block that still waits.
  // Thread: the block runs on the decode thread. It may ask for another snapshot; it must not poll.
  void createSnapshot(PixelBufferBlock block);
  // Whether a block waits (currentPixelBufferBlock).
  bool hasPendingSnapshot() const;

  // copyNextFrame: - the oldest of the latest five pictures that was not polled yet, and its time where `timestamp` is
  // given; null, and the time untouched, when there is none.
  zel::platform::PixelBufferRef copyNextFrame(std::int64_t* timestamp);

  // What has become of the encoded pictures.
  // Thread: any thread.
  zel::PreviewStatistics statistics() const;

  // onPixelBuffer:withTimesTamp: - a decoded picture.
  // Thread: decode thread.
  void onPixelBuffer(const zel::platform::PixelBufferRef& pixelBuffer, std::int64_t timestamp) override;

  // isValid: - whether a parameter set with this NAL header byte counts.
  static bool isValid(std::uint8_t nalHeader);

  // synTimestamp - sets both clocks to the later of the two.
  // Thread: session thread.
  void synTimestamp();

 private:
  struct State;
  explicit ZELPreviewPlayer(std::unique_ptr<State> state);
  const std::unique_ptr<State> state_;
};
