// Counts what the stitcher takes from the heap. A program of its own, because it replaces the global allocator.

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "platform/render/stitcher.h"
#include "platform/render/stitching_render.h"
#include "tests/platform/render/pictures.h"

namespace {

std::atomic<long> allocations = 0;

}  // namespace

// Not inlined: GCC would see free() called on what "new" gave, and take the pair for a mistake.
[[gnu::noinline]] void* operator new(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size != 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

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
  const long before = allocations;
  ASSERT_GT(before, 0);
  bool stitched = true;
  for (int count = 0; count < 20; ++count) stitched &= stitcher.stitch(*source, outputOf(*picture));
  EXPECT_EQ(allocations, before);
  EXPECT_TRUE(stitched);
}

TEST(StitcherAllocationTest, ARendererTakesNothingForAPictureOnceItHasMadeOne) {
  StitchingRender render({480, 240}, {.threads = 3}, {});
  render.setOffset(kFactoryOffset);
  const platform::PixelBufferRef source = platform::MemoryPixelBuffer::filled(640, 320, 250, 160, 150);
  auto first = render.renderVideo(source), second = render.renderVideo(source);
  ASSERT_TRUE(first && second);
  first.reset();
  const long before = allocations;
  bool rendered = true;
  for (int count = 0; count < 20; ++count) {
    rendered &= render.renderVideo(source) != nullptr;
    render.setRemovePurple(count % 2 == 0);
  }
  EXPECT_EQ(allocations, before);
  EXPECT_TRUE(rendered);
}

}  // namespace
}  // namespace zel::render
