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
// A host that only commands the camera needs none of them, and builds its stack on the platform's own ports.
//
//   const auto platform = zel::LinuxPlatform::create({}, error);
//   zel::LinuxMedia media(platform->ports());
//   zel::CameraStack stack(media.ports());
//
// Owner:  every stack, player, view and live run built on its ports must be gone, a live run by stopLiveData(). The
//         decode thread of a player that has gone may still run.
// Thread: any thread.
class ZEL_EXPORT LinuxMedia {
 public:
  struct Options {
    // Hears why a picture could not be stitched, one sentence each. Empty: standard error.
    // Thread: any thread.
    std::function<void(const std::string&)> warn;
    // 1: a picture comes out in the call that decodes it. Several, up to 16, decode pictures side by side, and each
    // comes out so many pictures later: for streams that one processor is too slow for.
    int decoderThreads = 1;
  };

  // ports: what the host has otherwise, normally LinuxPlatform::ports(). They are copied; what they refer to must
  // outlive every use of this object's ports.
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
