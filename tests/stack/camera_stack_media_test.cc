// Streams of other makers' encoders over the whole road: socket, de-multiplexer, cutter, player, decoder.

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELPixelBufferDataProtocol.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/ffmpeg/h264_decoder.h"
#include "protocol/frame.h"
#include "tests/platform/ffmpeg/streams/decoded_stream.h"
#include "tests/platform/ffmpeg/streams/video_file.h"
#include "tests/platform/linux/bus_fixture.h"

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

// A camera that shows a stream of units, and waits for the host's pictures, so that a slow machine loses none: the
// decode queue drops from 16 units on.
class WaitingCamera {
 public:
  // The player is the host's. It is reset at each new sequence parameter set.
  WaitingCamera(const std::string& socket, std::vector<Unit> units, const DecodedStream& expected, SumKeeper& seen,
                ZELPreviewPlayer& player)
      : listener_(listenAt(socket)), units_(std::move(units)), expected_(expected), seen_(seen), player_(player) {
    thread_ = std::thread([this] { run(); });
  }
  ~WaitingCamera() {
    shutdown(listener_.get(), SHUT_RDWR);
    thread_.join();
  }

 private:
  static constexpr std::size_t kMostUnderWay = 8;  // beside those that a decoder holds back for its order
  static constexpr std::uint16_t kMarkerRequest = 0x402E, kNoMessage = 0xFFFF;

  void run() {
    const platform::UniqueDescriptor host(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!host || !hears(host.get(), kMarkerRequest)) return;
    if (!send(host.get(), dataSynchronismValue)) return;
    // The beginning once more releases the last pictures.
    if (sendUnits(host.get(), units_.size(), 0)) sendUnits(host.get(), 40, slices_);
    hears(host.get(), kNoMessage);
  }

  // The host takes what came in one read with the marker, and decodes what came before its thread ran, only once more
  // has come. So slices go first that are no key slices, and so never reach the decoder.
  void startDecoding(int host) {
    const std::uint64_t before = player_.statistics().withoutPicture;
    eventually([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
      if (player_.statistics().withoutPicture != before) return true;
      ++emptySlices_;
      return !send(host, videoFrame({0x41, 0x00}));
    });
  }

  bool sendUnits(int host, std::size_t count, std::size_t slicesBefore) {
    slices_ = slicesBefore;
    for (std::size_t i = 0; i < std::min(count, units_.size()); ++i) {
      if (isSlice(units_[i])) waitForPictures(slices_++);
      if (!send(host, videoFrame(units_[i]))) return false;
      if (typeOf(units_[i]) == 7 && units_[i] != sps_) endSequence(units_[i]);
      if (typeOf(units_[i]) == 8 && std::exchange(mustStart_, false)) startDecoding(host);
    }
    return true;
  }

  static bool isSlice(const Unit& unit) { return typeOf(unit) == 1 || typeOf(unit) == 5; }

  // Until the host has shown what it can without the latest units.
  void waitForPictures(std::size_t slice) { seen_.sums.wait(picturesWithout(kMostUnderWay, slice)); }

  // How many of the first slices make without the latest of them.
  std::size_t picturesWithout(std::size_t latest, std::size_t slices) const {
    return static_cast<std::size_t>(
        std::ranges::count_if(expected_.unitOfPicture, [=](std::size_t unit) { return unit + latest <= slices; }));
  }

  // The host's cutter holds the new set back, and all slices before it are on their way.
  void endSequence(const Unit& sps) {
    mustStart_ = true;
    if (std::exchange(sps_, sps).empty()) return;
    eventually([&] {
      const PreviewStatistics now = player_.statistics();
      return now.units >= emptySlices_ + slices_ && now.pictures + now.withoutPicture + now.dropped >= now.units;
    });
    player_.resetPlayer();
  }

  // Reads until the host has sent a message of that code, or has closed.
  bool hears(int host, std::uint16_t code) {
    const Bytes message = messageFrame(code, {});
    for (;;) {
      const auto end = message.end();
      if (std::search(heard_.begin(), heard_.end(), message.begin() + 4, end) != heard_.end()) return true;
      std::array<std::uint8_t, 64> bytes;
      const ssize_t size = recv(host, bytes.data(), bytes.size(), 0);
      if (size <= 0) return false;
      heard_.insert(heard_.end(), bytes.begin(), bytes.begin() + size);
    }
  }

  static Bytes videoFrame(const Unit& unit) {
    Bytes frame;
    appendLittleEndian(frame, static_cast<std::uint32_t>(kFrameHeader + 4 + unit.size()));
    appendLittleEndian(frame, static_cast<std::uint16_t>(FrameType::previewVideo));
    frame.insert(frame.end(), {0, 0, 0, 1});
    frame.insert(frame.end(), unit.begin(), unit.end());
    return frame;
  }

  static bool send(int host, ByteView bytes) {
    while (!bytes.empty()) {
      const ssize_t sent = ::send(host, bytes.data(), bytes.size(), MSG_NOSIGNAL);
      if (sent <= 0) return false;
      bytes = bytes.subspan(static_cast<std::size_t>(sent));
    }
    return true;
  }

  const platform::UniqueDescriptor listener_;
  const std::vector<Unit> units_;
  const DecodedStream& expected_;
  SumKeeper& seen_;
  ZELPreviewPlayer& player_;
  Unit sps_;  // in use
  bool mustStart_ = false;
  std::uint64_t emptySlices_ = 0;
  std::size_t slices_ = 0;
  Bytes heard_;
  std::thread thread_;
};

class CameraStackMediaTest : public BusFixture {
 protected:
  // That the stack shows exactly the pictures that FFmpeg decodes, but for those that go with a reset.
  void comesAsDecoded(const std::vector<std::uint8_t>& stream, std::size_t pictures,
                      const std::vector<std::size_t>& lost = {}) {
    const std::vector<Unit> units = unitsOf(stream);
    const DecodedStream expected = decodeAll(decoders_, units);
    ASSERT_EQ(expected.pictures.size(), pictures);
    Sums wanted;
    for (std::size_t i = 0; i < pictures; ++i) {
      if (std::ranges::find(lost, i) == lost.end()) wanted.push_back(sumOf(expected.pictures[i].pixelBuffer));
    }
    pictures = wanted.size();

    const auto keeper = std::make_shared<SumKeeper>();
    platform::Ports withDecoder = ports();
    withDecoder.videoDecoders = &decoders_;
    CameraStack stack(withDecoder);
    const auto player = stack.suitablePreviewPlayer();
    player->setPixelBufferDelegate(keeper);
    const WaitingCamera camera(folder_.file("camera.sock"), units, expected, *keeper, *player);
    plug("camera", 1);
    stack.accessory().openCamera();
    const auto shownSoFar = [&] { return keeper->sums.now().size(); };
    for (std::size_t before = 0; before < pictures; before = shownSoFar()) {
      if (!runUntil([&] { return shownSoFar() > before; })) break;
    }
    stack.accessory().closeCamera();  // which the camera waits for
    Sums shown = keeper->sums.now();
    shown.resize(std::min(shown.size(), pictures));
    EXPECT_EQ(shown, wanted);
  }

 private:
  platform::LibavVideoDecoders decoders_;
};

TEST_F(CameraStackMediaTest, PicturesOfOneToTenSlicesComeAsFfmpegDecodesThem) {
  ZEL_REAL_MEDIA(stream, "h264/CI1_FT_B.264");
  comesAsDecoded(stream, 291);
}

// The camera's cutter knows start codes of four bytes alone; the recording's slices have three.
TEST_F(CameraStackMediaTest, ACamerasPicturesComeAsFfmpegDecodesThem) {
  ZEL_REAL_MEDIA(stream, "h264/kvs-frames-001-060.h264");
  comesAsDecoded(stream, 60);
}

TEST_F(CameraStackMediaTest, SizesThatChangeComeWherePlayersAreResetAtNewParameterSets) {
  ZEL_REAL_MEDIA(stream, "h264/Error_I_P.264");
  // Two pictures of several slices for each pair of sets. That the second one is whole shows only in the unit behind
  // it, and nothing of a stream comes after the reset.
  comesAsDecoded(stream, 6, {1, 3, 5});
}

TEST_F(CameraStackMediaTest, PicturesOutOfOrderComeInOrder) {
  ZEL_REAL_MEDIA(file, "dualfisheye/theta1.m4v");
  comesAsDecoded(realVideo("dualfisheye/theta1.m4v"), 60);
}

}  // namespace
}  // namespace zel::test
