#include "apps/zelcam/host/interrupt.h"

#include <pthread.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>

#include <ZELTarkaSDK/platform/application_events.h>
#include <ZELTarkaSDK/platform/notification_center.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "apps/zelcam/command_line/settings.h"
#include "base/has_memory_for.h"
#include "base/shared_value.h"

namespace zel::app {
namespace {

std::atomic<bool> tellsSuspension = false;
Guarded<const platform::Ports*> listeners;

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kOneRequest{1};  // signals that come within it are one

// Never destroyed: the thread of the signals may still run while the process ends.
std::stop_source& stopping() {
  static auto* const source = new std::stop_source;
  return *source;
}

bool isIgnored(int signal) {
  struct sigaction action {};
  return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

sigset_t heardSignals() {
  sigset_t signals = stopSignals();
  if (tellsSuspension.load()) {
    sigaddset(&signals, SIGTSTP);
    sigaddset(&signals, SIGCONT);
  }
  return signals;
}

void post(const platform::Ports& ports, std::string_view name) {
  ifMemoryAllows([&] {
    ports.queues.mainQueue().post([&notifications = ports.notifications, name] {
      notifications.post({std::string(name), {}, nullptr});
    });
  });
}

void tellSuspension(int signal) {
  const auto name = signal == SIGTSTP ? platform::kApplicationDidEnterBackgroundNotification
                                      : platform::kApplicationDidBecomeActiveNotification;
  listeners.with([name](const platform::Ports* ports) {
    if (ports != nullptr) post(*ports, name);
  });
}

void waitForSignals() {
  const sigset_t signals = heardSignals();
  int signal = 0;
  std::optional<Clock::time_point> first;
  while (sigwait(&signals, &signal) == 0) {
    if (signal == SIGTSTP || signal == SIGCONT) {
      tellSuspension(signal);
      continue;
    }
    if (first && Clock::now() - *first > kOneRequest) std::_Exit(kInterrupted);
    if (!first) first = Clock::now();
    interrupt();
  }
}

}  // namespace

sigset_t stopSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  if (!isIgnored(SIGHUP)) sigaddset(&signals, SIGHUP);
  return signals;
}

void blockInterrupts() {
  const sigset_t signals = heardSignals();
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

void turnSuspensionIntoEvents() {
  tellsSuspension.store(true);
  blockInterrupts();
}

void hearInterrupts() {
  static std::once_flag once;
  std::call_once(once, [] { std::thread(waitForSignals).detach(); });
}

std::stop_token interruption() { return stopping().get_token(); }

void waitForStop(const std::stop_token& stop, std::optional<double> seconds) {
  std::mutex mutex;
  std::condition_variable_any stopped;
  std::unique_lock lock(mutex);
  const auto isOver = [&stop] { return stop.stop_requested(); };
  if (!seconds) {
    stopped.wait(lock, stop, isOver);
  } else {
    stopped.wait_for(lock, stop, std::chrono::duration<double>(*seconds), isOver);
  }
}

ApplicationEvents::ApplicationEvents(const platform::Ports& ports) { listeners.set(&ports); }
ApplicationEvents::~ApplicationEvents() { listeners.set(nullptr); }

void interrupt() { stopping().request_stop(); }

bool wasInterrupted() { return stopping().stop_requested(); }

bool isInterruptPending() {
  const sigset_t signals = stopSignals();
  sigset_t pending;
  sigemptyset(&pending);
  ::sigpending(&pending);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    if (sigismember(&signals, signal) == 1 && sigismember(&pending, signal) == 1) return true;
  }
  return false;
}

}  // namespace zel::app
