#include "platform/render/stitched_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "platform/simulated/scripted_video_decoder.h"
#include "platform/simulated/simulated_platform.h"
#include "tests/media/nal_bytes.h"
#include "tests/platform/linux/temporary_folder.h"
#include "tests/platform/linux/waiting.h"
#include "tests/platform/render/pictures.h"

namespace zel::render {
namespace {

using platform::PixelBufferRef;
using test::Bytes;
using test::join;
using test::unit;
using testing::ElementsAre;

const Bytes kSets = join(unit({0x67, 1, 2}), unit({0x68, 3}));

int lumaOf(const PixelBufferRef& picture) { return picture ? at(picture->luma(), 100, 60) : -1; }

// A view of a player whose decoder gives pictures of luma 1, 2, 3, and so on.
class StitchedViewTest : public testing::Test {
 protected:
  StitchedViewTest() { decoders.setPictureSize(640, 320); }

  std::shared_ptr<ZELPreviewPlayer> newPlayer() {
    platform::Ports ports = host.ports();
    ports.videoDecoders = &decoders;
    auto made = ZELPreviewPlayer::create(ports, [] { return 192; });
    append(*made, kSets);
    return made;
  }
  void append(ZELPreviewPlayer& to, const Bytes& bytes) {
    to.appendVideoBytes(bytes);
    host.runUntilIdle();
  }
  // So many pictures; a unit takes effect when the next one begins.
  void play(ZELPreviewPlayer& on, int pictures) {
    for (int count = 0; count < pictures; ++count) append(on, unit({0x65, 4}));
    append(on, unit({0x09, 0}));
  }

  platform::SimulatedPlatform host;
  platform::ScriptedVideoDecoders decoders;
  std::vector<std::string> faults;
  StitchedView view{{240, 120}, {.threads = 2}, [this](const std::string& fault) { faults.push_back(fault); }};
};

TEST_F(StitchedViewTest, ShowsTheNewestPictureUnwrapped) {
  const auto player = newPlayer();
  EXPECT_EQ(view.picture(), nullptr);
  view.playVideoStream(player, kFactoryOffset);
  EXPECT_EQ(view.picture(), nullptr);
  play(*player, 1);
  const auto first = view.picture();
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->width(), 240);
  EXPECT_EQ(first->height(), 120);
  EXPECT_EQ(lumaOf(first), 1);
  play(*player, 20);
  EXPECT_EQ(lumaOf(view.picture()), 21);
  EXPECT_EQ(lumaOf(view.picture()), 21);  // it stays
  EXPECT_EQ(lumaOf(first), 1);
}

TEST_F(StitchedViewTest, LeavesThePlayersDelegateToOthers) {
  struct Delegate final : ZELPixelBufferDataProtocol {
    void onPixelBuffer(const PixelBufferRef&, std::int64_t) override { ++pictures; }
    int pictures = 0;
  };
  const auto delegate = std::make_shared<Delegate>();
  const auto player = newPlayer();
  player->setPixelBufferDelegate(delegate);
  view.playVideoStream(player, kFactoryOffset);
  play(*player, 3);
  EXPECT_EQ(lumaOf(view.picture()), 3);
  view.playVideoStream(nullptr, "");
  EXPECT_EQ(delegate->pictures, 3);
  EXPECT_EQ(player->pixelBufferDelegate(), delegate);
}

TEST_F(StitchedViewTest, ShowsNothingMoreWithoutAPlayer) {
  auto player = newPlayer();
  view.playVideoStream(player, kFactoryOffset);
  play(*player, 2);
  ASSERT_NE(view.picture(), nullptr);
  view.playVideoStream(nullptr, kFactoryOffset);
  play(*player, 2);
  EXPECT_EQ(view.picture(), nullptr);
  const std::weak_ptr<ZELPreviewPlayer> watch = player;
  player.reset();
  EXPECT_TRUE(watch.expired());
}

TEST_F(StitchedViewTest, KeepsThePlayerThatItPlays) {
  auto player = newPlayer();
  const std::weak_ptr<ZELPreviewPlayer> watch = player;
  view.playVideoStream(player, kFactoryOffset);
  player.reset();
  EXPECT_FALSE(watch.expired());
  view.playVideoStream(newPlayer(), kFactoryOffset);
  EXPECT_TRUE(watch.expired());
}

TEST_F(StitchedViewTest, AnotherPlayersPicturesTakeTheFormersPlace) {
  const auto first = newPlayer(), second = newPlayer();
  view.playVideoStream(first, kFactoryOffset);
  play(*first, 2);
  EXPECT_EQ(lumaOf(view.picture()), 2);
  view.playVideoStream(second, kFactoryOffset);
  EXPECT_EQ(view.picture(), nullptr);
  play(*first, 1);
  EXPECT_EQ(view.picture(), nullptr);
  play(*second, 1);
  EXPECT_EQ(lumaOf(view.picture()), 4);
}

TEST_F(StitchedViewTest, ShowsNothingByAnOffsetThatMakesNoSense) {
  const auto player = newPlayer();
  view.playVideoStream(player, "nonsense");
  for (int count = 0; count < 3; ++count) {
    play(*player, 1);
    EXPECT_EQ(view.picture(), nullptr);
  }
  EXPECT_THAT(faults, ElementsAre("lens offset: the number of lenses is not a whole number"));
}

// One thread feeds the player, which decodes on another; a third one looks, and a fourth one changes what is played.
TEST(StitchedViewThreadTest, PlaysAndShowsOnSeveralThreads) {
  test::TemporaryFolder folder;
  std::string error;
  platform::ScriptedVideoDecoders decoders;
  decoders.setPictureSize(64, 32);
  const auto host = LinuxPlatform::create({.accessoriesFolder = folder.path()}, error);
  ASSERT_NE(host, nullptr) << error;
  platform::Ports ports = host->ports();
  ports.videoDecoders = &decoders;
  auto player = ZELPreviewPlayer::create(ports, [] { return 192; });
  {
    StitchedView view({32, 16}, {.threads = 2}, {});
    std::atomic<bool> over = false;
    std::atomic<int> shown = 0;
    std::thread feeder([&] {
      player->appendVideoBytes(kSets);
      while (!over) player->appendVideoBytes(join(unit({0x65, 4}), unit({0x41, 5})));
    });
    std::thread looker([&] {
      while (!over) shown += view.picture() != nullptr ? 1 : 0;
    });
    for (int count = 0; count < 50; ++count) {
      view.playVideoStream(count % 3 == 2 ? nullptr : player, kFactoryOffset);
      if (count % 3 != 2) std::this_thread::yield();
    }
    const int before = shown;
    view.playVideoStream(player, kFactoryOffset);
    EXPECT_TRUE(test::eventually([&] { return shown > before; }));
    over = true;
    feeder.join();
    looker.join();
  }
  player.reset();
  EXPECT_TRUE(test::eventually([&] { return decoders.live() == 0; }));
}

}  // namespace
}  // namespace zel::render
