#pragma once

namespace zel {
class LinuxPlatform;
}

namespace zel::app {

// Blocks SIGINT and SIGTERM; to be called before any thread is started.
void blockInterrupts();

// SIGTSTP and SIGCONT no longer stop the program and let it go on: they tell the application events on the platform's
// notification centre, on the main queue, that it is in the background, and active again. To be called before any
// thread is started.
void turnSuspensionIntoEvents();

// From now on the first SIGINT or SIGTERM stops the platform's main queue, and a second one ends the program at once.
// Owner: the platform must outlive the program's use of it; call detachInterrupts() before it goes.
void stopMainQueueOnInterrupt(LinuxPlatform& platform);
void detachInterrupts();

// Whether the user has asked to stop.
bool wasInterrupted();

}  // namespace zel::app
