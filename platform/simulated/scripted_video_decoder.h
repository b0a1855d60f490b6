#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include <ZELTarkaSDK/platform/video_decoder.h>

#include "base/shared_value.h"

namespace zel::platform {

// Decoders that follow a test's script. Without a script every unit gives a picture: the n-th of all, from 1 on, is
// filled with luma n (modulo 256) and has the size that was set.
// Owner:  may be destroyed before its sessions.
// Thread: any thread.
class ScriptedVideoDecoders final : public VideoDecoders {
 public:
  using Bytes = std::vector<std::uint8_t>;

  ScriptedVideoDecoders();
  ~ScriptedVideoDecoders() override;

  DecoderCreation create(VideoDecoder::Bytes sps, VideoDecoder::Bytes pps) override;

  // Appends the results of the next units to the script.
  void script(DecodeStatus status, std::size_t units = 1);
  // Appends `times` failures of the creation.
  void failCreations(std::size_t times, DecoderCreationStage failedAt, std::int32_t status);
  void setPictureSize(std::int32_t width, std::int32_t height);
  // Called before each unit is decoded, on the decoding thread.
  void onDecode(std::function<void()> call);
  // From now on a unit gives the picture of the previous unit, as in a stream with several slices a picture.
  void holdBack();

  // Units that reached a session, in order.
  std::vector<Bytes> units() const;
  // Successful and failed creations.
  std::size_t created() const;
  std::size_t failed() const;
  // Sessions that have not been released.
  std::size_t live() const;
  // Parameter sets of the last creation.
  Bytes lastSps() const;
  Bytes lastPps() const;

 private:
  struct State;
  class Session;
  const std::shared_ptr<Guarded<State>> state_;
};

}  // namespace zel::platform
