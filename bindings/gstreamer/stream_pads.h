#pragma once

#include <ZELTarkaSDK/MediaPacket.h>
#include <gst/base/base.h>
#include <gst/gst.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>

#include "bindings/gstreamer/buffers.h"
#include "bindings/gstreamer/panoramas.h"
#include "bindings/gstreamer/settings.h"
#include "bindings/gstreamer/source_pad.h"
#include "bindings/gstreamer/stream_times.h"

namespace zel::gst {

// The two pads, and what the stream brings for them on one running time. They are shown once the stream is known.
//
// Owner:  the element, which outlives it.
// Thread: any thread, except where an operation says otherwise.
class StreamPads {
 public:
  StreamPads(GstElement& element, const Settings& settings);
  ~StreamPads();
  StreamPads(const StreamPads&) = delete;
  StreamPads& operator=(const StreamPads&) = delete;

  // picture: one of those that follow; null for the camera's own H.264. panoramas: null where nothing is stitched.
  void show(const StreamHeaders& headers, const platform::PixelBufferRef& picture, Panoramas* panoramas);

  // The stream's packets, and the decoded pictures with their places among them.
  // Thread: where the camera's callbacks run. After show().
  void packet(const MediaPacket& packet);
  void picture(const platform::PixelBufferRef& picture, std::int64_t time);

  // A pipeline that does not play gets no buffers.
  void setPlaying(bool isPlaying);
  // Ends both streams behind what has come; also those that are not shown yet.
  void end();
  // Lets the tasks of the pads end.
  void flush();
  // The same, waits for them, and removes the pads.
  void stop();

  // How much later than its time a buffer is pushed, and how much later it may be taken.
  struct Latency {
    GstClockTime least = 0, most = 0;
  };
  Latency latency() const;
  std::uint64_t droppedVideo() const { return video_.dropped(); }
  std::uint64_t droppedAudio() const { return audio_.dropped(); }

 private:
  bool isHeard();
  GstClockTime runningTime(std::optional<std::chrono::steady_clock::time_point> arrival) const;
  bool givesPictures() const { return settings_.output != Output::camera; }
  void endAtOnce();

  // Thread: the tasks of the pads.
  GstBuffer* videoBuffer(const Item& item);
  GstBuffer* pictureBuffer(const Item& item);
  void askForStrides();
  bool pushed(GstPad* pad, GstFlowReturn flow);

  GstElement& element_;
  const Settings settings_;
  const GstClockTime pictureLength_;
  std::atomic<int> changes_ = 0;  // between playing and not; odd: it plays

  // Where the camera's callbacks run only.
  StreamTimes times_;
  int heardChange_ = 0;

  // Set before the tasks of the pads begin.
  GstClockTime frameLength_ = 0;        // of the sound
  GstBuffer* parameterSets_ = nullptr;  // with start codes
  Panoramas* panoramas_ = nullptr;

  // The video pad's task only.
  PictureBuffers pictures_;
  std::optional<bool> readsStrides_;  // whoever the pad is linked with; nothing before it was asked
  gint pushedPictures_ = 0;

  std::mutex flowMutex_;
  GstFlowCombiner* const flows_ = gst_flow_combiner_new();
  SourcePad video_, audio_;
};

}  // namespace zel::gst
