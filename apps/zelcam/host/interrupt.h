#pragma once

#include <optional>
#include <stop_token>

namespace zel {
class LinuxPlatform;
}

namespace zel::app {

// Blocks SIGINT, SIGTERM and SIGHUP; call it before any thread is started. An ignored SIGHUP, as under nohup, stays
// ignored. Writing to a closed pipe or beyond a file size limit gives an error instead of a signal.
void blockInterrupts();

// The signals that blockInterrupts() has blocked.
sigset_t stopSignals();

// SIGTSTP and SIGCONT no longer stop and continue the program. They post the application events (background, active
// again) on the platform's notification centre, on the main queue. Call it before any thread is started.
void turnSuspensionIntoEvents();

// From now on the first of these signals stops the platform's main queue, and a second one ends the program at once. A
// second one within a second of the first is ignored, because some programs send two (to the process and to its group),
// and files would stay incomplete.
// Owner:  call detachInterrupts() before the platform is destroyed.
void stopMainQueueOnInterrupt(LinuxPlatform& platform);
void detachInterrupts();

// From now on the first of these signals requests the stop of interruption(), and a second one ends the program as
// above. Called again it does nothing.
void hearInterrupts();

// Tells waits that the user has asked to stop, once hearInterrupts() was called.
std::stop_token interruption();

// Waits until the user asks to stop, or for that many seconds.
void waitForInterruption(std::optional<double> seconds);

// Stops as the first of these signals does.
// Thread: any thread.
void interrupt();

// Whether the user has asked to stop.
bool wasInterrupted();

// Whether the user has asked to stop while no platform was attached.
bool isInterruptPending();

}  // namespace zel::app
