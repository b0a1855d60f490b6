// Counts what the stitcher takes from the heap. A program of its own, because that replaces the global allocator.

#include <gtest/gtest.h>

#include "platform/render/stitcher.h"
#include "platform/render/stitching_render.h"
#include "tests/allocation_count.h"
#include "tests/platform/render/pictures.h"

namespace zel::render {
namespace {

TEST(StitcherAllocationTest, TakesNothingForAPictureOnceItIsPrepared) {
  const auto creation = Stitcher::create(kFactoryOffset, {480, 240}, {.threads = 3});
  Stitcher& stitcher = *creation.stitcher;
  const auto source = platform::MemoryPixelBuffer::filled(640, 320, 250, 160, 150);
  const auto picture = platform::MemoryPixelBuffer::create(480, 240);
  ASSERT_TRUE(stitcher.setLogo({1, 1, {255, 255, 255, 255}}, 0));
  stitcher.setRemovePurple(true);
  ASSERT_TRUE(stitcher.prepare({640, 320}));
  const long before = zel::test::allocationCount();
  ASSERT_GT(before, 0);
  bool stitched = true;
  for (int count = 0; count < 20; ++count) stitched &= stitcher.stitch(*source, outputOf(*picture));
  EXPECT_EQ(zel::test::allocationCount(), before);
  EXPECT_TRUE(stitched);
}

TEST(StitcherAllocationTest, ARendererTakesNothingForAPictureOnceItHasMadeOne) {
  StitchingRender render({480, 240}, {.threads = 3}, {});
  render.setOffset(kFactoryOffset);
  const platform::PixelBufferRef source = platform::MemoryPixelBuffer::filled(640, 320, 250, 160, 150);
  auto first = render.renderVideo(source), second = render.renderVideo(source);
  ASSERT_TRUE(first && second);
  first.reset();
  const long before = zel::test::allocationCount();
  bool rendered = true;
  for (int count = 0; count < 20; ++count) {
    rendered &= render.renderVideo(source) != nullptr;
    render.setRemovePurple(count % 2 == 0);
  }
  EXPECT_EQ(zel::test::allocationCount(), before);
  EXPECT_TRUE(rendered);
}

}  // namespace
}  // namespace zel::render
