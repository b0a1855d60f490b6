#pragma once

#include <ZELTarkaSDK/MediaPacket.h>
#include <ZELTarkaSDK/platform/pixel_buffer.h>
#include <gst/gst.h>

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>

namespace zel::gst {

// What waits to be pushed: a packet's bytes, or a picture.
//
// Units: nanoseconds of running time.
struct Item {
  ZELData bytes = {};
  platform::PixelBufferRef picture = {};
  std::uint64_t time = 0, duration = 0;
  bool isKey = true;
  bool isFirst = false;  // behind a break
};

// A pad of the element, with a bounded queue before it and the task that pushes what is in it. Whoever reads the pad
// too slowly loses the oldest pictures or sound; a pad of H.264 then goes on with a key picture.
//
// Thread: any thread, for all but what the functions of Role say.
class SourcePad {
 public:
  struct Role {
    const char* name;      // of the pad and of its template
    std::size_t capacity;  // of the queue
    bool needsKeys;        // what follows a gap must be a key picture
    // Makes a buffer without times; null drops the item.
    //
    // Thread: the pad's task.
    std::function<GstBuffer*(const Item&)> buffer;
    // Told of each push. True: the task goes on.
    //
    // Thread: the pad's task.
    std::function<bool(GstPad*, GstFlowReturn)> pushed;
  };

  SourcePad(GstElement& element, Role role);
  ~SourcePad();
  SourcePad(const SourcePad&) = delete;
  SourcePad& operator=(const SourcePad&) = delete;

  GstPad* pad() const { return pad_; }

  // Shows the pad with what must precede all buffers. group: shared by the element's pads.
  void show(GstCaps& caps, guint group);
  // Begins to push. show() first.
  void start();
  void append(Item item);
  // End of stream: behind what is in the queue, or instead of it. Also before the pad is shown.
  void end();
  void endAtOnce();
  // Lets the task end: what waits is gone, and so is what follows.
  void flush();
  // The same, waits for the task, and removes the pad.
  void stop();

  std::uint64_t dropped() const;

 private:
  static gboolean activate(GstPad* pad, GstObject* element, GstPadMode mode, gboolean active);
  static gboolean query(GstPad* pad, GstObject* element, GstQuery* query);
  void run();
  enum class Next { item, end, nothing };
  Next take(Item& item);
  bool makeRoom();
  void push(const Item& item);

  GstElement& element_;
  const Role role_;
  GstPad* const pad_;
  bool isShown_ = false;
  bool breaks_ = true;  // pad's task only: the next buffer follows a gap

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Item> items_;
  std::uint64_t dropped_ = 0;
  bool waitsForKey_, isEnding_ = false, isFlushing_ = false;
  bool hasGap_ = false;  // before the first of the items
};

}  // namespace zel::gst
