// A camera that is not there, is another's or goes, and a host that does anything at any moment.

#include <array>
#include <random>

#include "tests/bindings/gstreamer/plugin_test.h"

namespace zel::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr auto kToEnd = static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR);
constexpr const char* kStates = "zelcamsrc name=source open-timeout=3600000 start-timeout=3600000 ! fakesink";

void keepBreaks(GstElement*, GstBuffer* buffer, GstPad*, Recorded<GstClockTime>* breaks) {
  if (GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_DISCONT)) breaks->add(GST_BUFFER_PTS(buffer));
}

class FailureTest : public PluginTest {
 protected:
  // Sends nothing to whoever opens it.
  static simulator::Faults silent() {
    simulator::Faults faults;
    faults.stall = simulator::Stall{.seconds = 3600, .every = 0};
    return faults;
  }
  void expectError(GQuark domain, gint code, const std::string& begin) {
    const auto last = message(kToEnd);
    ASSERT_TRUE(last);
    ASSERT_EQ(GST_MESSAGE_TYPE(last.get()), GST_MESSAGE_ERROR);
    GError* error = nullptr;
    gst_message_parse_error(last.get(), &error, nullptr);
    const Own<GError> owned(error);
    EXPECT_EQ(error->domain, domain);
    EXPECT_EQ(error->code, code) << error->message;
    EXPECT_THAT(std::string(error->message), StartsWith(begin));
  }
  void set(GstState state) { EXPECT_NE(gst_element_set_state(pipeline_.get(), state), GST_STATE_CHANGE_FAILURE); }
  void awaitPictures(guint64 most = 3) {
    const Own<GstElement> source = element("source");
    ASSERT_TRUE(eventually([&] { return figure(*source, "pictures") > most; }));
  }
};

TEST_F(FailureTest, AnUnknownSerialNumberIsAnErrorThatNamesIt) {
  attach();
  play("zelcamsrc serial-number=NONE open-timeout=300 ! fakesink");
  expectError(GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_NOT_FOUND, "no camera NONE was attached in time");
}

TEST_F(FailureTest, ACameraThatAnotherElementHasIsBusy) {
  attach();
  play("zelcamsrc name=source ! fakesink");
  awaitPictures();
  const auto first = std::exchange(pipeline_, nullptr);
  play("zelcamsrc ! fakesink");
  expectError(GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_BUSY, "camera E1A0001 is in use by process");
  gst_element_set_state(first.get(), GST_STATE_NULL);
  gst_element_set_state(pipeline_.get(), GST_STATE_NULL);
  play("zelcamsrc num-buffers=2 ! fakesink");
  EXPECT_EQ(end(), "") << "it is free again";
}

TEST_F(FailureTest, AFolderThatCannotBeUsedIsNamed) {
  play("zelcamsrc folder=/dev/null/bus ! fakesink");
  const auto last = message(kToEnd);
  ASSERT_TRUE(last);
  EXPECT_THAT(words(*last), HasSubstr("/dev/null/bus"));
}

TEST_F(FailureTest, AnOddSizeIsRefusedInWords) {
  attach();
  play("zelcamsrc output=stitched width=961 ! fakesink");
  expectError(GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_SETTINGS,
              "there are no panoramas of 961 x 960 pixels; both sides must be even");
}

TEST_F(FailureTest, AValueOutOfRangeIsNotTaken) {
  const Own<GstElement> source(GST_ELEMENT(gst_object_ref_sink(gst_element_factory_make("zelcamsrc", nullptr))));
  for (const auto& [name, wrong] : {std::pair{"width", "1"},
                                    {"height", "16385"},
                                    {"decoder-threads", "17"},
                                    {"open-timeout", "0"},
                                    {"num-buffers", "-2"}}) {
    gint before = 0, after = 0;
    g_object_get(source.get(), name, &before, nullptr);
    gst_util_set_object_arg(G_OBJECT(source.get()), name, wrong);
    g_object_get(source.get(), name, &after, nullptr);
    EXPECT_EQ(before, after) << name;
  }
}

TEST_F(FailureTest, ASilentCameraIsAnErrorInTime) {
  attach(silent());
  play("zelcamsrc open-timeout=1000 ! fakesink");
  expectError(GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_OPEN_READ,
              "the camera E1A0001 is attached but sent nothing in time");
}

TEST_F(FailureTest, ACameraWithoutSoundIsAnErrorInTime) {
  simulator::Faults faults;
  faults.noReply = {0x000E};
  attach(faults);
  play("zelcamsrc start-timeout=3000 ! fakesink");
  expectError(GST_STREAM_ERROR, GST_STREAM_ERROR_FAILED, "the stream did not start: pictures come, and no sound");
}

TEST_F(FailureTest, ALensOffsetThatSaysNothingIsAnErrorThatShowsIt) {
  attach();
  const std::string offset = "2_0_0_0_0_0_0_0_0_0_0_0_0_3040_1520_7";
  Process host(zelcamProgram(), {"call", "msgReqSetMediaOffset", "0", "3", offset}, folder_.path());
  ASSERT_EQ(host.wait(), 0) << host.errors();
  play("zelcamsrc output=stitched ! fakesink");
  expectError(GST_STREAM_ERROR, GST_STREAM_ERROR_FAILED,
              "no picture can be stitched with the camera's lens offset \"2_0.000_");
}

TEST_F(FailureTest, ALostCameraThatComesBackIsToldAndGoesOnBehindAGap) {
  attach();
  play("zelcamsrc name=source ! fakesink name=sink signal-handoffs=true");
  Recorded<GstClockTime> breaks;
  const Own<GstElement> sink = element("sink");
  g_signal_connect(sink.get(), "handoff", G_CALLBACK(keepBreaks), &breaks);
  ASSERT_FALSE(breaks.wait(1).empty());
  camera().unplug();
  const auto lost = message(static_cast<GstMessageType>(GST_MESSAGE_WARNING | GST_MESSAGE_ERROR));
  ASSERT_TRUE(lost);
  EXPECT_EQ(words(*lost), "the camera was lost; the stream waits for it");
  const Own<GstElement> source = element("source");
  EXPECT_EQ(figure(*source, "losses"), 1u);
  camera().plug();
  const auto back = message(static_cast<GstMessageType>(GST_MESSAGE_INFO | GST_MESSAGE_ERROR));
  ASSERT_TRUE(back);
  EXPECT_EQ(words(*back), "the camera is back");
  const auto both = breaks.wait(2);
  ASSERT_GE(both.size(), 2u);
  EXPECT_GT(both.back(), both.front());
}

TEST_F(FailureTest, ALostCameraIsAnErrorWhereThatIsWanted) {
  attach();
  play("zelcamsrc name=source on-loss=error ! fakesink");
  awaitPictures();
  camera().unplug();
  expectError(GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_READ, "the camera was lost");
}

TEST_F(FailureTest, ALostCameraEndsTheStreamWhereThatIsWanted) {
  attach();
  play("zelcamsrc name=source on-loss=eos ! fakesink");
  awaitPictures();
  camera().unplug();
  EXPECT_EQ(end(), "");
}

TEST_F(FailureTest, ALostCameraIsNotWaitedForLongerThanItMay) {
  attach();
  play("zelcamsrc name=source loss-timeout=200 ! fakesink");
  awaitPictures();
  camera().unplug();
  expectError(GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_READ,
              "the camera was lost, and did not come back within 200 milliseconds");
}

TEST_F(FailureTest, AStreamThatIsOpenedAgainBringsPicturesAgain) {
  attach();
  for (const char* output : {"camera", "stitched", "raw"}) {
    make("zelcamsrc name=source output=" + std::string(output) + " width=320 height=160 ! fakesink");
    for (int round = 0; round < 2; ++round) {
      set(GST_STATE_PLAYING);
      awaitPictures();
      set(GST_STATE_READY);
    }
    set(GST_STATE_NULL);
  }
}

// What would wait an hour is cancelled.
TEST_F(FailureTest, AnElementMayGoWhileItOpensItsCamera) {
  for (int round = 0; round < 5; ++round) {
    play(kStates);
    set(GST_STATE_NULL);
    pipeline_.reset();
  }
  attach(silent());
  play(kStates);
  ASSERT_TRUE(eventually([&] { return camera().connections() > 0; }));
  set(GST_STATE_NULL);
}

TEST_F(FailureTest, AnElementMayGoWhileItsStreamBegins) {
  simulator::Faults faults;
  faults.noReply = {0x000E};
  attach(faults);
  play(kStates);
  ASSERT_TRUE(eventually([&] { return camera().requests() > 0; }));
  set(GST_STATE_NULL);
}

TEST_F(FailureTest, StatesChangeInAnyOrderAndAtAnyMoment) {
  attach();
  constexpr std::array kAll = {GST_STATE_NULL, GST_STATE_READY, GST_STATE_PAUSED, GST_STATE_PLAYING};
  std::minstd_rand random(7);
  make(kStates);
  const Own<GstElement> source = element("source");
  for (int round = 0; round < 60; ++round) {
    set(kAll.at(random() % kAll.size()));
    if (round % 10 == 9) {
      set(GST_STATE_PLAYING);
      const guint64 before = figure(*source, "pictures");
      ASSERT_TRUE(eventually([&] { return figure(*source, "pictures") > before; }));
    }
  }
}

TEST_F(FailureTest, StatesChangeWhileTheCameraComesAndGoes) {
  attach();
  constexpr std::array kAll = {GST_STATE_READY, GST_STATE_PAUSED, GST_STATE_PLAYING};
  std::minstd_rand random(11);
  make("zelcamsrc name=source output=stitched width=320 height=160 ! fakesink");
  const Own<GstElement> source = element("source");
  for (int round = 0; round < 40; ++round) {
    set(kAll.at(random() % kAll.size()));
    round % 2 == 0 ? camera().unplug() : camera().plug();
    if (round % 8 != 7) continue;
    set(GST_STATE_PLAYING);
    const guint64 before = figure(*source, "pictures");
    ASSERT_TRUE(eventually([&] { return figure(*source, "pictures") > before; }));
  }
}

TEST_F(FailureTest, ACameraMayGoInEachState) {
  attach();
  for (const GstState state : {GST_STATE_NULL, GST_STATE_READY, GST_STATE_PAUSED, GST_STATE_PLAYING}) {
    make(kStates);
    set(state);
    if (state == GST_STATE_PLAYING || state == GST_STATE_PAUSED) {
      const Own<GstElement> source = element("source");
      ASSERT_TRUE(eventually([&] { return camera().connections() > 0; }));
    }
    camera().unplug();
    set(GST_STATE_PLAYING);
    camera().plug();
    awaitPictures();
    set(GST_STATE_NULL);
  }
}

TEST_F(FailureTest, NothingIsLeftBehind) {
  attach();
  play("zelcamsrc name=source num-buffers=5 ! fakesink");
  EXPECT_EQ(end(), "");
  set(GST_STATE_NULL);
  pipeline_.reset();
  const std::size_t descriptors = descriptorCount();
  for (int round = 0; round < 3; ++round) {
    play("zelcamsrc name=source num-buffers=5 ! fakesink");
    EXPECT_EQ(end(), "");
    set(GST_STATE_NULL);
    pipeline_.reset();
  }
  EXPECT_TRUE(eventually([&] { return descriptorCount() <= descriptors; }));
}

}  // namespace
}  // namespace zel::test
