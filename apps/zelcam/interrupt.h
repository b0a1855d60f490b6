#pragma once

#include <csignal>

namespace zel {
class LinuxPlatform;
}

namespace zel::app {

// Blocks SIGINT, SIGTERM and SIGHUP; to be called before any thread is started. SIGHUP stays ignored where whoever
// started the program wants it so, as nohup does. What cannot be written, to a pipe or since a file may grow no larger,
// is an error of the writing, and no signal.
void blockInterrupts();

// The signals that blockInterrupts() has blocked.
sigset_t stopSignals();

// SIGTSTP and SIGCONT no longer stop the program and let it go on: they tell the application events on the platform's
// notification centre, on the main queue, that it is in the background, and active again. To be called before any
// thread is started.
void turnSuspensionIntoEvents();

// From now on the first of these signals stops the platform's main queue, and another one ends the program at once. But
// not within a second of the first: who ends a program often sends it two, to itself and to its group, and files would
// stay unfinished.
// Owner:  the platform must outlive the program's use of it; call detachInterrupts() before it goes.
void stopMainQueueOnInterrupt(LinuxPlatform& platform);
void detachInterrupts();

// Stops as the first of these signals does.
// Thread: any thread.
void interrupt();

// Whether the user has asked to stop.
bool wasInterrupted();

// Whether the user has asked to stop and nobody has seen to it, since no platform is there.
bool isInterruptPending();

}  // namespace zel::app
