#include <ZELTarkaSDK/ZELRenderView.h>

#include <gtest/gtest.h>

#include "tests/live/live_test.h"

namespace zel::test {
namespace {

class ZELRenderViewTest : public LiveTest {};

TEST_F(ZELRenderViewTest, PlaysAPlayerByTheHostsMeans) {
  const auto view = ZELRenderView::initWithFrame(ports(), {0, 0, 320, 160}, 0);
  ASSERT_NE(view, nullptr);
  EXPECT_EQ(view->renderType(), 0);
  const auto player = stack->suitablePreviewPlayer();
  view->playVideoStream(player, "2_1");
  EXPECT_EQ(library.view.player, player);
  EXPECT_EQ(library.view.offset, "2_1");
  EXPECT_EQ(view->picture(), nullptr);
}

TEST_F(ZELRenderViewTest, IsNotMadeWhereTheHostShowsNothing) {
  platform::Ports without = ports();
  without.mediaLibrary = nullptr;
  EXPECT_EQ(ZELRenderView::initWithFrame(without, {0, 0, 320, 160}, 0), nullptr);
}

}  // namespace
}  // namespace zel::test
