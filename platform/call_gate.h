#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <thread>

#include <ZELTarkaSDK/Export.h>

#include "platform/mutex.h"

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

// Lets calls through one at a time until it is closed.
//
// Thread: any thread; outside a callback not while holding a lock that the call takes.
class ZEL_EXPORT CallGate {
 public:
  // Runs the call, unless the gate is closed. A call in progress on another thread is waited for; inside a callback the
  // call is handed to that thread instead, which makes it next. A call inside a call on the same thread runs at once.
  // Takes memory inside a callback alone, where the call may have to be kept.
  template <class Call>
  void enter(const Call& call) ZEL_EXCLUDES(mutex_) {
    std::function<void()> kept;
    if (insideCallback()) kept = call;
    if (!begin(kept)) return;
    const Turn turn(*this);
    call();
    makeHandedOver();
  }

  // Lets nothing through any more, and waits for a call in progress on another thread. Inside a callback it does not
  // wait: that call may then still be running, and is the last.
  void close() ZEL_EXCLUDES(mutex_);

 private:
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

  bool isBusyElsewhere() const ZEL_REQUIRES(mutex_);
  bool begin(std::function<void()>& kept) ZEL_EXCLUDES(mutex_);
  void makeHandedOver() ZEL_EXCLUDES(mutex_);
  bool takeHandedOver(std::function<void()>& call) ZEL_EXCLUDES(mutex_);
  bool takeFirst(std::function<void()>& call) ZEL_EXCLUDES(mutex_);
  void end() ZEL_EXCLUDES(mutex_);

  Mutex mutex_;
  std::condition_variable_any changed_;
  int calls_ ZEL_GUARDED_BY(mutex_) = 0;           // in progress, one inside the other
  std::thread::id caller_ ZEL_GUARDED_BY(mutex_);  // on this thread
  std::deque<std::function<void()>> handedOver_ ZEL_GUARDED_BY(mutex_);
  bool closed_ ZEL_GUARDED_BY(mutex_) = false;
};

}  // namespace zel
