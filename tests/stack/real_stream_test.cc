// Streams of other makers' encoders over the whole road: socket, de-multiplexer, cutter, player, decoder.

#include <ZELTarkaSDK/ZELPixelBufferDataProtocol.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "platform/ffmpeg/h264_decoder.h"
#include "tests/platform/ffmpeg/decoded_stream.h"
#include "tests/stack/simulator_fixture.h"

namespace zel::test {
namespace {

using Sums = std::vector<std::string>;

std::string sumOf(const platform::PixelBufferRef& picture) { return md5Of({{picture, 0}}); }

// Keeps the sum of each picture.
class SumKeeper final : public ZELPixelBufferDataProtocol {
 public:
  void onPixelBuffer(const platform::PixelBufferRef& picture, std::int64_t) override { sums.add(sumOf(picture)); }
  Recorded<std::string> sums;
};

class RealStreamTest : public SimulatorFixture {
 protected:
  // What FFmpeg decodes.
  Sums expected(const std::vector<std::uint8_t>& stream) {
    Sums sums;
    for (const auto& picture : decodeAll(decoders_, unitsOf(stream)).pictures)
      sums.push_back(sumOf(picture.pixelBuffer));
    return sums;
  }

  // Whether a camera that sends the file again and again brings them all, in a row. The camera keeps to its rate, and a
  // machine that is late loses pictures: then another round counts.
  bool brings(const Sums& wanted, const std::vector<std::uint8_t>& stream) {
    const std::string path = folder_.path() + "/stream.video";
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(stream.data()), static_cast<std::streamsize>(stream.size()));
    const auto camera = makeCamera("E1A0001", {}, path);
    platform::Ports withDecoder = ports();
    withDecoder.videoDecoders = &decoders_;
    CameraStack stack(withDecoder);
    const auto keeper = std::make_shared<SumKeeper>();
    const auto player = stack.suitablePreviewPlayer();
    player->setPixelBufferDelegate(keeper);
    stack.accessory().openCamera();
    EXPECT_TRUE(framesArrive(stack));
    return runUntil([&] {
      const Sums all = keeper->sums.now();
      return std::search(all.begin(), all.end(), wanted.begin(), wanted.end()) != all.end();
    });
  }

 private:
  platform::LibavVideoDecoders decoders_;
};

TEST_F(RealStreamTest, PicturesOfOneToTenSlicesComeAsFfmpegDecodesThem) {
  ZEL_REAL_MEDIA(stream, "h264/CI1_FT_B.264");
  const Sums wanted = expected(stream);
  ASSERT_EQ(wanted.size(), 291u);
  EXPECT_TRUE(brings(wanted, stream));
}

// The camera's cutter knows start codes of four bytes alone; the recording's slices have three.
TEST_F(RealStreamTest, ACamerasPicturesComeAsFfmpegDecodesThem) {
  ZEL_REAL_MEDIA(stream, "h264/kvs-frames-001-060.h264");
  const Sums wanted = expected(stream);
  ASSERT_EQ(wanted.size(), 60u);
  EXPECT_TRUE(brings(wanted, withLongStartCodes(stream)));
}

}  // namespace
}  // namespace zel::test
