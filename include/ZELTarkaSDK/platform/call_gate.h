#pragma once

#include <functional>
#include <memory>

#include <ZELTarkaSDK/platform/export.h>

namespace zel {

// Marks that the calling thread runs code of the host: an observer, a receiver, a consumer of frames or pictures.
// Two callbacks on two threads may each end what the other one runs in. A thread inside a callback therefore waits for
// nobody: see insideCallback().
class ZEL_EXPORT CallbackScope {
 public:
  CallbackScope();
  ~CallbackScope();
  CallbackScope(const CallbackScope&) = delete;
  CallbackScope& operator=(const CallbackScope&) = delete;
};

// Whether the calling thread is inside a callback, of any stack.
ZEL_EXPORT bool insideCallback();

// Lets calls through one at a time until it is closed: how an adapter keeps the promise that a timer, a source or an
// observer neither runs nor is running once it has been destroyed.
//
// Owner:  hold it by a shared pointer where the calls are made, since a close inside a callback does not wait for them.
// Thread: any thread; outside a callback not while holding a lock that the call takes.
class ZEL_EXPORT CallGate {
 public:
  CallGate();
  ~CallGate();
  CallGate(const CallGate&) = delete;
  CallGate& operator=(const CallGate&) = delete;

  // Runs the call, unless the gate is closed. A call in progress on another thread is waited for; inside a callback the
  // call is handed to that thread instead, which makes it next. A call inside a call on the same thread runs at once.
  // Takes memory inside a callback alone, where the call may have to be kept.
  template <class Call>
  void enter(const Call& call) {
    std::function<void()> kept;
    if (insideCallback()) kept = call;
    if (!begin(kept)) return;
    const Turn turn(*this);
    call();
    makeHandedOver();
  }

  // Lets nothing through any more, and waits for a call in progress on another thread. Inside a callback it does not
  // wait: that call may then still be running, and is the last.
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
