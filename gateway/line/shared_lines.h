#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "gateway/line/shared_camera.h"
#include "platform/linux/unique_descriptor.h"

namespace zel::gateway {

// The cameras of a bus, held by this process and shared with any number of hosts: each admitted connection is to its
// host what a camera is. It takes the lock of every camera, or of one, opens the real session, and opens it again after
// a loss.
//
// Everything runs on one thread of its own. Nothing stays when the process ends in any way.
//
// Thread: any thread.
class SharedLines {
 public:
  struct Options {
    std::string accessoriesFolder = {};  // see LinuxPlatform::Options
    std::string program = {};            // the name that other programs are told, such as "zelcam serve"
    std::string camera = {};             // holds only the camera of that name; empty: every one
    // Called with one line for each accessory that had to be skipped, and each camera that another program has. Empty:
    // standard error.
    //
    // Thread: any thread.
    std::function<void(const std::string&)> warn = {};
  };

  struct Camera {
    std::string camera;  // its serial number, else its accessory file's name
    std::string name;
    std::string firmwareRevision;
    LineState state = LineState::absent;

    bool isPresent() const { return state != LineState::absent; }
  };

  // Hears of every change of a camera's state. A camera that was present once stays known while it is absent.
  //
  // Thread: the lines' thread; it must not wait there.
  class Observer {
   public:
    virtual void cameraChanged(const Camera& camera) = 0;

   protected:
    ~Observer() = default;
  };

  // observer: may be null.
  //
  // Owner:  the observer must outlive the object.
  //
  // Errors: null where the folder is unusable, or no thread or descriptor is left; `error` says why.
  static std::unique_ptr<SharedLines> create(Options options, Observer* observer, std::string& error);

  // Ends every connection and session, and releases the cameras.
  ~SharedLines();
  SharedLines(const SharedLines&) = delete;
  SharedLines& operator=(const SharedLines&) = delete;

  // Those that are or were attached, in the order of their names.
  std::vector<Camera> cameras() const;

  // Connects a host to a camera. From now on the socket carries the camera's bytes, and ends when the camera goes.
  // socket: a stream socket, of which nothing behind a header has been read.
  //
  // Owner:  takes the descriptor, also where it is refused.
  //
  // Errors: false for an unknown camera and an absent one.
  bool admit(const std::string& camera, platform::UniqueDescriptor socket);

 private:
  class State;
  explicit SharedLines(std::shared_ptr<State> state);
  const std::shared_ptr<State> state_;
};

}  // namespace zel::gateway
