#pragma once

#include <ZELTarkaSDK/Camera.h>
#include <gst/gst.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>

#include "bindings/gstreamer/panoramas.h"
#include "bindings/gstreamer/settings.h"
#include "bindings/gstreamer/stream_pads.h"

namespace zel::gst {

// One life of the element between READY and PAUSED: opens the camera and its stream on a thread of its own, shows the
// pads, and sees to a camera that is lost.
//
// Owner:  the element, which outlives it.
// Thread: any thread.
class CameraRun {
 public:
  CameraRun(GstElement& element, Settings settings);
  // Ends it, and waits for that.
  ~CameraRun();
  CameraRun(const CameraRun&) = delete;
  CameraRun& operator=(const CameraRun&) = delete;

  // Errors: false where no thread can be started.
  bool start();
  // Ends the opening and the tasks of the pads, and does not wait for them.
  void requestStop();
  // Ends all, waits for it, and removes the pads. Figures can still be asked for.
  //
  // Thread: none of the pads'.
  void end();

  StreamPads& pads() { return pads_; }
  // Owner:  the caller.
  GstStructure* statistics() const;

 private:
  using Clock = std::chrono::steady_clock;

  // What is subscribed to, in the order of its end.
  struct Subscriptions {
    std::optional<Subscription<StreamProblem>> problems;
    std::optional<Subscription<Picture>> pictures;
    std::optional<Subscription<MediaPacket>> packets;
  };
  struct Problem {
    CameraError error;
    bool isEnd = true;  // nothing follows
  };

  // The run's own thread.
  void run(const std::stop_token& stop);
  std::optional<CameraError> open(const std::stop_token& stop);
  std::optional<CameraError> preparePanoramas(const std::stop_token& stop);
  std::optional<CameraError> askForOffset(const std::stop_token& stop);
  std::optional<CameraError> startStream(const std::stop_token& stop);
  void watchForProblems();
  std::optional<CameraError> awaitPicture(const std::stop_token& stop);
  std::optional<CameraError> showPads(const std::stop_token& stop);
  void supervise(const std::stop_token& stop);
  std::optional<Problem> nextProblem(const std::stop_token& stop);
  void goOn(const std::stop_token& stop);
  void endWith(const Problem& problem);
  void close();

  // Where the camera's callbacks run.
  void onPacket(const MediaPacket& packet);
  void onPicture(const Picture& picture);
  void onProblem(const CameraError& problem);

  GstElement& element_;
  const Settings settings_;
  std::optional<Camera> camera_;  // before what is built on it
  std::unique_ptr<Panoramas> panoramas_;
  StreamPads pads_;
  std::optional<CameraStream> stream_;  // changed under the lock
  Subscriptions subscriptions_;
  std::atomic<bool> isShown_ = false;

  mutable std::mutex mutex_;
  std::condition_variable_any changed_;
  platform::PixelBufferRef firstPicture_;
  std::deque<Problem> problems_;
  bool isLost_ = false, isBack_ = false;
  std::optional<Clock::time_point> patience_;  // a lost camera is waited for until then
  std::uint64_t losses_ = 0;
  EncodedStreamStatistics last_;  // once the stream has ended

  std::jthread thread_;
};

}  // namespace zel::gst
