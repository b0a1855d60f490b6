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

// The ports on Linux: run loops and streams, the accessory bus of a folder, the main queue.
//
// A camera has one reader at a time: a stack that opens one takes its lock, and keeps it until it closes the camera,
// also while the camera is gone; stacks on other platforms, in this process or another, do not get that camera
// meanwhile, nor does another stack on this platform while the first one has a session.
//
// Thread: the thread that makes it is the main thread until the main queue is run on another one.
class ZEL_EXPORT LinuxPlatform {
 public:
  struct Options {
    // The folder of the accessory bus. Empty: $ZEL_ACCESSORIES, else $XDG_RUNTIME_DIR/zel/accessories,
    // else /tmp/zel-accessories-UID. Made with mode 0700 where it is missing.
    std::string accessoriesFolder = {};
    // Hears of accessories that had to be skipped, one line each. Empty: standard error.
    std::function<void(const std::string&)> warn = {};
    // Where ZELDateFormatter keeps log.txt. Empty: $XDG_DATA_HOME/zelcam, else ~/.local/share/zelcam. Made with mode
    // 0700 where it is missing, with the first write.
    std::string documentsFolder = {};
    // Hears that a camera could not be opened since somebody has it; it is passed over like an accessory of another
    // kind. Called inside the attempt, on any thread. Empty: `warn` hears of it.
    std::function<void(const CameraInUse&)> inUse = {};
    // What other programs are told of this one while it has a camera, as "zelcam live". Empty: the executable's name.
    std::string program = {};
    // Keeps what was opened until the platform goes, also between two stacks.
    bool keepCameras = false;
  };

  // The folder that `accessoriesFolder` stands for (see Options).
  static std::string accessoriesFolder(const std::string& accessoriesFolder);

  // Errors: null when the folder cannot be made, belongs to another user or can be written by others, `error` then
  //         names the folder, the fault and the remedy; null when no descriptor or no memory is left, and `error` says
  //         so.
  static std::unique_ptr<LinuxPlatform> create(Options options, std::string& error);

  // Waits for the threads that it started.
  // Owner:  every stack, player and live source built on the ports must be gone. Where one of their threads still runs
  //         and nobody has told it to end within five seconds, the process ends with a message that names the thread.
  ~LinuxPlatform();
  LinuxPlatform(const LinuxPlatform&) = delete;
  LinuxPlatform& operator=(const LinuxPlatform&) = delete;

  const platform::Ports& ports();

  // The system's clock, which needs no platform and is there for good.
  static const platform::Clock& systemClock();

  // Runs the main queue on the calling thread until stopMainQueue().
  void runMainQueue();
  // The same, for at most that many seconds. False when the time ended it, true when stopMainQueue() did.
  bool runMainQueueFor(double seconds);
  // Thread: any thread, signal handlers excepted.
  void stopMainQueue();
  // Runs what is due on the main queue, without waiting; for a host with a loop of its own.
  void drainMainQueue();
  // Hands main-queue work to the host's own executor instead: `executor` is called on any thread with each task and
  // runs it later on the host's main thread, in order. Set it before anything is posted.
  // Errors: false for an empty executor, where one has been set already, and where no thread can be had.
  bool setMainQueueExecutor(std::function<void(std::function<void()>)> executor);

 private:
  struct State;
  explicit LinuxPlatform(std::unique_ptr<State> state);
  std::unique_ptr<State> state_;
};

}  // namespace zel
