#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <ZELTarkaSDK/LinkStatistics.h>
#include <ZELTarkaSDK/platform/export.h>

class ZELCameraAccessory;
class ZELCameraManager;
class ZELCameraUCD;
class ZELPreviewPlayer;
class CameraDataParser;
class CameraSession;

namespace zel {

namespace platform {
struct Ports;
}
struct LiveParts;

// How much memory a single piece of what the camera sends may take.
// Units:  bytes.
struct ReceiveLimits {
  std::uint32_t frame = 256u << 20;  // of any type; photos may always be of 256 MiB once one was asked for
  std::int32_t unit = 64 << 20;      // of H.264, whose end has not come yet
};

// Everything that drives one camera: the accessory object, its session, the de-multiplexer and the commands, wired.
// A host with one camera uses the class operations (ZELCameraAccessory::defaultCamera() and the like), which reach the
// one process-wide stack; a host with several cameras builds several stacks.
//
// Owner:  the ports must outlive the stack.
// Thread: destroy on any thread. Outside a callback the destructor closes the camera and waits for the session thread;
//         hold no lock there that an observer takes, and no observer or receiver is called after it. Inside one of its
//         own callbacks, of any kind and on any thread, it does not wait: a call in progress on another thread may
//         still be finishing.
// Errors: every pending handler of a request, a photo or an upload is called once, on the main queue, with error 100. A
//         handler that a later one has replaced is not called.
class ZEL_EXPORT CameraStack {
 public:
  // serialNumber: the one camera to connect to; empty takes the first.
  explicit CameraStack(const platform::Ports& ports, std::string serialNumber = {});
  ~CameraStack();
  CameraStack(const CameraStack&) = delete;
  CameraStack& operator=(const CameraStack&) = delete;

  ZELCameraAccessory& accessory();
  CameraDataParser& parser();
  ZELCameraUCD& ucd();
  ZELCameraManager& manager();
  // What the stack was built on.
  const platform::Ports& ports() const;

  // A longer frame counts as a lost position in the stream, and a longer unit is dropped. Frames are not limited to
  // more than 256 MiB, whatever is set. To be set before the camera is opened; it counts for players that are made
  // later.
  void setReceiveLimits(const ReceiveLimits& limits);

  // suitablePreviewPlayer - a new player that receives this camera's preview, at the current resolution, in place of
  // the one before. The caller holds it; it may outlive the stack, whose end resets it.
  std::shared_ptr<ZELPreviewPlayer> suitablePreviewPlayer();

  // What a live data source needs of this camera. It keeps the camera's objects alive.
  LiveParts liveParts();

  // Counters of the link, since the stack was made.
  // Thread: any thread.
  LinkStatistics statistics() const;

 private:
  struct Graph;
  static std::shared_ptr<ZELPreviewPlayer> suitablePreviewPlayerOf(const std::shared_ptr<Graph>& of);
  std::shared_ptr<Graph> graph_;
};

// Sets the ports of the process-wide stack. The host calls it once, before it uses any class operation.
// Errors: ends the process with a message when a class operation was used before this call, or is used without it.
//         ZELDateFormatter::defaultFormatter() can be used at any time.
ZEL_EXPORT void setDefaultPorts(const platform::Ports& ports);

// The process-wide stack, made on first use and never destroyed.
ZEL_EXPORT CameraStack& processStack();

}  // namespace zel
