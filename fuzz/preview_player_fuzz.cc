// The preview on hostile bytes. Of the first byte, the lowest two bits choose who takes the rest, video, audio, both in
// turn or the thumbnails, and the others the size of the chunks.

#include <ZELTarkaSDK/ZELPreviewPlayer.h>
#include <ZELTarkaSDK/ZELThumbnailRender.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include <ZELTarkaSDK/platform/ports.h>

#include "platform/simulated/scripted_video_decoder.h"
#include "platform/simulated/simulated_platform.h"

namespace {

using Bytes = std::span<const std::uint8_t>;

// Reads every byte that it is given.
class Reader final : public ZELCameraMediaDataDelegate {
 public:
  void onH264Nalu(Bytes nalu, bool, std::int64_t) override { read(nalu); }
  void onSps(Bytes sps, Bytes pps) override { read(sps), read(pps); }
  void onAACHeader(Bytes header) override { read(header); }
  void onAACAdts(Bytes data, std::int64_t) override { read(data); }

 private:
  void read(Bytes bytes) {
    for (const std::uint8_t byte : bytes) sum_ = sum_ + byte;
  }
  volatile unsigned sum_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  zel::platform::SimulatedPlatform host;
  zel::platform::ScriptedVideoDecoders decoders;
  zel::platform::Ports ports = host.ports();
  ports.videoDecoders = &decoders;
  const Bytes stream(data + 1, size - 1);
  if ((data[0] & 3) == 3) {
    const auto thumbnails = ZELThumbnailRender::initWithRenderWidth(ports, 8, 4);
    thumbnails->copyPixelBufferWithDecodeH264Data(ZELData(stream));
    return 0;
  }
  const auto reader = std::make_shared<Reader>();
  auto player = ZELPreviewPlayer::create(ports, [&] { return size % 2 == 0 ? 189 : 190; });
  player->setMediaDataDelegate(reader);
  player->setNextAudioTimestamp(1);
  const std::size_t most = std::size_t{1} + (data[0] >> 2) * (data[0] >> 2);
  for (std::size_t at = 0; at < stream.size(); at += most) {
    // A copy of its own shows any byte that is read behind the chunk.
    const auto from = stream.begin() + static_cast<std::ptrdiff_t>(at);
    const std::vector<std::uint8_t> chunk(from, from + static_cast<std::ptrdiff_t>(std::min(most, stream.size() - at)));
    if ((data[0] & 3) != 1) player->appendVideoBytes(chunk);
    if ((data[0] & 3) != 0) player->appendAudioBytes(chunk);
    host.runUntilIdle();
  }
  player.reset();
  host.runUntilIdle();
  return 0;
}
