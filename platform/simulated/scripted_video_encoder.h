#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include <ZELTarkaSDK/platform/video_encoder.h>

namespace zel::platform {

// Encoders that do as a test says. Without a script every encoder opens and takes every picture; before the return it
// gives the parameter sets {67 01} and {68 02} for its first picture, and for each one a unit of {65} (the first) or
// {41} and the luma of the picture's first pixel.
// Owner:  its encoders keep what they need of it, so that either may go first.
// Thread: any thread.
class ScriptedVideoEncoders final : public VideoEncoders {
 public:
  using Bytes = std::vector<std::uint8_t>;

  ScriptedVideoEncoders();
  ~ScriptedVideoEncoders() override;

  std::unique_ptr<VideoEncoder> create(const VideoEncoderSettings& settings) override;

  // The next creations give nothing; the next encoders do not open; the next attempts to encode fail.
  void failCreations(std::size_t times);
  void failOpenings(std::size_t times);
  void failPictures(std::size_t attempts);
  // No picture gives a unit any more; the test emits what it wants.
  void beSilent();
  // Called before each attempt to encode, on the thread that encodes.
  void onEncode(std::function<void()> call);
  // Called before an encoder is destroyed, on the thread that does it.
  void onDestroy(std::function<void()> call);

  // Output of the encoder that was made last, on the caller's thread. What the receiver made of the bytes.
  void emitParameterSets(const Bytes& sps, const Bytes& pps);
  Bytes emitUnit(Bytes unitBehindItsLength, bool keyFrame, MediaTime time);

  // Of every creation that gave an encoder.
  std::vector<VideoEncoderSettings> created() const;
  // Encoders that have not been destroyed.
  std::size_t live() const;
  std::size_t attempts() const;
  // Times of the pictures that were taken.
  std::vector<MediaTime> times() const;

 private:
  struct State;
  class Encoder;
  std::shared_ptr<State> state_;
};

}  // namespace zel::platform
