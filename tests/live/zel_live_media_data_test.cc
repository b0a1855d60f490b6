#include <ZELTarkaSDK/ZELLiveMediaData.h>

#include <gtest/gtest.h>

namespace zel::test {
namespace {

TEST(ZELLiveMediaDataTest, IsNoKeyFrameAtFirst) {
  const ZELData bytes(std::vector<std::uint8_t>{1, 2, 3});
  const auto media = ZELLiveMediaData::initWithMediaData(bytes, -5, 2);
  EXPECT_EQ(media->data(), bytes);
  EXPECT_EQ(media->timestamp(), -5);
  EXPECT_EQ(media->type(), 2u);
  EXPECT_FALSE(media->keyFrame());
  media->setKeyFrame(true);
  EXPECT_TRUE(media->keyFrame());
}

}  // namespace
}  // namespace zel::test
