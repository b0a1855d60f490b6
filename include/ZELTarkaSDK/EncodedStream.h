#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <ZELTarkaSDK/EncodedStreamReceiver.h>
#include <ZELTarkaSDK/EncodedStreamStatistics.h>
#include <ZELTarkaSDK/platform/export.h>
#include <ZELTarkaSDK/platform/media_library.h>
#include <ZELTarkaSDK/platform/pixel_buffer.h>

namespace zel {

class CameraStack;

// The pictures of a stitched stream.
//
// Units: pixels, both sides even; bits a second; degrees.
struct ZEL_EXPORT StitchedPictures {
  std::int32_t width = 1920, height = 960;
  std::int64_t bitrate = 8'000'000;
  std::optional<platform::RgbaImage> logo = {};  // at the nadir
  double logoAngle = 0;
  bool removePurple = false;
};

// A camera's encoded pictures and sound on one timeline: whole pictures, each at the time at which it was taken, and
// AAC frames, each at the time at which it was heard. The classes that are given stamp a slice with the time in force
// when the next unit has begun, which can be a picture's length late against the sound; the stream corrects that. For
// a camera before firmware 190, which tells no times, it places the pictures by the sound beside which they arrive.
//
//   zel::Outputs outputs;
//   outputs.add(*zel::parseOutputAddress("film.mp4"));
//   zel::EncodedStream stream(outputs);
//   stream.startCamera(stack, 3);
//
// One stream can have several runs, one after the other, of one camera stack or of several, as after a lost
// connection. The timeline goes on where the run before ended, and the first packet of each track is marked as a
// discontinuity.
//
// Owner:  the receiver must outlive the object; a stack must outlive its run.
//
// Thread: starts and stops on one thread, with no lock held that a callback takes; the rest on any thread.
class ZEL_EXPORT EncodedStream {
 public:
  struct Options {
    // The stream is complete when it is so long.
    //
    // Units: microseconds.
    std::optional<std::int64_t> length = {};
    // Called when the stream is complete and when it fails. It must not call the stream.
    //
    // Thread: any thread.
    std::function<void()> changed = {};
    // Gets every decoded picture as the camera sent it, for hosts that look at a stream while it runs; empty: the
    // camera's own pictures are not decoded. The time is the reported one.
    //
    // Units: milliseconds since 1 January 2001 UTC.
    //
    // Thread: decode thread.
    std::function<void(const platform::PixelBufferRef& picture, std::int64_t time)> picture = {};
  };

  explicit EncodedStream(EncodedStreamReceiver& receiver);
  EncodedStream(EncodedStreamReceiver& receiver, Options options);
  // Stops.
  ~EncodedStream();
  EncodedStream(const EncodedStream&) = delete;
  EncodedStream& operator=(const EncodedStream&) = delete;

  // Begins a run of the camera's own pictures and sound, which are not decoded. Switches the camera's preview and
  // sound on, and off in the background. A run before is stopped. resolution: the camera's code.
  //
  // Errors: failure() then says why, after changed().
  void startCamera(CameraStack& stack, int resolution);

  // Begins a run of stitched pictures, encoded again, with the camera's sound. The stack's ports need a decoder, an
  // encoder and a media library, such as LinuxMedia has. A run before is stopped.
  //
  // Errors: as above.
  void startStitched(CameraStack& stack, int resolution, const StitchedPictures& pictures);

  // Ends the run and switches the camera's preview and sound off. When it returns, the receiver is not called any
  // more. Must not be called from the receiver.
  void stop();

  // Why the run cannot go on, as a sentence; nothing while it can, and nothing after a new start.
  std::optional<std::string> failure() const;

  EncodedStreamStatistics statistics() const;

  // Where a picture that Options::picture got belongs on the stream's timeline, by its reported time. Nothing for one
  // that is older than the stream or its present run.
  //
  // Units: milliseconds since 1 January 2001 UTC; microseconds since the stream's first picture.
  std::optional<std::int64_t> timeOf(std::int64_t reportedTime) const;

 private:
  struct State;
  const std::unique_ptr<State> state_;
};

}  // namespace zel
