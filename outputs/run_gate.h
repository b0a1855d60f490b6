#pragma once

#include "base/shared_value.h"

namespace zel {

// Lets the calls of one run through, one at a time, until it is closed.
//
// Thread: any thread; close() not inside of a call.
class RunGate {
 public:
  template <class Call>
  void enter(const Call& call) {
    isOpen_.with([&call](bool open) {
      if (open) call();
    });
  }

  // Waits for a call in progress; the last one.
  void close() { isOpen_.set(false); }

 private:
  Guarded<bool> isOpen_{true};
};

}  // namespace zel
