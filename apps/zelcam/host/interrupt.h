#pragma once

#include <csignal>
#include <optional>
#include <stop_token>

namespace zel::platform {
struct Ports;
}

namespace zel::app {

// Blocks SIGINT, SIGTERM and SIGHUP; call it before any thread is started. An ignored SIGHUP, as under nohup, stays
// ignored. Writing to a closed pipe or beyond a file size limit gives an error instead of a signal.
void blockInterrupts();

// The signals that blockInterrupts() has blocked.
sigset_t stopSignals();

// SIGTSTP and SIGCONT no longer stop and continue the program; see ApplicationEvents. Call it before any thread is
// started.
void turnSuspensionIntoEvents();

// While it exists, SIGTSTP and SIGCONT post the application events (background, active again) on the ports'
// notification centre, on their main queue.
class ApplicationEvents {
 public:
  explicit ApplicationEvents(const platform::Ports& ports);
  ~ApplicationEvents();
  ApplicationEvents(const ApplicationEvents&) = delete;
  ApplicationEvents& operator=(const ApplicationEvents&) = delete;
};

// From now on the first of these signals requests the stop of interruption(), and a second one ends the program at
// once. A second one within a second of the first is ignored, because some programs send two (to the process and to its
// group), and files would stay incomplete. Called again it does nothing.
void hearInterrupts();

// Tells waits that the user has asked to stop, once hearInterrupts() was called.
std::stop_token interruption();

// Waits until the stop is requested, or for that many seconds.
void waitForStop(const std::stop_token& stop, std::optional<double> seconds);

// Stops as the first of these signals does.
// Thread: any thread.
void interrupt();

// Whether the user has asked to stop.
bool wasInterrupted();

// Whether the user has asked to stop while nobody heard it.
bool isInterruptPending();

}  // namespace zel::app
