#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include <ZELTarkaSDK/platform/video_encoder.h>

#include "base/shared_value.h"

namespace zel::platform {

// Encoders that follow a test's script. Without a script every encoder opens and accepts every picture. Before
// encodeImage() returns, it delivers the parameter sets {67 01} and {68 02} for its first picture, and for each picture
// a unit of {65} (the first) or {41} and the luma of the picture's first pixel.
// Owner:  may be destroyed before its encoders.
// Thread: any thread.
class ScriptedVideoEncoders final : public VideoEncoders {
 public:
  using Bytes = std::vector<std::uint8_t>;

  ScriptedVideoEncoders();
  ~ScriptedVideoEncoders() override;

  std::unique_ptr<VideoEncoder> create(const VideoEncoderSettings& settings) override;

  // The next creations return null; the next encoders do not open; the next attempts to encode fail.
  void failCreations(std::size_t times);
  void failOpenings(std::size_t times);
  void failPictures(std::size_t attempts);
  // Pictures give no units any more; the test emits them.
  void beSilent();
  // Called before each attempt to encode, on the encoding thread.
  void onEncode(std::function<void()> call);
  // Called before an encoder is destroyed, on the destroying thread.
  void onDestroy(std::function<void()> call);

  // Emits output of the newest encoder, on the caller's thread. Returns the bytes as the receiver has changed them.
  void emitParameterSets(const Bytes& sps, const Bytes& pps);
  Bytes emitUnit(Bytes unitBehindItsLength, bool keyFrame, MediaTime time);

  // The settings of every successful creation.
  std::vector<VideoEncoderSettings> created() const;
  // Encoders that have not been destroyed.
  std::size_t live() const;
  std::size_t attempts() const;
  // Times of the accepted pictures.
  std::vector<MediaTime> times() const;

 private:
  struct State;
  class Encoder;
  const std::shared_ptr<Guarded<State>> state_;
};

}  // namespace zel::platform
