#pragma once

#include <chrono>
#include <future>
#include <memory>
#include <utility>

#include "simulator/media/adts.h"

namespace zel::simulator {

// Audio that may still be encoded. If not valid(), there will be none.
using FutureAudio = std::shared_future<std::shared_ptr<const AudioTrack>>;

inline FutureAudio readyAudio(AudioTrack track) {
  std::promise<std::shared_ptr<const AudioTrack>> promise;
  promise.set_value(std::make_shared<const AudioTrack>(std::move(track)));
  return promise.get_future().share();
}

inline bool isReady(const FutureAudio& audio) {
  return audio.valid() && audio.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

}  // namespace zel::simulator
