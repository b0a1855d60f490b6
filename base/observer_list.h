#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include <ZELTarkaSDK/Observation.h>
#include <ZELTarkaSDK/platform/call_gate.h>

#include "base/shared_value.h"

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
    auto changed = std::make_shared<Entries>();
    Snapshot former;  // let go after the lock
    entries_.with([&](Snapshot& entries) {
      // An entry whose observation was destroyed has no other owner than this list.
      for (const auto& known : *entries) {
        if (known.use_count() != 1) changed->push_back(known);
      }
      changed->push_back(entry);
      former = std::exchange(entries, std::move(changed));
    });
    return Observation(std::shared_ptr<CallGate>(entry, &entry->gate));
  }

  // Takes no memory, so that whatever is announced is heard.
  void notify(Args... args) {
    const Snapshot entries = entries_.get();
    for (const auto& entry : *entries) {
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

  using Entries = std::vector<std::shared_ptr<Entry>>;
  using Snapshot = std::shared_ptr<const Entries>;

  Guarded<Snapshot> entries_{std::make_shared<Entries>()};  // replaced, never changed
};

}  // namespace zel
