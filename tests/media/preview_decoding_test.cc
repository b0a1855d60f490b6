#include "media/preview_decoding.h"

#include <gtest/gtest.h>

#include "platform/simulated/scripted_video_decoder.h"
#include "platform/simulated/simulated_platform.h"
#include "tests/media/nal_bytes.h"

namespace zel::test {
namespace {

class PreviewDecodingTest : public testing::Test {
 protected:
  platform::Ports portsWith(platform::VideoDecoders* some) {
    platform::Ports ports = host.ports();
    ports.videoDecoders = some;
    return ports;
  }
  void offerPps(const Bytes& pps) {
    decoding.offerPps(pps);
    host.runUntilIdle();
  }

  platform::SimulatedPlatform host;
  platform::ScriptedVideoDecoders decoders;
  PreviewDecoding decoding{portsWith(&decoders)};
};

TEST_F(PreviewDecodingTest, KeepsTheFirstValidSetsWithoutStartCode) {
  decoding.offerSps(unit({0xE7, 0, 1}));  // forbidden bit
  decoding.offerSps(unit({0x07, 0, 2}));  // no reference
  decoding.offerSps(unit({0x27, 0, 3}));
  decoding.offerSps(unit({0x67, 0, 4}));
  offerPps(unit({0x08, 5}));
  EXPECT_FALSE(decoding.sets().areComplete());
  offerPps(unit({0x68, 6}));
  offerPps(unit({0x68, 7}));
  EXPECT_EQ(decoders.lastSps(), bytes({0x27, 0, 3}));
  EXPECT_EQ(decoders.lastPps(), bytes({0x68, 6}));
  EXPECT_EQ(decoders.created(), 1u);
}

TEST_F(PreviewDecodingTest, StartsWithAnyPpsThatFindsBothSets) {
  offerPps(unit({0x68, 1}));
  decoding.offerSps(unit({0x67, 1}));
  EXPECT_EQ(decoders.created(), 0u);
  offerPps(unit({0x08, 9}));  // invalid itself
  EXPECT_EQ(decoders.created(), 1u);
  EXPECT_EQ(decoders.lastPps(), bytes({0x68, 1}));
}

TEST_F(PreviewDecodingTest, TriesTheNextPairWhereThereIsNoDecoder) {
  decoders.failCreations(1, platform::DecoderCreationStage::session, 0);
  testing::internal::CaptureStderr();
  decoding.offerSps(unit({0x67, 1}));
  offerPps(unit({0x68, 1}));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "err decode session null\n");
  EXPECT_FALSE(decoding.sets().areComplete());
  offerPps(unit({0x68, 2}));
  EXPECT_EQ(decoders.created(), 0u);
  decoding.offerSps(unit({0x67, 2}));
  offerPps(unit({0x68, 3}));
  EXPECT_EQ(decoders.lastSps(), bytes({0x67, 2}));
  EXPECT_EQ(decoders.lastPps(), bytes({0x68, 2}));
}

TEST_F(PreviewDecodingTest, EndsItsThreadWhenItIsResetOrDies) {
  for (int round = 0; round < 2; ++round) {
    decoding.offerSps(unit({0x67, 1}));
    offerPps(unit({0x68, 1}));
    EXPECT_EQ(host.liveThreads("preview decode"), 1);
    decoding.reset();
    host.runUntilIdle();
    EXPECT_EQ(host.liveThreads("preview decode"), 0);
    EXPECT_FALSE(decoding.sets().areComplete());
  }
  {
    PreviewDecoding dying(portsWith(&decoders));
    dying.offerSps(unit({0x67, 1}));
    dying.offerPps(unit({0x68, 1}));
  }
  host.runUntilIdle();
  EXPECT_EQ(host.liveThreads("preview decode"), 0);
  EXPECT_EQ(decoders.live(), 0u);
}

TEST_F(PreviewDecodingTest, KeepsTheSetsWhereTheHostDecodesNothing) {
  PreviewDecoding without(portsWith(nullptr));
  without.offerSps(unit({0x67, 1}));
  without.offerPps(unit({0x68, 1}));
  EXPECT_TRUE(without.sets().areComplete());
  without.append(std::make_shared<orq::MediaBuffer>());
  EXPECT_EQ(without.nextPicture(), nullptr);
}

// A reset on another thread while the decoder is being made.
TEST_F(PreviewDecodingTest, DropsADecoderThatAResetHasMadeUseless) {
  class ResettingDecoders final : public platform::VideoDecoders {
   public:
    explicit ResettingDecoders(platform::VideoDecoders& wrapped) : wrapped_(wrapped) {}
    platform::DecoderCreation create(platform::VideoDecoder::Bytes sps, platform::VideoDecoder::Bytes pps) override {
      decoding->reset();
      return wrapped_.create(sps, pps);
    }
    PreviewDecoding* decoding = nullptr;

   private:
    platform::VideoDecoders& wrapped_;
  };
  ResettingDecoders resetting(decoders);
  PreviewDecoding raced(portsWith(&resetting));
  resetting.decoding = &raced;
  raced.offerSps(unit({0x67, 1}));
  raced.offerPps(unit({0x68, 1}));
  host.runUntilIdle();
  EXPECT_EQ(decoders.live(), 0u);
  EXPECT_EQ(host.liveThreads("preview decode"), 0);
}

}  // namespace
}  // namespace zel::test
