#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include <ZELTarkaSDK/Observation.h>

#include <ZELTarkaSDK/platform/call_gate.h>
#include "base/mutex.h"

namespace zel {

// Observers called in the order of their addition, on the notifying thread, without the list's lock.
//
// Thread: any thread. One observer is never called by two threads at once. A thread that notifies inside a callback
//         does not wait for another thread in the observer: that thread makes the call.
template <class... Args>
class ObserverList {
 public:
  using Observer = std::function<void(Args...)>;

  [[nodiscard]] Observation add(Observer observer) {
    auto entry = std::make_shared<Entry>(std::move(observer));
    const MutexLock lock(mutex_);
    // An entry whose observation was destroyed has no other owner than this list.
    std::erase_if(entries_, [](const auto& known) { return known.use_count() == 1; });
    entries_.push_back(entry);
    return Observation(std::shared_ptr<CallGate>(entry, &entry->gate));
  }

  void notify(Args... args) {
    for (const auto& entry : snapshot()) {
      entry->gate.enter([entry, args...] {
        const CallbackScope scope;
        entry->observer(args...);
      });
    }
  }

 private:
  struct Entry {
    explicit Entry(Observer call) : observer(std::move(call)) {}
    CallGate gate;
    Observer observer;
  };

  std::vector<std::shared_ptr<Entry>> snapshot() {
    const MutexLock lock(mutex_);
    return entries_;
  }

  Mutex mutex_;
  std::vector<std::shared_ptr<Entry>> entries_ ZEL_GUARDED_BY(mutex_);
};

}  // namespace zel
