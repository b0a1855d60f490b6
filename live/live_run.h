#pragma once

#include <atomic>
#include <cstdint>

namespace zel {

// What a live source is at. The interface tells it by two flags, isLive and cancelled.
enum class LiveState {
  idle,      // no run
  running,   // from its start on; a start that fails on the way leaves the run here
  stopping,  // cancelled; the stop waits for the run's threads
  outlived,  // begun while the stop before it was under way, whose end has let the camera go: neither live nor
             // cancelled
};

// The state of a live source, and which run it is at. A run is known by the number of stops before it, so that a step
// of it that comes late does not begin anything after its stop.
// Thread: any thread.
class LiveRun {
 public:
  LiveState state() const { return state_.load(); }
  bool isLive() const {
    const LiveState state = state_.load();
    return state == LiveState::running || state == LiveState::stopping;
  }
  bool cancelled() const {
    const LiveState state = state_.load();
    return state == LiveState::idle || state == LiveState::stopping;
  }

  std::uint64_t number() const { return stops_.load(); }
  bool isOver(std::uint64_t number) const { return cancelled() || stops_.load() != number; }

  void begin() { state_.store(LiveState::running); }

  // False where there is nothing to stop, or somebody is at it.
  bool beginStop() {
    LiveState seen = state_.load();
    while (seen != LiveState::idle && seen != LiveState::stopping) {
      if (!state_.compare_exchange_weak(seen, LiveState::stopping)) continue;
      stops_.fetch_add(1);
      return true;
    }
    return false;
  }
  void endStop() {
    LiveState seen = LiveState::stopping;
    if (!state_.compare_exchange_strong(seen, LiveState::idle)) state_.store(LiveState::outlived);
  }

 private:
  std::atomic<LiveState> state_ = LiveState::idle;
  std::atomic<std::uint64_t> stops_ = 0;
};

}  // namespace zel
