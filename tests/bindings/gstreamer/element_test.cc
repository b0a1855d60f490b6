// What the element gives, and when.

#include <gst/check/gstharness.h>
#include <gst/video/video.h>

#include "tests/bindings/gstreamer/plugin_test.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kBoth =
    "zelcamsrc name=source source.video ! fakesink name=pictures source.audio ! fakesink name=sound";

// A buffer, or nothing, as the harness gives it.
struct UnrefBuffer {
  void operator()(GstBuffer* buffer) const { gst_buffer_unref(buffer); }
};
using Buffer = std::unique_ptr<GstBuffer, UnrefBuffer>;

// The element in the harness, whose pads are linked when they come.
class ElementTest : public PluginTest {
 protected:
  ~ElementTest() override {
    if (harness_ != nullptr) gst_harness_teardown(harness_);
  }

  void harness(const char* pad, const char* property = nullptr, const char* value = nullptr) {
    padName_ = pad;
    harness_ = gst_harness_new_empty();
    GstElement* const source = gst_element_factory_make("zelcamsrc", nullptr);
    ASSERT_TRUE(source != nullptr);
    if (property != nullptr) gst_util_set_object_arg(G_OBJECT(source), property, value);
    g_signal_connect(source, "pad-added", G_CALLBACK(&ElementTest::padAdded), this);
    static GstStaticPadTemplate sink =
        GST_STATIC_PAD_TEMPLATE("sink", GST_PAD_SINK, GST_PAD_ALWAYS, GST_STATIC_CAPS_ANY);
    gst_harness_add_element_full(harness_, source, nullptr, nullptr, &sink, nullptr);
    gst_object_unref(source);
    gst_harness_use_systemclock(harness_);
    gst_harness_play(harness_);
  }
  static void padAdded(GstElement*, GstPad* pad, ElementTest* self) {
    if (GST_PAD_NAME(pad) == std::string(self->padName_)) gst_harness_add_element_src_pad(self->harness_, pad);
  }
  Buffer pull() { return Buffer(gst_harness_pull(harness_)); }

  const char* padName_ = nullptr;
  GstHarness* harness_ = nullptr;
};

bool has(const Buffer& buffer, guint flag) { return (GST_BUFFER_FLAGS(buffer.get()) & flag) != 0; }

std::string textOf(const GstCaps* caps) {
  gchar* const text = gst_caps_to_string(caps);
  std::string copy = text;
  g_free(text);
  return copy;
}

// Keeps what the video pad says that it gives.
void tellCaps(GstElement*, GstPad* pad, std::string* told) {
  const Own<GstCaps> caps(gst_pad_get_current_caps(pad));
  if (std::string(GST_PAD_NAME(pad)) == "video") *told = textOf(caps.get());
}

void count(GstElement*, GstBuffer*, GstPad*, int* seen) { ++*seen; }

std::vector<int> unitTypes(const Buffer& buffer) {
  GstMapInfo map;
  std::vector<int> types;
  if (!gst_buffer_map(buffer.get(), &map, GST_MAP_READ)) return types;
  for (gsize at = 0; at + 4 < map.size; ++at) {
    const guint8* const bytes = map.data + at;
    if (bytes[0] == 0 && bytes[1] == 0 && bytes[2] == 0 && bytes[3] == 1) types.push_back(bytes[4] & 0x1F);
  }
  gst_buffer_unmap(buffer.get(), &map);
  return types;
}

TEST_F(ElementTest, PicturesBeginWithAKeyPictureAndItsParameterSets) {
  attach();
  harness("video");
  const Buffer first = pull();
  ASSERT_TRUE(first);
  EXPECT_FALSE(has(first, GST_BUFFER_FLAG_DELTA_UNIT));
  EXPECT_TRUE(has(first, GST_BUFFER_FLAG_DISCONT));
  EXPECT_THAT(unitTypes(first), ElementsAre(7, 8, 5));
  const Buffer second = pull();
  EXPECT_TRUE(has(second, GST_BUFFER_FLAG_DELTA_UNIT));
  EXPECT_FALSE(has(second, GST_BUFFER_FLAG_DISCONT));
  EXPECT_THAT(unitTypes(second), ElementsAre(1));
  EXPECT_GT(GST_BUFFER_PTS(second.get()), GST_BUFFER_PTS(first.get()));
  EXPECT_EQ(GST_BUFFER_DTS(second.get()), GST_BUFFER_PTS(second.get()));
  EXPECT_EQ(GST_BUFFER_DURATION(second.get()), 33'333'333u);
}

TEST_F(ElementTest, EachKeyPictureBringsTheParameterSets) {
  attach();
  harness("video");
  for (int keys = 0; keys < 3;) {
    const Buffer picture = pull();
    ASSERT_TRUE(picture);
    if (has(picture, GST_BUFFER_FLAG_DELTA_UNIT)) continue;
    EXPECT_THAT(unitTypes(picture), ElementsAre(7, 8, 5));
    ++keys;
  }
}

TEST_F(ElementTest, SoundComesInFramesOfItsLength) {
  attach();
  harness("audio");
  Buffer before = pull();
  ASSERT_TRUE(before);
  EXPECT_TRUE(has(before, GST_BUFFER_FLAG_DISCONT));
  guint64 apart = 0;
  for (int frames = 0; frames < 60; ++frames) {  // longer than the host compares its clock with the camera's
    Buffer next = pull();
    ASSERT_TRUE(next);
    EXPECT_FALSE(has(next, GST_BUFFER_FLAG_DISCONT));
    EXPECT_EQ(GST_BUFFER_DURATION(next.get()), 21'333'333u);
    apart = GST_BUFFER_PTS(next.get()) - GST_BUFFER_PTS(before.get());
    before = std::move(next);
  }
  EXPECT_NEAR(static_cast<double>(apart), 21'333'333, 1000);
}

TEST_F(ElementTest, CapsTellAllThatIsKnown) {
  attach();
  harness("video");
  ASSERT_TRUE(pull());
  const Own<GstCaps> caps(gst_pad_get_current_caps(harness_->sinkpad));
  const std::string text = textOf(caps.get());
  for (const char* part :
       {"video/x-h264", "stream-format=(string)byte-stream", "alignment=(string)au", "width=(int)1440",
        "height=(int)720", "framerate=(fraction)30/1", "colorimetry=(string)", "profile=(string)", "level=(string)"}) {
    EXPECT_THAT(text, HasSubstr(part));
  }
}

TEST_F(ElementTest, CapsOfTheSoundHoldItsConfiguration) {
  attach();
  harness("audio");
  ASSERT_TRUE(pull());
  const Own<GstCaps> caps(gst_pad_get_current_caps(harness_->sinkpad));
  const GstStructure* const sound = gst_caps_get_structure(caps.get(), 0);
  gint rate = 0, channels = 0;
  EXPECT_TRUE(gst_structure_get_int(sound, "rate", &rate));
  EXPECT_TRUE(gst_structure_get_int(sound, "channels", &channels));
  EXPECT_EQ(rate, 48'000);
  EXPECT_GE(channels, 1);
  const GValue* const config = gst_structure_get_value(sound, "codec_data");
  ASSERT_TRUE(config != nullptr);
  EXPECT_EQ(gst_buffer_get_size(gst_value_get_buffer(config)), 2u);
}

TEST_F(ElementTest, RawPicturesAreNotCopiedForWhoeverReadsStrides) {
  attach();
  harness("video", "output", "raw");
  gst_harness_add_propose_allocation_meta(harness_, GST_VIDEO_META_API_TYPE, nullptr);
  ASSERT_TRUE(pull());
  const Buffer picture = pull();
  const GstVideoMeta* const meta = gst_buffer_get_video_meta(picture.get());
  ASSERT_TRUE(meta != nullptr);
  EXPECT_EQ(meta->format, GST_VIDEO_FORMAT_NV12);
  EXPECT_EQ(meta->width, 1440u);
  EXPECT_EQ(gst_buffer_n_memory(picture.get()), 2u);
  EXPECT_TRUE(GST_MEMORY_IS_READONLY(gst_buffer_peek_memory(picture.get(), 0)));
}

TEST_F(ElementTest, RawPicturesOfWhoeverReadsNoStridesHaveTheLayoutOfTheirCaps) {
  attach();
  harness("video", "output", "raw");
  const Buffer picture = pull();
  ASSERT_TRUE(picture);
  EXPECT_EQ(gst_buffer_get_size(picture.get()), 1440u * 720 * 3 / 2);
}

TEST_F(ElementTest, PicturesThatAreKeptForLongAreCopies) {
  attach();
  harness("video", "output", "raw");
  gst_harness_add_propose_allocation_meta(harness_, GST_VIDEO_META_API_TYPE, nullptr);
  std::vector<Buffer> kept;
  for (int one = 0; one < 30; ++one) {
    kept.push_back(pull());
    ASSERT_TRUE(kept.back());
  }
  EXPECT_EQ(gst_buffer_n_memory(kept.back().get()), 1u);
}

TEST_F(ElementTest, StitchedPicturesHaveTheSizeThatIsAskedFor) {
  attach();
  make("zelcamsrc name=source output=stitched width=640 height=320 num-buffers=5 ! fakesink");
  std::string caps;
  const Own<GstElement> source = element("source");
  g_signal_connect(source.get(), "pad-added", G_CALLBACK(tellCaps), &caps);
  gst_element_set_state(pipeline_.get(), GST_STATE_PLAYING);
  EXPECT_EQ(end(), "");
  EXPECT_THAT(caps, HasSubstr("format=(string)NV12"));
  EXPECT_THAT(caps, HasSubstr("width=(int)640, height=(int)320"));
  EXPECT_THAT(caps, HasSubstr("colorimetry=(string)1:4:"));
}

TEST_F(ElementTest, AsManyPicturesComeAsAreAskedForAndThenTheEnd) {
  attach();
  make("zelcamsrc name=source num-buffers=7 source.video ! fakesink name=pictures signal-handoffs=true");
  int seen = 0;
  const Own<GstElement> sink = element("pictures");
  g_signal_connect(sink.get(), "handoff", G_CALLBACK(count), &seen);
  gst_element_set_state(pipeline_.get(), GST_STATE_PLAYING);
  EXPECT_EQ(end(), "");
  EXPECT_EQ(seen, 7);
}

TEST_F(ElementTest, TheEndThatAPipelineAsksForReachesBothPads) {
  attach();
  play(kBoth);
  const Own<GstElement> source = element("source");
  ASSERT_TRUE(eventually([&] { return figure(*source, "pictures") > 5; }));
  ASSERT_TRUE(gst_element_send_event(pipeline_.get(), gst_event_new_eos()));
  EXPECT_EQ(end(), "") << "the end of all sinks";
}

TEST_F(ElementTest, TheEndBeforeTheFirstPictureComesWithThePads) {
  attach();
  play(kBoth);
  ASSERT_TRUE(gst_element_send_event(pipeline_.get(), gst_event_new_eos()));
  EXPECT_EQ(end(), "");
}

TEST_F(ElementTest, APadThatNobodyLinksDoesNotStopTheOther) {
  attach();
  play("zelcamsrc name=source num-buffers=45 source.video ! fakesink");
  EXPECT_EQ(end(), "");
  play("zelcamsrc name=source source.audio ! fakesink");
  const Own<GstElement> source = element("source");
  EXPECT_TRUE(eventually([&] { return figure(*source, "audio-frames") > 45; }));
}

TEST_F(ElementTest, PadsThatNobodyLinksAtAllAreAnError) {
  attach();
  play("zelcamsrc");
  EXPECT_THAT(end(), HasSubstr("stream error"));
}

TEST_F(ElementTest, TheLatencyIsTold) {
  attach();
  play("zelcamsrc name=source num-buffers=5 ! fakesink sync=true processing-deadline=0");
  EXPECT_EQ(end(), "");
  GstQuery* const query = gst_query_new_latency();
  ASSERT_TRUE(gst_element_query(pipeline_.get(), query));
  gboolean live = FALSE;
  GstClockTime least = 0, most = 0;
  gst_query_parse_latency(query, &live, &least, &most);
  gst_query_unref(query);
  EXPECT_TRUE(live);
  EXPECT_EQ(least, 66'666'666u) << "two pictures";
  EXPECT_EQ(most, 62u * 33'333'333) << "and sixty that wait";
}

TEST_F(ElementTest, APausedPipelineGetsNothingAndGoesOnWithAKeyPicture) {
  attach();
  harness("video");
  Buffer last = pull();
  ASSERT_TRUE(last);
  GstElement* const source = harness_->element;
  EXPECT_EQ(gst_element_set_state(source, GST_STATE_PAUSED), GST_STATE_CHANGE_NO_PREROLL);
  const guint64 before = figure(*source, "pictures");
  ASSERT_TRUE(eventually([&] { return figure(*source, "pictures") > before + 5; }));
  while (Buffer waiting = Buffer(gst_harness_try_pull(harness_))) last = std::move(waiting);
  const guint64 paused = figure(*source, "pictures");
  ASSERT_TRUE(eventually([&] { return figure(*source, "pictures") > paused + 5; }));
  EXPECT_FALSE(Buffer(gst_harness_try_pull(harness_)));
  gst_element_set_state(source, GST_STATE_PLAYING);
  const Buffer next = pull();
  ASSERT_TRUE(next);
  EXPECT_TRUE(has(next, GST_BUFFER_FLAG_DISCONT));
  EXPECT_FALSE(has(next, GST_BUFFER_FLAG_DELTA_UNIT));
  EXPECT_GT(GST_BUFFER_PTS(next.get()), GST_BUFFER_PTS(last.get()));
}

TEST_F(ElementTest, WhoeverIsTooSlowLosesPicturesAndGoesOnWithAKeyPicture) {
  attach();
  harness("video");
  ASSERT_TRUE(pull());
  GstElement* const source = harness_->element;
  const gulong block = gst_pad_add_probe(
      harness_->sinkpad, static_cast<GstPadProbeType>(GST_PAD_PROBE_TYPE_BLOCK | GST_PAD_PROBE_TYPE_BUFFER),
      +[](GstPad*, GstPadProbeInfo*, gpointer) { return GST_PAD_PROBE_OK; }, nullptr, nullptr);
  ASSERT_TRUE(eventually([&] { return figure(*source, "dropped-video") > 0; }));
  gst_pad_remove_probe(harness_->sinkpad, block);
  Buffer next = pull();
  while (next && !has(next, GST_BUFFER_FLAG_DISCONT)) next = pull();
  ASSERT_TRUE(next);
  EXPECT_FALSE(has(next, GST_BUFFER_FLAG_DELTA_UNIT));
}

TEST_F(ElementTest, EveryPropertyIsDocumented) {
  const Own<GstElement> source(GST_ELEMENT(gst_object_ref_sink(gst_element_factory_make("zelcamsrc", nullptr))));
  std::ifstream file(SOURCES "/docs/gstreamer.md");
  const std::string page{std::istreambuf_iterator<char>(file), {}};
  guint count = 0, own = 0;
  GParamSpec** const all = g_object_class_list_properties(G_OBJECT_GET_CLASS(source.get()), &count);
  for (guint one = 0; one < count; ++one) {
    if (all[one]->owner_type != G_OBJECT_TYPE(source.get())) continue;
    ++own;
    EXPECT_NE(std::string(g_param_spec_get_blurb(all[one])), "") << all[one]->name;
    EXPECT_THAT(page, HasSubstr("| `" + std::string(all[one]->name) + "`"));
  }
  g_free(all);
  EXPECT_EQ(own, 15u);
}

}  // namespace
}  // namespace zel::test
