#include "apps/zelcam/interrupt.h"

#include <pthread.h>
#include <csignal>

#include <ZELTarkaSDK/LinuxPlatform.h>

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include "apps/zelcam/settings.h"
#include "platform/application_events.h"
#include "platform/notification_center.h"
#include "platform/ports.h"

namespace zel::app {
namespace {

std::atomic<bool> interrupted = false;
std::atomic<bool> tellsSuspension = false;
std::mutex platformMutex;
LinuxPlatform* watchedPlatform = nullptr;

sigset_t stopSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  if (tellsSuspension.load()) {
    sigaddset(&signals, SIGTSTP);
    sigaddset(&signals, SIGCONT);
  }
  return signals;
}

void post(LinuxPlatform& platform, std::string_view name) {
  platform::NotificationCenter& notifications = platform.ports().notifications;
  platform.ports().queues.mainQueue().post([&notifications, name] {
    notifications.post({std::string(name), {}, nullptr});
  });
}

void tellSuspension(int signal) {
  const std::lock_guard lock(platformMutex);
  if (watchedPlatform == nullptr) return;
  post(*watchedPlatform, signal == SIGTSTP ? platform::kApplicationDidEnterBackgroundNotification
                                           : platform::kApplicationDidBecomeActiveNotification);
}

void waitForSignals() {
  const sigset_t signals = stopSignals();
  int signal = 0;
  while (sigwait(&signals, &signal) == 0) {
    if (signal == SIGTSTP || signal == SIGCONT) {
      tellSuspension(signal);
      continue;
    }
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

void turnSuspensionIntoEvents() {
  tellsSuspension.store(true);
  blockInterrupts();
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
