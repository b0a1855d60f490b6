#include "simulator/media/video_loop.h"

#include <algorithm>
#include <utility>

namespace zel::simulator {

void VideoLoop::add(VideoPicture picture) {
  {
    const std::lock_guard lock(mutex_);
    if (ended_ || pictures_.size() == length_) return;
    pictures_.push_back(std::make_shared<const VideoPicture>(std::move(picture)));
  }
  grown_.notify_all();
}

void VideoLoop::end() {
  {
    const std::lock_guard lock(mutex_);
    ended_ = true;
  }
  grown_.notify_all();
}

VideoLoop::PicturePtr VideoLoop::picture(std::size_t number) const {
  const std::lock_guard lock(mutex_);
  const std::size_t round = ended_ ? pictures_.size() : length_;
  if (round == 0) return nullptr;
  const std::size_t place = number % round;
  return place < pictures_.size() ? pictures_[place] : nullptr;
}

std::size_t VideoLoop::waitFor(std::size_t pictures) const {
  std::unique_lock lock(mutex_);
  while (!ended_ && pictures_.size() < std::min(pictures, length_)) grown_.wait(lock);
  return pictures_.size();
}

}  // namespace zel::simulator
