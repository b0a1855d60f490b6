#include "platform/render/stitching_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "tests/platform/render/pictures.h"

namespace zel::render {
namespace {

using platform::MemoryPixelBuffer;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class StitchingLibraryTest : public testing::Test {
 protected:
  std::vector<std::string> faults;
  StitchingLibrary library{[this](const std::string& fault) { faults.push_back(fault); }, {.threads = 2}};
};

TEST_F(StitchingLibraryTest, MakesRenderersThatStitch) {
  const auto render = library.createFlatOffscreenRender(240, 120);
  ASSERT_NE(render, nullptr);
  render->setOffset(kFactoryOffset);
  render->setIsRenderVideo(true);
  render->setLogoAngle(0);
  render->setLogoImage(std::nullopt);
  render->setRemovePurple(false);
  const auto image = render->renderVideo(MemoryPixelBuffer::filled(640, 320, 77, 90, 200));
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->width(), 240);
  EXPECT_EQ(image->height(), 120);
  EXPECT_EQ(at(image->luma(), 17, 31), 77);
  EXPECT_EQ(render->makeContextCurrent(), nullptr);
  render->restoreContext(nullptr);
  EXPECT_THAT(faults, IsEmpty());
}

TEST_F(StitchingLibraryTest, MakesNoRendererOfASizeThatCannotBe) {
  for (const int side : {0, -2, 1, 3, 121, 16386, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
    EXPECT_EQ(library.createFlatOffscreenRender(side, 120), nullptr) << side;
    EXPECT_EQ(library.createFlatOffscreenRender(240, side), nullptr) << side;
  }
  EXPECT_NE(library.createFlatOffscreenRender(2, 2), nullptr);
}

TEST_F(StitchingLibraryTest, TellsASizeThatCannotBeOnce) {
  for (int count = 0; count < 30; ++count) EXPECT_EQ(library.createFlatOffscreenRender(241, 120), nullptr);
  EXPECT_THAT(faults,
              ElementsAre("stitching: a panorama of 241 x 120 cannot be made; its sides must be even, from 2 to "
                          "16384"));
}

TEST_F(StitchingLibraryTest, EachRendererTellsItsOwnFaults) {
  const auto first = library.createFlatOffscreenRender(240, 120), second = library.createFlatOffscreenRender(240, 120);
  first->setOffset("2");
  second->setOffset("2");
  EXPECT_THAT(faults, SizeIs(2));
}

TEST_F(StitchingLibraryTest, TellsNobodyWhereNobodyListens) {
  StitchingLibrary silent({});
  EXPECT_EQ(silent.createFlatOffscreenRender(1, 1), nullptr);
  silent.createFlatOffscreenRender(2, 2)->setOffset("2");
}

TEST_F(StitchingLibraryTest, MakesViewsOfTheFramesSize) {
  EXPECT_NE(library.createRenderView({10, 20, 240, 120}, 0), nullptr);
  EXPECT_NE(library.createRenderView({0, 0, 240.9, 120.5}, 0), nullptr);
  EXPECT_EQ(library.createRenderView({0, 0, 240, 120}, 1), nullptr);
  EXPECT_THAT(faults, IsEmpty());
  for (const double side : {0.0, -4.0, 241.0, 1e300, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(library.createRenderView({0, 0, side, 120}, 0), nullptr) << side;
    EXPECT_EQ(library.createRenderView({0, 0, 240, side}, 0), nullptr) << side;
  }
  EXPECT_THAT(faults, testing::Each(HasSubstr("cannot be made")));
}

}  // namespace
}  // namespace zel::render
