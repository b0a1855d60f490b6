#pragma once

#include <pthread.h>

#include <csignal>
#include <initializer_list>

namespace zel::platform {

// Blocks signals for threads that are started in a scope, so that the host's handlers run on the host's threads.
// Signals for faults of the running code stay unblocked.
class SignalMask {
 public:
  SignalMask() {
    sigset_t masked;
    sigfillset(&masked);
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS}) sigdelset(&masked, fault);
    pthread_sigmask(SIG_BLOCK, &masked, &before_);
  }
  ~SignalMask() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalMask(const SignalMask&) = delete;
  SignalMask& operator=(const SignalMask&) = delete;

 private:
  sigset_t before_;
};

}  // namespace zel::platform
