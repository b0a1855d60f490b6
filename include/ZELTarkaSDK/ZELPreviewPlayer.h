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

// Decodes the camera's preview into pictures, and delivers its encoded video and audio.
// Units:  timestamps in milliseconds.
// Owner:  the host owns it; the de-multiplexer and the decode thread hold weak references. The ports must outlive the
//         player and its decode thread, which ends by itself shortly after the player.
// Thread: the operations of PreviewConsumer on the session thread, the rest on any thread.
class ZEL_EXPORT ZELPreviewPlayer final : public zel::PreviewConsumer, public ZELPixelBufferDataProtocol {
 public:
  using PixelBufferBlock = std::function<void(const zel::platform::PixelBufferRef&)>;

  // suitablePreviewPlayer - a new player that receives the preview of the process-wide stack, at its current
  // resolution. CameraStack::suitablePreviewPlayer() does the same for any stack.
  static std::shared_ptr<ZELPreviewPlayer> suitablePreviewPlayer();

  // init - a player that receives nothing yet. firewareVersion returns the sending camera's firmware version.
  static std::shared_ptr<ZELPreviewPlayer> create(const zel::platform::Ports& ports,
                                                  std::function<std::int64_t()> firewareVersion);
  ~ZELPreviewPlayer() override;
  ZELPreviewPlayer(const ZELPreviewPlayer&) = delete;
  ZELPreviewPlayer& operator=(const ZELPreviewPlayer&) = delete;

  // Receives slices, parameter sets and audio; held weakly. A new delegate stops the audio clock, and receives no audio
  // until the clock runs again.
  void setMediaDataDelegate(std::weak_ptr<ZELCameraMediaDataDelegate> delegate);
  std::shared_ptr<ZELCameraMediaDataDelegate> mediaDataDelegate() const;

  // Receives every picture; held weakly.
  void setPixelBufferDelegate(std::weak_ptr<ZELPixelBufferDataProtocol> delegate);
  std::shared_ptr<ZELPixelBufferDataProtocol> pixelBufferDelegate() const;

  // Drops an H.264 unit that grows beyond so many bytes before its end comes; 64 MiB at first.
  // Thread: any thread, before the player receives.
  void setLargestUnit(std::int32_t bytes);

  // Size of the last picture, or that of the resolution code; 0 after a reset.
  std::int32_t imageWidth() const;
  std::int32_t imageHeight() const;
  void setImageWidth(std::int32_t width) override;
  void setImageHeight(std::int32_t height) override;

  // Pictures a second, for the video clock of cameras before firmware 190; 30 at first.
  std::int32_t fps() const;
  void setFps(std::int32_t fps) override;

  // Timestamps of the next slice and the next AAC frame.
  std::int64_t nextVideoTimestamp() const;
  std::int64_t nextAudioTimestamp() const;
  void setNextVideoTimestamp(std::int64_t timestamp) override;
  void setNextAudioTimestamp(std::int64_t timestamp) override;

  // appendVideoBytes:length: - the next bytes of the H.264 stream. A NAL unit is processed once the start code after it
  // has arrived. The first SPS and PPS are used until the player is reset.
  void appendVideoBytes(std::span<const std::uint8_t> bytes) override;

  // appendAudioBytes:length: - whole ADTS frames; a frame that is cut off at the end is dropped.
  void appendAudioBytes(std::span<const std::uint8_t> bytes) override;

  // Clears the parameter sets and the picture size and ends decoding, for a stream of another format. No picture of the
  // old stream follows, except a delivery in progress on the decode thread.
  void resetPlayer() override;

  // createSnapshot: - calls the block once, with the next picture; it replaces a pending block.
  // Thread: the block runs on the decode thread. It may request another snapshot; it must not poll.
  void createSnapshot(PixelBufferBlock block);
  // Whether a block is pending (currentPixelBufferBlock).
  bool hasPendingSnapshot() const;

  // copyNextFrame: - the oldest of the latest five pictures that was not polled yet, and its time when `timestamp` is
  // not null. Null when there is none; `timestamp` is then unchanged.
  zel::platform::PixelBufferRef copyNextFrame(std::int64_t* timestamp);

  // Counters of the encoded pictures.
  // Thread: any thread.
  zel::PreviewStatistics statistics() const;

  // onPixelBuffer:withTimesTamp: - a decoded picture.
  // Thread: decode thread.
  void onPixelBuffer(const zel::platform::PixelBufferRef& pixelBuffer, std::int64_t timestamp) override;

  // isValid: - whether a parameter set with this NAL header byte is used.
  static bool isValid(std::uint8_t nalHeader);

  // synTimestamp - sets both clocks to the later of the two.
  // Thread: session thread.
  void synTimestamp();

 private:
  struct State;
  explicit ZELPreviewPlayer(std::unique_ptr<State> state);
  const std::unique_ptr<State> state_;
};
