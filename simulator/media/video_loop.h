#pragma once

#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include "simulator/media/annex_b.h"

namespace zel::simulator {

// A loop of pictures. Pictures may be added while the first ones are already used.
// Thread: any thread.
class VideoLoop {
 public:
  using PicturePtr = std::shared_ptr<const VideoPicture>;

  // length: pictures in the loop, at least 1.
  explicit VideoLoop(std::size_t length) : length_(length) {}

  std::size_t length() const { return length_; }

  // Adds the next picture; more than the length are dropped.
  void add(VideoPicture picture);

  // Ends adding; the existing pictures are the loop.
  void end();

  // Null while the picture is not ready, and always if the loop ended empty.
  PicturePtr picture(std::size_t number) const;

  // Waits until that many pictures are ready, or the loop has ended. Returns their number.
  std::size_t waitFor(std::size_t pictures) const;

 private:
  const std::size_t length_;
  mutable std::mutex mutex_;
  mutable std::condition_variable grown_;
  std::vector<PicturePtr> pictures_;  // guarded by mutex_
  bool ended_ = false;                // guarded by mutex_
};

}  // namespace zel::simulator
