#pragma once

#include <functional>
#include <memory>
#include <string>

#include <ZELTarkaSDK/CameraInUse.h>
#include <ZELTarkaSDK/platform/export.h>

namespace zel {

namespace platform {
class Clock;
struct Ports;
}  // namespace platform

// The ports on Linux: run loops and streams, an accessory bus that is a folder, the main queue.
//
// A camera has one reader at a time. A stack that opens a camera takes its lock, and keeps it until it closes the
// camera, also while the camera is unplugged. Until then a stack on another platform object, in this process or
// another, cannot open that camera. Another stack on this platform object cannot open it while the first one has a
// session.
//
// Where a gateway has the camera and shares it, a stack opens it through the gateway, beside any number of others.
//
// Thread: the thread that creates it is the main thread until the main queue is run on another one.
class ZEL_EXPORT LinuxPlatform {
 public:
  struct Options {
    // The folder of the accessory bus. Empty: $ZEL_ACCESSORIES, else $XDG_RUNTIME_DIR/zel/accessories,
    // else /tmp/zel-accessories-UID. Made with mode 0700 where it is missing.
    std::string accessoriesFolder = {};
    // Called with one line for each accessory that had to be skipped. Empty: standard error.
    std::function<void(const std::string&)> warn = {};
    // Where ZELDateFormatter keeps log.txt. Empty: $XDG_DATA_HOME/zelcam, else ~/.local/share/zelcam. Made with mode
    // 0700 where it is missing, with the first write.
    std::string documentsFolder = {};
    // Called when a camera could not be opened because another program or stack has it; the camera is then skipped.
    // Empty: `warn` is called instead.
    // Thread: any thread, inside the call that tries to open.
    std::function<void(const CameraInUse&)> inUse = {};
    // The name that other programs are told while this one has a camera, such as "zelcam live". Empty: the executable's
    // name.
    std::string program = {};
    // Keeps the lock of each opened camera until the platform is destroyed, also between two stacks.
    bool keepCameras = false;
    // Opens every camera with a session of its own, and never shares it through a gateway.
    bool direct = false;
  };

  // The folder that `accessoriesFolder` resolves to (see Options).
  static std::string accessoriesFolder(const std::string& accessoriesFolder);

  // Errors: null when the folder cannot be created, belongs to another user or is writable by others; `error` then
  //         names the folder, the fault and the remedy. Null when no file descriptor or no memory is left; `error` says
  //         so.
  static std::unique_ptr<LinuxPlatform> create(Options options, std::string& error);

  // Waits for the end of the threads that it started.
  // Owner:  destroy every stack, player and live source built on the ports first. When one of their threads still runs
  //         and is not told to end within five seconds, the process ends with a message that names the thread.
  ~LinuxPlatform();
  LinuxPlatform(const LinuxPlatform&) = delete;
  LinuxPlatform& operator=(const LinuxPlatform&) = delete;

  const platform::Ports& ports();

  // The system's clock. Needs no platform object; never destroyed.
  static const platform::Clock& systemClock();

  // Runs the main queue on the calling thread until stopMainQueue().
  void runMainQueue();
  // The same, for at most that many seconds. True when stopMainQueue() ended it, false when the time was over.
  bool runMainQueueFor(double seconds);
  // Thread: any thread, signal handlers excepted.
  void stopMainQueue();
  // Runs the due tasks of the main queue without waiting. For a host with its own loop.
  void drainMainQueue();
  // Hands main-queue tasks to the host's own executor instead. `executor` is called on any thread with each task, and
  // runs it later on the host's main thread, in order. Set it before anything is posted.
  // Errors: false for an empty executor, when an executor is already set, and when no thread can be started.
  bool setMainQueueExecutor(std::function<void(std::function<void()>)> executor);

 private:
  struct State;
  explicit LinuxPlatform(std::unique_ptr<State> state);
  std::unique_ptr<State> state_;
};

}  // namespace zel
