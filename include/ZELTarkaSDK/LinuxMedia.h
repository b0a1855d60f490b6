#pragma once

#include <functional>
#include <memory>
#include <string>

#include <ZELTarkaSDK/platform/export.h>

namespace zel {

namespace platform {
struct Ports;
}

// The codecs and the renderer on Linux: FFmpeg decodes and encodes H.264, the processor stitches both lenses' pictures.
// A host that only sends commands does not need this class, and builds its stack on the platform's own ports.
//
//   const auto platform = zel::LinuxPlatform::create({}, error);
//   zel::LinuxMedia media(platform->ports());
//   zel::CameraStack stack(media.ports());
//
// Owner:  destroy every stack, player and view built on its ports first, and stop every live run with stopLiveData().
//         The decode thread of a destroyed player may still run.
// Thread: any thread.
class ZEL_EXPORT LinuxMedia {
 public:
  struct Options {
    // Called with one sentence when a picture could not be stitched. Empty: standard error.
    // Thread: any thread.
    std::function<void(const std::string&)> warn;
    // 1: a picture comes out in the call that decodes it. 2 to 16: pictures are decoded in parallel, and each comes out
    // one picture later for each thread. For streams that one processor cannot decode in time.
    int decoderThreads = 1;
  };

  // ports: the host's other ports, normally LinuxPlatform::ports(). They are copied; the objects that they refer to
  // must outlive every use of this object's ports.
  explicit LinuxMedia(const platform::Ports& ports);
  LinuxMedia(const platform::Ports& ports, Options options);
  ~LinuxMedia();
  LinuxMedia(const LinuxMedia&) = delete;
  LinuxMedia& operator=(const LinuxMedia&) = delete;

  // Those ports with a decoder, an encoder and a media library.
  const platform::Ports& ports() const;

 private:
  struct State;
  const std::unique_ptr<State> state_;
};

}  // namespace zel
