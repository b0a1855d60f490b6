#include "apps/zelcam/interrupt.h"

#include <pthread.h>
#include <csignal>

#include <ZELTarkaSDK/LinuxPlatform.h>

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <thread>

#include "apps/zelcam/settings.h"

namespace zel::app {
namespace {

std::atomic<bool> interrupted = false;
std::mutex platformMutex;
LinuxPlatform* watchedPlatform = nullptr;

sigset_t stopSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  return signals;
}

void waitForSignals() {
  const sigset_t signals = stopSignals();
  int signal = 0;
  while (sigwait(&signals, &signal) == 0) {
    if (interrupted.exchange(true)) std::_Exit(kInterrupted);
    const std::lock_guard lock(platformMutex);
    if (watchedPlatform != nullptr) watchedPlatform->stopMainQueue();
  }
}

}  // namespace

void blockInterrupts() {
  const sigset_t signals = stopSignals();
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
}

void stopMainQueueOnInterrupt(LinuxPlatform& platform) {
  {
    const std::lock_guard lock(platformMutex);
    watchedPlatform = &platform;
  }
  std::thread(waitForSignals).detach();
}

void detachInterrupts() {
  const std::lock_guard lock(platformMutex);
  watchedPlatform = nullptr;
}

bool wasInterrupted() { return interrupted.load(); }

}  // namespace zel::app
