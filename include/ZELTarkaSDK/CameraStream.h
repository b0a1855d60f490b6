#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <ZELTarkaSDK/EncodedStream.h>
#include <ZELTarkaSDK/MediaPacket.h>
#include <ZELTarkaSDK/OutputReport.h>
#include <ZELTarkaSDK/PreviewFormat.h>
#include <ZELTarkaSDK/Subscription.h>
#include <ZELTarkaSDK/platform/export.h>
#include <ZELTarkaSDK/platform/pixel_buffer.h>

namespace zel {

class CameraCore;
class StreamRun;

// A decoded picture of the preview, both lenses side by side: NV12, full range.
//
// Units: milliseconds since 1 January 2001 UTC, by the host's clock.
struct ZEL_EXPORT Picture {
  platform::PixelBufferRef pixels;
  std::int64_t time = 0;
};

// Units: see PreviewFormat.h for the resolution's code.
struct ZEL_EXPORT PictureOptions {
  std::uint8_t resolution = kSmallestPreview;
  SubscriptionOptions queue = {.capacity = 4};
};

// The pictures and sound of a stream, and where they go at first.
struct ZEL_EXPORT StreamOptions {
  std::uint8_t resolution = kSmallestPreview;
  std::optional<StitchedPictures> stitched = {};  // absent: the camera's own pictures as they come
  std::vector<std::string> outputs = {};          // addresses, see addOutput()
  std::chrono::milliseconds startTimeLimit{10'000};
  std::optional<std::chrono::microseconds> length = {};  // the stream is complete when it is so long; absent: never
  std::function<void(const std::string&)> tell = {};     // sentences of the outputs, see Outputs::Tell
};

// What went wrong while a stream was running.
struct ZEL_EXPORT StreamProblem {
  CameraError error;
};

// A camera's pictures and sound that are being streamed: H.264 and AAC on one timeline, to files, servers and
// subscribers, any of which may come and go. It goes on when the camera was lost and has come back.
//
// Owner:  the host; it may outlive the camera object, which ends it.
// Thread: any thread. The destructor stops the stream, and waits until its outputs have ended: files are written
//         wholly, servers get five seconds.
class ZEL_EXPORT CameraStream {
 public:
  CameraStream(CameraStream&&) noexcept;
  CameraStream& operator=(CameraStream&& other) noexcept;
  CameraStream(const CameraStream&) = delete;
  CameraStream& operator=(const CameraStream&) = delete;
  ~CameraStream();

  StreamHeaders headers() const;

  // The packets from the next key picture on. Whoever is too slow loses all that waits, and goes on with the next key
  // picture; with Drop::newest what waits is kept.
  Subscription<MediaPacket> packets(const SubscriptionOptions& options = {.capacity = 256});

  // Where a picture of the same camera, which is looked at beside the stream, belongs among its packets. Nothing for
  // one that is older than the stream, or than its latest connection.
  //
  // Units: microseconds since the stream's first picture.
  std::optional<std::int64_t> timeOf(const Picture& picture) const;

  // Adds an output, one of kOutputKinds; it begins with the next key picture. Gives its number.
  //
  // Errors: `invalid` for any other text, `closed` once the stream has ended.
  Result<int> addOutput(const std::string& address);
  // Ends it; waits as the destructor does.
  //
  // Errors: `invalid` for a number that there is not.
  Result<OutputReport> removeOutput(int id);
  std::vector<OutputReport> outputs() const;

  // What goes wrong while it runs: the camera is lost (`lost`; it goes on by itself), or pictures or sound cannot be
  // made (`media`; it has ended).
  Subscription<StreamProblem> problems(const SubscriptionOptions& options = {});

  // Why it cannot go on, as a sentence; nothing while it can, and nothing after it has begun again with the camera.
  std::optional<std::string> failure() const;

  EncodedStreamStatistics statistics() const;

  // Ends the stream and its outputs; the reports say what became of them.
  void stop();

 private:
  friend class StreamRun;
  explicit CameraStream(std::shared_ptr<StreamRun> run);
  std::shared_ptr<StreamRun> run_;
};

}  // namespace zel
