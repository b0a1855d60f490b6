#include "bindings/gstreamer/zelcamsrc.h"

#include <memory>
#include <mutex>
#include <utility>

#include "bindings/gstreamer/camera_run.h"
#include "bindings/gstreamer/caps.h"
#include "bindings/gstreamer/messages.h"
#include "bindings/gstreamer/properties.h"
#include "bindings/gstreamer/settings.h"

namespace zel::gst {
namespace {

// What the element holds.
//
// Thread: any thread.
class Source {
 public:
  explicit Source(GstElement& element) : element_(element) {}

  bool set(guint property, const GValue& value) {
    const std::lock_guard lock(mutex_);
    return setProperty(settings_, property, value);
  }
  bool get(guint property, GValue& value) {
    const std::lock_guard lock(mutex_);
    return getProperty(settings_, property, value);
  }

  bool start() {
    const std::lock_guard lock(mutex_);
    run_ = std::make_shared<CameraRun>(element_, settings_);
    return run_->start();
  }
  std::shared_ptr<CameraRun> run() {
    const std::lock_guard lock(mutex_);
    return run_;
  }
  // Who asks for figures may be the last that holds it.
  void end() {
    std::shared_ptr<CameraRun> run;
    {
      const std::lock_guard lock(mutex_);
      run = std::exchange(run_, nullptr);
    }
    if (run) run->end();
  }

 private:
  GstElement& element_;
  std::mutex mutex_;
  Settings settings_;
  std::shared_ptr<CameraRun> run_;  // between READY and PAUSED, and above
};

struct ZelCamSrc {
  GstElement element;
  Source* source;
};
struct ZelCamSrcClass {
  GstElementClass element;
};

gpointer parentClass = nullptr;  // set once, with the class

Source& sourceOf(gpointer object) { return *static_cast<ZelCamSrc*>(object)->source; }

// -- States

// Nothing here waits for the camera: it is opened on a thread of its own.
bool prepare(GstElement& element, GstStateChange change) {
  Source& source = sourceOf(&element);
  if (change == GST_STATE_CHANGE_READY_TO_PAUSED && !source.start()) {
    postError(element, {CameraError::Reason::platform, "no thread can be started to open the camera"});
    return false;
  }
  const auto run = source.run();
  if (!run) return true;
  if (change == GST_STATE_CHANGE_PAUSED_TO_PLAYING) run->pads().setPlaying(true);
  if (change == GST_STATE_CHANGE_PLAYING_TO_PAUSED) run->pads().setPlaying(false);
  if (change == GST_STATE_CHANGE_PAUSED_TO_READY) run->requestStop();
  return true;
}

GstStateChangeReturn changeState(GstElement* element, GstStateChange change) {
  if (!prepare(*element, change)) return sourceOf(element).end(), GST_STATE_CHANGE_FAILURE;
  const GstStateChangeReturn changed = GST_ELEMENT_CLASS(parentClass)->change_state(element, change);
  const bool isUp = change == GST_STATE_CHANGE_READY_TO_PAUSED || change == GST_STATE_CHANGE_PLAYING_TO_PAUSED;
  const bool hasFailed = changed == GST_STATE_CHANGE_FAILURE;
  if (change == GST_STATE_CHANGE_PAUSED_TO_READY || (change == GST_STATE_CHANGE_READY_TO_PAUSED && hasFailed)) {
    sourceOf(element).end();
  }
  return isUp && !hasFailed ? GST_STATE_CHANGE_NO_PREROLL : changed;
}

// The end of the stream is asked for at the element, as by "gst-launch-1.0 -e".
gboolean sendEvent(GstElement* element, GstEvent* event) {
  const auto run = sourceOf(element).run();
  if (GST_EVENT_TYPE(event) != GST_EVENT_EOS || !run) {
    return GST_ELEMENT_CLASS(parentClass)->send_event(element, event);
  }
  run->pads().end();
  gst_event_unref(event);
  return TRUE;
}

gboolean query(GstElement* element, GstQuery* query) {
  const auto run = sourceOf(element).run();
  if (GST_QUERY_TYPE(query) != GST_QUERY_LATENCY || !run) {
    return GST_QUERY_TYPE(query) != GST_QUERY_LATENCY && GST_ELEMENT_CLASS(parentClass)->query(element, query);
  }
  const StreamPads::Latency latency = run->pads().latency();
  gst_query_set_latency(query, TRUE, latency.least, latency.most);
  return TRUE;
}

// -- The object

void setObjectProperty(GObject* object, guint property, const GValue* value, GParamSpec* spec) {
  if (!sourceOf(object).set(property, *value)) G_OBJECT_WARN_INVALID_PROPERTY_ID(object, property, spec);
}

void getObjectProperty(GObject* object, guint property, GValue* value, GParamSpec* spec) {
  if (property == kStatistics) {
    const auto run = sourceOf(object).run();
    return g_value_take_boxed(value, run ? run->statistics() : gst_structure_new_empty("zelcam-stats"));
  }
  if (!sourceOf(object).get(property, *value)) G_OBJECT_WARN_INVALID_PROPERTY_ID(object, property, spec);
}

void finalize(GObject* object) {
  delete &sourceOf(object);
  G_OBJECT_CLASS(parentClass)->finalize(object);
}

void addTemplate(GstElementClass& type, const char* name, const char* caps) {
  GstCaps* const parsed = gst_caps_from_string(caps);
  gst_element_class_add_pad_template(&type, gst_pad_template_new(name, GST_PAD_SRC, GST_PAD_SOMETIMES, parsed));
  gst_caps_unref(parsed);
}

void initClass(gpointer type, gpointer) {
  parentClass = g_type_class_peek_parent(type);
  GObjectClass* const object = G_OBJECT_CLASS(type);
  object->set_property = setObjectProperty;
  object->get_property = getObjectProperty;
  object->finalize = finalize;
  installProperties(*object);
  GstElementClass* const element = GST_ELEMENT_CLASS(type);
  element->change_state = changeState;
  element->send_event = sendEvent;
  element->query = query;
  addTemplate(*element, "video", kVideoCaps);
  addTemplate(*element, "audio", kAudioCaps);
  gst_element_class_set_static_metadata(element, "360-degree camera source", "Source/Video/Audio/Hardware",
                                        "Pictures and sound of a 360-degree camera: its own H.264 and AAC, or NV12",
                                        "ZELTarkaSDK maintainers <maintainers@zeltarkasdk.invalid>");
}

void initInstance(GTypeInstance* instance, gpointer) {
  auto* const self = reinterpret_cast<ZelCamSrc*>(instance);
  self->source = new Source(self->element);
  GST_OBJECT_FLAG_SET(self, GST_ELEMENT_FLAG_SOURCE);
}

}  // namespace

bool registerElement(GstPlugin* plugin) {
  const GType type = g_type_register_static_simple(GST_TYPE_ELEMENT, "GstZelCamSrc", sizeof(ZelCamSrcClass), initClass,
                                                   sizeof(ZelCamSrc), initInstance, GTypeFlags{});
  return gst_element_register(plugin, kElement, GST_RANK_NONE, type) != FALSE;
}

}  // namespace zel::gst
