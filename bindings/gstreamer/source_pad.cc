#include "bindings/gstreamer/source_pad.h"

#include <utility>

namespace zel::gst {
namespace {

GstPad* newPad(GstElement& element, const char* name) {
  GstPadTemplate* const pattern = gst_element_get_pad_template(&element, name);
  return GST_PAD(gst_object_ref_sink(gst_pad_new_from_template(pattern, name)));
}

}  // namespace

SourcePad::SourcePad(GstElement& element, Role role)
    : element_(element), role_(std::move(role)), pad_(newPad(element, role_.name)), waitsForKey_(role_.needsKeys) {
  gst_pad_set_element_private(pad_, this);
  gst_pad_set_activatemode_function(pad_, &SourcePad::activate);
  gst_pad_set_query_function(pad_, &SourcePad::query);
  gst_pad_use_fixed_caps(pad_);
}

SourcePad::~SourcePad() {
  stop();
  gst_object_unref(pad_);
}

void SourcePad::stop() {
  flush();
  gst_pad_set_active(pad_, FALSE);
  gst_pad_stop_task(pad_);  // also where it was inactive already
  gst_pad_set_element_private(pad_, nullptr);
  if (std::exchange(isShown_, false)) gst_element_remove_pad(&element_, pad_);
}

gboolean SourcePad::activate(GstPad* pad, GstObject*, GstPadMode mode, gboolean active) {
  auto* const self = static_cast<SourcePad*>(gst_pad_get_element_private(pad));
  if (self == nullptr || mode != GST_PAD_MODE_PUSH) return FALSE;
  if (active) return TRUE;
  self->flush();
  return gst_pad_stop_task(pad);
}

// The element knows its latency.
gboolean SourcePad::query(GstPad* pad, GstObject* element, GstQuery* query) {
  const bool isOfElement = GST_QUERY_TYPE(query) == GST_QUERY_LATENCY && element != nullptr;
  return isOfElement ? gst_element_query(GST_ELEMENT(element), query) : gst_pad_query_default(pad, element, query);
}

void SourcePad::show(GstCaps& caps, guint group) {
  gst_pad_set_active(pad_, TRUE);
  gchar* const id = gst_pad_create_stream_id(pad_, &element_, role_.name);
  GstEvent* const begin = gst_event_new_stream_start(id);
  g_free(id);
  gst_event_set_group_id(begin, group);
  gst_pad_push_event(pad_, begin);
  gst_pad_push_event(pad_, gst_event_new_caps(&caps));
  GstSegment segment;
  gst_segment_init(&segment, GST_FORMAT_TIME);
  gst_pad_push_event(pad_, gst_event_new_segment(&segment));
  isShown_ = gst_element_add_pad(&element_, pad_) != FALSE;
}

void SourcePad::start() {
  const auto run = [](gpointer self) { static_cast<SourcePad*>(self)->run(); };
  gst_pad_start_task(pad_, run, this, nullptr);
}

// -- The queue

void SourcePad::append(Item item) {
  const std::lock_guard lock(mutex_);
  if (isEnding_ || isFlushing_) return;
  if (waitsForKey_ && !item.isKey) {
    dropped_ += hasGap_ ? 1 : 0;
    return;
  }
  if (items_.size() >= role_.capacity && !makeRoom()) {
    waitsForKey_ = !item.isKey;
    if (waitsForKey_) return;
  }
  waitsForKey_ = false;
  items_.push_back(std::move(item));
  changed_.notify_one();
}

// False where the next one must be a key picture.
bool SourcePad::makeRoom() {
  hasGap_ = true;
  dropped_ += role_.needsKeys ? items_.size() : 1;
  if (!role_.needsKeys) return items_.pop_front(), true;
  items_.clear();
  return false;
}

void SourcePad::end() {
  const std::lock_guard lock(mutex_);
  isEnding_ = true;
  changed_.notify_one();
}

void SourcePad::endAtOnce() {
  const std::lock_guard lock(mutex_);
  isEnding_ = true;
  items_.clear();
  changed_.notify_one();
}

void SourcePad::flush() {
  const std::lock_guard lock(mutex_);
  isFlushing_ = true;
  items_.clear();
  changed_.notify_one();
}

std::uint64_t SourcePad::dropped() const {
  const std::lock_guard lock(mutex_);
  return dropped_;
}

SourcePad::Next SourcePad::take(Item& item) {
  std::unique_lock lock(mutex_);
  while (items_.empty() && !isEnding_ && !isFlushing_) changed_.wait(lock);
  if (isFlushing_) return Next::nothing;
  if (items_.empty()) return Next::end;
  item = std::move(items_.front());
  items_.pop_front();
  item.isFirst |= std::exchange(hasGap_, false);
  return Next::item;
}

// -- The task

void SourcePad::run() {
  Item item;
  const Next next = take(item);
  if (next == Next::item) return push(item);
  if (next == Next::end) gst_pad_push_event(pad_, gst_event_new_eos());
  gst_pad_pause_task(pad_);
}

void SourcePad::push(const Item& item) {
  breaks_ |= item.isFirst;
  GstBuffer* const buffer = role_.buffer(item);
  if (buffer == nullptr) return;
  GST_BUFFER_PTS(buffer) = item.time;
  GST_BUFFER_DURATION(buffer) = item.duration;
  if (item.picture == nullptr) GST_BUFFER_DTS(buffer) = item.time;  // nothing is sent out of its order
  if (!item.isKey) GST_BUFFER_FLAG_SET(buffer, GST_BUFFER_FLAG_DELTA_UNIT);
  if (std::exchange(breaks_, false)) GST_BUFFER_FLAG_SET(buffer, GST_BUFFER_FLAG_DISCONT);
  const GstFlowReturn flow = gst_pad_push(pad_, buffer);
  if (flow == GST_FLOW_NOT_LINKED && role_.needsKeys) {
    const std::lock_guard lock(mutex_);
    waitsForKey_ = true;  // for whoever is linked later
    items_.clear();
  }
  if (flow == GST_FLOW_NOT_LINKED) breaks_ = true;
  if (!role_.pushed(pad_, flow)) gst_pad_pause_task(pad_);
}

}  // namespace zel::gst
