#pragma once

#include <chrono>
#include <functional>
#include <string>

#include <ZELTarkaSDK/Pending.h>
#include <ZELTarkaSDK/platform/export.h>

namespace zel {

namespace platform {
struct Ports;
}

// Which camera is opened, and what it runs on.
struct ZEL_EXPORT CameraOptions {
  // The one camera; empty takes the first that is attached.
  std::string serialNumber = {};

  // For the opening, for photos and files, and for every other request: where a call sets none of its own. Of photos
  // and files it counts from the latest progress, so that a large file may take as long as it moves.
  std::chrono::milliseconds openTimeLimit{10'000};
  std::chrono::milliseconds transferTimeLimit{60'000};
  std::chrono::milliseconds timeLimit{5'000};

  // Opens the link again where it is broken and does not heal by itself. False: only while connect() waits.
  bool keepsLink = true;

  // Hears what the object does by itself, in words for people, such as that it opens a broken link again. Empty: nobody
  // does.
  //
  // Thread: any thread.
  std::function<void(const std::string&)> tell = {};

  // Runs callbacks and coroutines. Empty: the camera's own thread does.
  //
  // Owner: it must run what it is given, or destroy it, also after the camera object is gone.
  Executor executor = {};

  // The host's own ports instead of Linux's, for another platform or for tests. They must outlive the camera, and the
  // host runs their main queue: get() must not be called there.
  const platform::Ports* ports = nullptr;

  // -- Of the camera's own platform on Linux, see LinuxPlatform::Options and LinuxMedia::Options.
  // Where no serial number is given: goes on with the first camera alone, also after a loss.
  bool staysWithCamera = false;
  std::string accessoriesFolder = {};
  bool direct = false;
  std::string program = {};
  int decoderThreads = 1;
  std::function<void(const std::string&)> warn = {};
  std::function<void(const std::string&)> warnOfPictures = {};  // LinuxMedia's; empty: `warn`
};

}  // namespace zel
