#include <ZELTarkaSDK/PreviewFormat.h>

#include <gtest/gtest.h>

namespace zel::test {
namespace {

TEST(PreviewFormatTest, KnowsEveryCodeUpTo15) {
  EXPECT_EQ(previewFormat(0), (PreviewFormat{1440, 720, 15}));
  EXPECT_EQ(previewFormat(3), (PreviewFormat{1440, 720, 30}));
  EXPECT_EQ(previewFormat(4), (PreviewFormat{2160, 1080, 15}));
  EXPECT_EQ(previewFormat(9), (PreviewFormat{2560, 1280, 20}));
  EXPECT_EQ(previewFormat(13), (PreviewFormat{3040, 1520, 20}));
  EXPECT_EQ(previewFormat(14), (PreviewFormat{3040, 1520, 25}));
  EXPECT_EQ(previewFormat(15), (PreviewFormat{3040, 1520, 30}));
}

TEST(PreviewFormatTest, KnowsNoCodeFrom16On) {
  EXPECT_EQ(previewFormat(16), std::nullopt);
  EXPECT_EQ(previewFormat(0xFFFFFFFFFFFFFFFF), std::nullopt);
}

TEST(PreviewFormatTest, KnowsTheCodeOfEachFormat) {
  EXPECT_EQ(previewCode({1440, 720, 15}), 0);
  EXPECT_EQ(previewCode({2160, 1080, 20}), 5);
  EXPECT_EQ(previewCode({3040, 1520, 30}), 15);
  EXPECT_EQ(kSmallestPreview, 3);
}

}  // namespace
}  // namespace zel::test
