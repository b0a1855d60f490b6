#pragma once

#include <functional>
#include <memory>

#include <ZELTarkaSDK/LiveStatistics.h>
#include <ZELTarkaSDK/platform/clock.h>
#include <ZELTarkaSDK/platform/media_library.h>

#include "live/frame_queue.h"
#include "live/join_lock.h"
#include "live/live_settings.h"

namespace zel {

// The queue of the camera's pictures, and the render thread's loop, which stitches them.
// Owner:  the arguments of the constructor must outlive the object.
// Thread: any thread, except where an operation says otherwise.
class StitchStage {
 public:
  // library: null disables stitching.
  StitchStage(platform::Clock& clock, platform::MediaLibrary* library, LiveSettings& settings)
      : clock_(clock), library_(library), settings_(settings), renderLock_(clock) {}

  // Errors: none; a picture for which there is no memory counts as dropped, and so does null, which stands for one.
  void append(LiveFrame frame);

  // Stores the setting, and passes it to the current renderer, if any.
  void setRemovePurple(bool removePurple) ZEL_EXCLUDES(renderMutex_);

  // The body of the render thread: passes on every stitched picture until the run is over. The renderer is destroyed at
  // its end.
  // Thread: render thread; a second caller waits until the first has returned.
  void run(const std::function<bool()>& isOver, const std::function<void(LiveFrame)>& handOn);

  // Waits until the render thread has left its loop.
  void join() { renderLock_.join(); }

  // Drops all queued pictures.
  void clear() { pixel_render_queue_.clear(); }

  void copyStatistics(LiveStatistics& into) const;

 private:
  using Render = std::shared_ptr<platform::FlatOffscreenRender>;

  void step(const std::function<void(LiveFrame)>& handOn);
  LiveFrame stitch(const orq::MediaPixelBuffer& picture);
  Render render() ZEL_EXCLUDES(renderMutex_);
  void dropRender() ZEL_EXCLUDES(renderMutex_);
  Render createRender() ZEL_EXCLUDES(renderMutex_);

  platform::Clock& clock_;
  platform::MediaLibrary* const library_;
  LiveSettings& settings_;
  FrameQueue pixel_render_queue_;  // the interface's spelling
  JoinLock renderLock_;
  RelaxedCount dropped_ = 0, stitched_ = 0, notStitched_ = 0;

  Mutex renderMutex_;
  Render render_ ZEL_GUARDED_BY(renderMutex_);
};

}  // namespace zel
