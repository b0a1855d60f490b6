#pragma once

#include <memory>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "simulator/media/future_audio.h"
#include "simulator/media/loop_cache.h"
#include "simulator/media/preview_format.h"
#include "simulator/media/video_loop.h"

namespace zel::simulator {

// The camera's media: the moving scene and its beeps, or the given files. Each is rendered once and then looped.
// Pictures are rendered on a separate thread and are available from the first one on.
// Thread: one at a time.
class MediaLibrary {
 public:
  explicit MediaLibrary(LoopCache cache = LoopCache()) : cache_(std::move(cache)) {}
  ~MediaLibrary();
  MediaLibrary(const MediaLibrary&) = delete;
  MediaLibrary& operator=(const MediaLibrary&) = delete;

  // An H.264 stream with start codes, and an ADTS stream.
  // Errors: false, and what is wrong with the file; the scene stays.
  bool useVideo(const std::string& file, std::string& error);
  bool useAudio(const std::string& file, std::string& error);

  // A different format stops rendering the previous one.
  std::shared_ptr<const VideoLoop> video(const PreviewFormat& format);

  // Ready once the beeps have been made.
  FutureAudio audio();

 private:
  void makePictures(const PreviewFormat& format);
  void makeSound();

  const LoopCache cache_;
  std::shared_ptr<const VideoLoop> file_;
  PreviewFormat format_;
  std::shared_ptr<VideoLoop> scene_;
  std::stop_source scenesMaker_;
  FutureAudio audio_;
  std::vector<std::jthread> makers_;
};

}  // namespace zel::simulator
