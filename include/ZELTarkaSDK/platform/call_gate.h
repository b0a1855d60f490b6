#pragma once

#include <functional>
#include <memory>

#include <ZELTarkaSDK/platform/export.h>

namespace zel {

// Marks that the calling thread runs code of the host: an observer, a receiver, a consumer of frames or pictures. Two
// callbacks on two threads may each remove the other one's observer. A thread inside a callback therefore never waits
// for another: see insideCallback().
class ZEL_EXPORT CallbackScope {
 public:
  CallbackScope();
  ~CallbackScope();
  CallbackScope(const CallbackScope&) = delete;
  CallbackScope& operator=(const CallbackScope&) = delete;
};

// Whether the calling thread is inside a callback, of any stack.
ZEL_EXPORT bool insideCallback();

// Runs calls one at a time until it is closed. With it an adapter keeps the promise that a timer, a source or an
// observer neither runs nor is running after its destruction.
//
// Owner:  the calling code holds it by a shared pointer, since a close inside a callback does not wait for calls in
//         progress.
// Thread: any thread; outside a callback not while holding a lock that the call takes.
class ZEL_EXPORT CallGate {
 public:
  CallGate();
  ~CallGate();
  CallGate(const CallGate&) = delete;
  CallGate& operator=(const CallGate&) = delete;

  // Runs the call, unless the gate is closed. Waits first for a call in progress on another thread. Inside a callback
  // it hands the call to that thread instead, which runs it next. A nested call on the same thread runs at once. Takes
  // memory inside a callback alone, where the call may have to be kept.
  template <class Call>
  void enter(const Call& call) {
    std::function<void()> kept;
    if (insideCallback()) kept = call;
    if (!begin(kept)) return;
    const Turn turn(*this);
    call();
    makeHandedOver();
  }

  // Closes the gate and waits for a call in progress on another thread. Inside a callback it does not wait: that call
  // may then still be running, and is the last.
  void close();

 private:
  class State;

  // One call in progress; it ends also where the call throws.
  class Turn {
   public:
    explicit Turn(CallGate& gate) : gate_(gate) {}
    ~Turn() { gate_.end(); }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

   private:
    CallGate& gate_;
  };

  bool begin(std::function<void()>& kept);
  void makeHandedOver();
  void end();

  const std::unique_ptr<State> state_;
};

}  // namespace zel
