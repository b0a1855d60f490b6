// Sound and pictures of a pipeline's file, by the simulated camera's lamp and beep.

#include <cmath>

#include "tests/bindings/gstreamer/plugin_test.h"
#include "tests/zelcam/tick_and_beep.h"

namespace zel::test {
namespace {

constexpr double kMostApart = 5;  // milliseconds

class SynchronyTest : public PluginTest {
 protected:
  const std::string film_ = folder_.path() + "-film.mkv";

  ~SynchronyTest() override { std::filesystem::remove(film_); }

  // Muxes both pads to a file.
  void film(const std::string& source, const std::string& pictures) {
    begin(source, pictures);
    finish();
  }
  void begin(const std::string& source, const std::string& pictures) {
    attach();
    play("zelcamsrc name=c num-buffers=150 " + source + " c.video ! " + pictures +
         " ! queue ! matroskamux name=m ! filesink location=" + film_ + " c.audio ! aacparse ! queue ! m.");
  }
  void finish() {
    EXPECT_EQ(end(), "");
    gst_element_set_state(pipeline_.get(), GST_STATE_NULL);
  }
  void expectTogether(LampPlace lamp) const {
    const std::vector<double> delays = delaysOf(ticksAndBeepsIn(film_, lamp, 30));
    ASSERT_FALSE(delays.empty());
    EXPECT_GE(delays.front(), -kMostApart) << testing::PrintToString(delays);
    EXPECT_LE(delays.back(), kMostApart) << testing::PrintToString(delays);
  }
};

TEST_F(SynchronyTest, TheBeepIsHeardWhenTheLampIsSeen) {
  film("", "h264parse");
  expectTogether(lampInFisheyes());
}

TEST_F(SynchronyTest, TheBeepIsHeardWhenTheLampIsSeenInPicturesThatAreEncodedAgain) {
  film("output=raw", "x264enc tune=zerolatency speed-preset=ultrafast");
  expectTogether(lampInFisheyes());
}

TEST_F(SynchronyTest, TheBeepIsHeardWhenTheLampIsSeenAlsoWhenTheCameraWasAway) {
  begin("", "h264parse");
  const Own<GstElement> source = element("c");
  ASSERT_TRUE(eventually([&] { return figure(*source, "pictures") > 60; }));
  camera().unplug();
  ASSERT_TRUE(eventually([&] { return figure(*source, "losses") == 1; }));
  camera().plug();
  finish();
  expectTogether(lampInFisheyes());
}

TEST_F(SynchronyTest, TheBeepIsHeardWhenTheLampIsSeenInPanoramas) {
  film("output=stitched width=480 height=240", "x264enc tune=zerolatency speed-preset=ultrafast");
  expectTogether(lampInPanorama());
}

}  // namespace
}  // namespace zel::test
