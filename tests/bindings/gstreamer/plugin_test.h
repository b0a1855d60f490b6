#pragma once

#include <gmock/gmock.h>
#include <gst/gst.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "tests/platform/linux/waiting.h"
#include "tests/simulator/simulated_bus.h"
#include "tests/zelcam/process.h"

namespace zel::test {

struct Unref {
  void operator()(gpointer object) const { gst_object_unref(object); }
  void operator()(GstMessage* message) const { gst_message_unref(message); }
  void operator()(GstCaps* caps) const { gst_caps_unref(caps); }
  void operator()(GstStructure* structure) const { gst_structure_free(structure); }
  void operator()(GError* error) const { g_error_free(error); }
};
template <class T>
using Own = std::unique_ptr<T, Unref>;

inline constexpr GstClockTime kLongest = 60 * GST_SECOND;  // only a test that fails waits that long

// Simulated cameras on a bus of its own, and pipelines with the plugin of the build tree.
class PluginTest : public SimulatedBus {
 protected:
  PluginTest() {
    setenv("GST_PLUGIN_PATH", PLUGINS, 1);
    setenv("GST_REGISTRY", REGISTRY, 1);
    setenv("ZEL_ACCESSORIES", folder_.path().c_str(), 1);
    gst_init(nullptr, nullptr);
  }
  ~PluginTest() override {
    if (pipeline_) gst_element_set_state(pipeline_.get(), GST_STATE_NULL);
  }

  simulator::CameraSimulator& camera() { return simulated(); }

  // A pipeline of that; the one before is ended.
  void make(const std::string& description) {
    if (pipeline_) gst_element_set_state(pipeline_.get(), GST_STATE_NULL);
    GError* error = nullptr;
    GstElement* const parsed = gst_parse_launch_full(description.c_str(), nullptr, GST_PARSE_FLAG_PLACE_IN_BIN, &error);
    const Own<GError> owned(error);
    ASSERT_TRUE(parsed != nullptr) << error->message;
    pipeline_.reset(GST_ELEMENT(gst_object_ref_sink(gst_pipeline_new(nullptr))));
    gst_bin_add(GST_BIN(pipeline_.get()), parsed);
  }
  void play(const std::string& description) {
    make(description);
    ASSERT_NE(gst_element_set_state(pipeline_.get(), GST_STATE_PLAYING), GST_STATE_CHANGE_FAILURE);
  }
  Own<GstElement> element(const char* name) {
    return Own<GstElement>(gst_bin_get_by_name(GST_BIN(pipeline_.get()), name));
  }

  // The next message of the pipeline of one of those kinds.
  Own<GstMessage> message(GstMessageType kinds) {
    const Own<GstBus> bus(gst_element_get_bus(pipeline_.get()));
    return Own<GstMessage>(gst_bus_timed_pop_filtered(bus.get(), kLongest, kinds));
  }
  // Whether the pipeline ends without an error, and the error's words otherwise.
  std::string end() {
    const auto last = message(static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
    if (!last) return "nothing came";
    return GST_MESSAGE_TYPE(last.get()) == GST_MESSAGE_EOS ? "" : words(*last);
  }
  static std::string words(GstMessage& message) {
    GError* error = nullptr;
    if (GST_MESSAGE_TYPE(&message) == GST_MESSAGE_WARNING) gst_message_parse_warning(&message, &error, nullptr);
    if (GST_MESSAGE_TYPE(&message) == GST_MESSAGE_ERROR) gst_message_parse_error(&message, &error, nullptr);
    if (GST_MESSAGE_TYPE(&message) == GST_MESSAGE_INFO) gst_message_parse_info(&message, &error, nullptr);
    const Own<GError> owned(error);
    return owned ? owned->message : "";
  }

  // A figure of the element's stats.
  static guint64 figure(GstElement& source, const char* name) {
    GstStructure* stats = nullptr;
    g_object_get(&source, "stats", &stats, nullptr);
    const Own<GstStructure> owned(stats);
    guint64 value = 0;
    EXPECT_TRUE(gst_structure_get_uint64(stats, name, &value)) << name;
    return value;
  }

  Own<GstElement> pipeline_;
};

}  // namespace zel::test
