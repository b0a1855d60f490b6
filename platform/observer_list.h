#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platform/call_gate.h"

namespace zel {

// Keeps an observer registered for as long as it lives; movable, may outlive what it observes.
// Afterwards the observer neither runs nor is running. Destroyed inside a callback, the token waits for nobody: a call
// of the observer in progress on another thread may then still be running, and is the last.
class Observation {
 public:
  Observation() = default;
  explicit Observation(std::shared_ptr<CallGate> gate) : gate_(std::move(gate)) {}
  Observation(Observation&&) noexcept = default;
  Observation& operator=(Observation&& other) noexcept {
    reset();
    gate_ = std::move(other.gate_);
    return *this;
  }
  Observation(const Observation&) = delete;
  Observation& operator=(const Observation&) = delete;
  ~Observation() { reset(); }

  void reset() {
    if (const auto gate = std::exchange(gate_, nullptr)) gate->close();
  }

 private:
  std::shared_ptr<CallGate> gate_;
};

// Observers called in the order of their addition, on the notifying thread, without the list's lock.
//
// Thread: any thread. One observer is never called by two threads at once. A thread that notifies from inside a
//         callback does not wait for the other one: it leaves the call to it.
template <class... Args>
class ObserverList {
 public:
  using Observer = std::function<void(Args...)>;

  [[nodiscard]] Observation add(Observer observer) {
    auto entry = std::make_shared<Entry>(std::move(observer));
    auto changed = std::make_shared<Entries>();
    Snapshot former;  // let go after the lock
    const MutexLock lock(mutex_);
    // Entries whose observation has gone are known by being held here alone.
    for (const auto& known : *entries_) {
      if (known.use_count() != 1) changed->push_back(known);
    }
    changed->push_back(entry);
    former = std::exchange(entries_, std::move(changed));
    return Observation(std::shared_ptr<CallGate>(entry, &entry->gate));
  }

  // Takes no memory, so that whatever is announced is heard.
  void notify(Args... args) {
    const Snapshot entries = snapshot();
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

  Snapshot snapshot() {
    const MutexLock lock(mutex_);
    return entries_;
  }

  Mutex mutex_;
  Snapshot entries_ ZEL_GUARDED_BY(mutex_) = std::make_shared<Entries>();  // replaced, never changed
};

}  // namespace zel
