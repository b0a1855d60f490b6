#pragma once

#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include "simulator/media/annex_b.h"

namespace zel::simulator {

// Pictures that are shown again and again. They may be added while the first ones are shown already.
// Thread: any thread.
class VideoLoop {
 public:
  using PicturePtr = std::shared_ptr<const VideoPicture>;

  // length: pictures of one round, at least 1.
  explicit VideoLoop(std::size_t length) : length_(length) {}

  std::size_t length() const { return length_; }

  // Adds the next picture; more than the length are dropped.
  void add(VideoPicture picture);

  // No more will be added; what is there makes a round, if anything is.
  void end();

  // Null while the picture is not there yet, and for good when the loop ended empty.
  PicturePtr picture(std::size_t number) const;

  // Waits until so many pictures are there, or the loop has ended. How many there are.
  std::size_t waitFor(std::size_t pictures) const;

 private:
  const std::size_t length_;
  mutable std::mutex mutex_;
  mutable std::condition_variable grown_;
  std::vector<PicturePtr> pictures_;  // guarded by mutex_
  bool ended_ = false;                // guarded by mutex_
};

}  // namespace zel::simulator
