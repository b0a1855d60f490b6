#include "simulator/media/preview_format.h"

#include <gtest/gtest.h>

namespace zel::simulator {
namespace {

TEST(PreviewFormatTest, TakesTheSizeByFoursAndTheRateByTheRest) {
  EXPECT_EQ(previewFormat(0), (PreviewFormat{1440, 720, 15}));
  EXPECT_EQ(previewFormat(3), (PreviewFormat{1440, 720, 30}));
  EXPECT_EQ(previewFormat(3, 9000000), (PreviewFormat{1440, 720, 30, 9000000}));
  EXPECT_EQ(previewFormat(3, 0, 4), (PreviewFormat{1440, 720, 30, 0, 4}));
  EXPECT_EQ(previewFormat(4), (PreviewFormat{2160, 1080, 15}));
  EXPECT_EQ(previewFormat(10), (PreviewFormat{2560, 1280, 25}));
  EXPECT_EQ(previewFormat(13), (PreviewFormat{3040, 1520, 20}));
  EXPECT_EQ(previewFormat(15), (PreviewFormat{3040, 1520, 30}));
}

}  // namespace
}  // namespace zel::simulator
