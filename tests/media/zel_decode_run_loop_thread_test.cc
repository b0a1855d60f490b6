#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <thread>

#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "media/zel_decode_run_loop.h"
#include "platform/simulated/scripted_video_decoder.h"
#include "tests/media/nal_bytes.h"
#include "tests/platform/linux/temporary_folder.h"
#include "tests/platform/linux/waiting.h"

namespace zel::test {
namespace {

class CountingDelegate final : public ZELPixelBufferDataProtocol {
 public:
  void onPixelBuffer(const platform::PixelBufferRef& pixelBuffer, std::int64_t timestamp) override {
    EXPECT_EQ(pixelBuffer->width(), 4);
    times.add(timestamp);
  }
  Recorded<std::int64_t> times;
};

class ZELDecodeRunLoopThreadTest : public testing::Test {
 protected:
  ZELDecodeRunLoopThreadTest() { decoders.setPictureSize(4, 2); }
  std::shared_ptr<ZELDecodeRunLoop> create() {
    return ZELDecodeRunLoop::initWidthSps(host->ports().threads, decoders, bytes({0x67}), bytes({0x68}), delegate);
  }
  static void append(ZELDecodeRunLoop& loop, int header, std::int64_t time) {
    const Bytes data = prefixed({header, 1});
    loop.appendDecodeData(std::make_shared<orq::MediaBuffer>(data.data(), static_cast<int>(data.size()),
                                                             static_cast<std::uint64_t>(time)));
  }

  TemporaryFolder folder;
  platform::ScriptedVideoDecoders decoders;
  std::shared_ptr<CountingDelegate> delegate = std::make_shared<CountingDelegate>();
  std::string error;
  std::unique_ptr<LinuxPlatform> host = LinuxPlatform::create({.accessoriesFolder = folder.path()}, error);
};

// Each unit follows the picture before it, and so finds the thread awake as well as just falling asleep.
TEST_F(ZELDecodeRunLoopThreadTest, LosesNoWakeUp) {
  const auto loop = create();
  loop->start();
  std::size_t sent = 0;
  const auto send = [&] { append(*loop, 0x65, static_cast<std::int64_t>(sent++)); };
  // Units that come before the thread runs its loop wait for the next one.
  ASSERT_TRUE(eventually([&] {
    send();
    return !delegate->times.now().empty();
  }));
  ASSERT_EQ(delegate->times.wait(sent).size(), sent);
  for (int i = 0; i < 3000; ++i) {
    send();
    ASSERT_EQ(delegate->times.wait(sent).size(), sent);
  }
}

TEST_F(ZELDecodeRunLoopThreadTest, SurvivesEverybodyAtOnce) {
  for (int round = 0; round < 40; ++round) {
    auto loop = create();
    std::atomic<int> ready = 0;
    const auto run = [&](const std::function<void(std::int64_t)>& step, std::int64_t times) {
      return std::thread([&, step, times] {
        ++ready;
        while (ready.load() < 5) std::this_thread::yield();
        for (std::int64_t i = 0; i < times; ++i) step(i);
      });
    };
    std::vector<std::thread> threads;
    threads.push_back(run([&](std::int64_t i) { append(*loop, i % 8 == 0 ? 0x65 : 0x41, i); }, 200));
    threads.push_back(run([&](std::int64_t i) { append(*loop, 0x65, i); }, 200));
    threads.push_back(run([&](std::int64_t) { loop->getNextMediaPixelBuffer(); }, 200));
    threads.push_back(run([&](std::int64_t) { loop->start(); }, 2));
    threads.push_back(run(
        [&](std::int64_t i) {
          if (i % 16 == 0) loop->clearData();
          if (round % 2 == 0 && i == 150) loop->stop();
        },
        200));
    for (std::thread& thread : threads) thread.join();
    const std::size_t seen = delegate->times.now().size();
    if (round % 2 != 0) {  // it still decodes
      EXPECT_TRUE(eventually([&] {
        append(*loop, 0x65, 0);
        return delegate->times.now().size() > seen;
      }));
    }
    loop.reset();
  }
  EXPECT_TRUE(eventually([&] { return decoders.live() == 0; }));
}

// Nobody polls a picture before it was delivered: the poll waits for the delegate's end, and then gets it.
TEST_F(ZELDecodeRunLoopThreadTest, LetsWhoPollsWaitForTheDelegatesEnd) {
  class PolledMeanwhile final : public ZELPixelBufferDataProtocol {
   public:
    void onPixelBuffer(const platform::PixelBufferRef&, std::int64_t) override {
      if (std::exchange(called, true)) return;
      poll = std::async(std::launch::async, [this] { return loop->getNextMediaPixelBuffer() != nullptr; });
      // It never ends while this call lasts, so that the time tells nothing about the machine.
      ended = poll.wait_for(std::chrono::milliseconds(200)) == std::future_status::ready;
      delivered.set();
    }
    ZELDecodeRunLoop* loop = nullptr;
    bool called = false;  // decode thread only
    std::future<bool> poll;
    std::atomic<bool> ended = false;
    Event delivered;
  };
  const auto polled = std::make_shared<PolledMeanwhile>();
  const auto loop =
      ZELDecodeRunLoop::initWidthSps(host->ports().threads, decoders, bytes({0x67}), bytes({0x68}), polled);
  polled->loop = loop.get();
  loop->start();
  ASSERT_TRUE(eventually([&] {
    append(*loop, 0x65, 1);
    return polled->delivered.happened();
  }));
  EXPECT_FALSE(polled->ended);
  EXPECT_TRUE(polled->poll.get());
}

TEST_F(ZELDecodeRunLoopThreadTest, IsLetGoByTheDelegateOnItsOwnThread) {
  class LettingGo final : public ZELPixelBufferDataProtocol {
   public:
    void onPixelBuffer(const platform::PixelBufferRef&, std::int64_t) override {
      const MutexLock lock(mutex);
      loop.reset();
      gone.set();
    }
    Mutex mutex;
    std::shared_ptr<ZELDecodeRunLoop> loop;
    Event gone;
  };
  const auto owner = std::make_shared<LettingGo>();
  {
    const MutexLock lock(owner->mutex);
    owner->loop = ZELDecodeRunLoop::initWidthSps(host->ports().threads, decoders, bytes({0x67}), bytes({0x68}), owner);
    owner->loop->start();
  }
  EXPECT_TRUE(eventually([&] {
    const MutexLock lock(owner->mutex);
    if (owner->loop) append(*owner->loop, 0x65, 1);
    return !owner->loop;
  }));
  EXPECT_TRUE(owner->gone.wait());
  EXPECT_TRUE(eventually([&] { return decoders.live() == 0; }));
}

}  // namespace
}  // namespace zel::test
