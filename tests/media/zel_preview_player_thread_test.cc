#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <random>
#include <thread>

#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "platform/simulated/scripted_video_decoder.h"
#include "tests/media/nal_bytes.h"
#include "tests/platform/linux/temporary_folder.h"
#include "tests/platform/linux/waiting.h"

namespace zel::test {
namespace {

class CountingHost final : public ZELCameraMediaDataDelegate, public ZELPixelBufferDataProtocol {
 public:
  void onH264Nalu(Bytes, bool, std::int64_t) override { ++calls; }
  void onSps(Bytes, Bytes) override { ++calls; }
  void onAACHeader(Bytes) override { ++calls; }
  void onAACAdts(Bytes, std::int64_t) override { ++calls; }
  void onPixelBuffer(const platform::PixelBufferRef&, std::int64_t) override { ++pictures; }
  std::atomic<int> calls = 0, pictures = 0;
};

// Every operation of a player at once, on as many threads, in an order that the seed draws; then the player goes.
class EverybodyAtOnce : public testing::TestWithParam<unsigned> {
 protected:
  void makePlayer() {
    platform::Ports ports = host->ports();
    ports.videoDecoders = &decoders;
    player = ZELPreviewPlayer::create(ports, [] { return 189; });
    player->setMediaDataDelegate(delegate);
    player->setPixelBufferDelegate(delegate);
  }
  void run(int times, const std::function<void(int)>& step) {
    threads.emplace_back([times, step, kept = player, seed = GetParam() + threads.size()] {
      std::mt19937 random(static_cast<unsigned>(seed));
      for (int i = 0; i < times; ++i) {
        step(i);
        if (random() % 4 == 0) std::this_thread::yield();
      }
    });
  }

  TemporaryFolder folder;
  platform::ScriptedVideoDecoders decoders;
  std::shared_ptr<CountingHost> delegate = std::make_shared<CountingHost>();
  std::string error;
  std::unique_ptr<LinuxPlatform> host = LinuxPlatform::create({.accessoriesFolder = folder.path()}, error);
  std::shared_ptr<ZELPreviewPlayer> player;
  std::vector<std::thread> threads;
};

TEST_P(EverybodyAtOnce, LeavesNothingBehind) {
  const Bytes group = join(unit({0x67, 1}), unit({0x68, 2}), unit({0x65, 3}), unit({0x41, 4}));
  const Bytes audio = bytes({0xFF, 0xF1, 0x4C, 0x80, 0x01, 0x3F, 0xFC, 7, 8});
  decoders.setPictureSize(4, 2);
  decoders.script(platform::DecodeStatus::noPicture, 40);
  decoders.script(platform::DecodeStatus::sessionInvalid, 3);
  makePlayer();
  run(300, [&](int) {  // the session thread
    player->appendVideoBytes(group);
    player->appendAudioBytes(audio);
  });
  run(300,
      [&](int i) { player->createSnapshot([this, i](const platform::PixelBufferRef&) { delegate->calls += i; }); });
  run(300, [&](int) { player->copyNextFrame(nullptr); });
  run(20, [&](int) { player->resetPlayer(); });
  run(50, [&](int i) {
    player->setMediaDataDelegate(i % 2 == 0 ? delegate : nullptr);
    player->setFps(i);
    player->setImageWidth(player->imageHeight() + player->hasPendingSnapshot());
  });
  for (std::thread& thread : threads) thread.join();
  threads.clear();
  delegate->pictures = 0;
  player->resetPlayer();
  EXPECT_TRUE(eventually([&] {  // it still plays
    player->appendVideoBytes(group);
    return delegate->pictures > 0;
  }));
  player.reset();
  EXPECT_TRUE(eventually([&] { return decoders.live() == 0; }));
}

INSTANTIATE_TEST_SUITE_P(Seeds, EverybodyAtOnce, testing::Values(1u, 2u, 3u, 4u, 5u));

}  // namespace
}  // namespace zel::test
