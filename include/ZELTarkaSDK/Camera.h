#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <ZELTarkaSDK/CameraCaptures.h>
#include <ZELTarkaSDK/CameraOptions.h>
#include <ZELTarkaSDK/CameraRequests.h>
#include <ZELTarkaSDK/CameraStatistics.h>
#include <ZELTarkaSDK/CameraStream.h>
#include <ZELTarkaSDK/LinkStatistics.h>
#include <ZELTarkaSDK/LinkStatus.h>
#include <ZELTarkaSDK/Operations.h>
#include <ZELTarkaSDK/Subscription.h>
#include <ZELTarkaSDK/ZELAccessoryInfo.h>
#include <ZELTarkaSDK/ZELCameraNotificationProtocol.h>
#include <ZELTarkaSDK/platform/export.h>

namespace zel {

class CameraStack;

// What the camera tells by itself. The comment of ZELCameraEvent says what each type carries.
struct ZEL_EXPORT Event {
  ZELCameraEvent type{};
  std::array<std::int64_t, 3> numbers{};  // in the order of that comment
  std::optional<std::string> text = {};   // a file's name, or the lens offset
  bool failed = false;                    // a firmware update

  bool operator==(const Event&) const = default;
};

// A camera that is open: its requests, and what it sends. It finds the camera, keeps its link, and opens it again when
// that was lost; requests fail with `lost` meanwhile.
//
//   auto camera = zel::Camera::open().get();
//   if (!camera) return std::puts(camera.error().message.c_str()), 1;
//   const auto battery = camera->battery().get();
//
// Owner:  the host. Subscriptions and pending results may outlive it: they end with `closed`.
//
// Thread: any thread, for every operation and for the destructor, which waits for the camera's threads. Inside a
//         callback it does not wait; they end soon after.
class ZEL_EXPORT Camera final : public CameraRequests {
 public:
  // Finds the camera and waits for its first frame.
  //
  // Errors: `noCamera`, `silent`, `inUse` at once, `platform` where the system refuses a folder or a thread.
  static Pending<Camera> open(CameraOptions options = {}, const RequestOptions& request = {});

  // A camera object that does not look for its camera yet, for hosts that subscribe or show it before the first frame.
  // connect() begins.
  //
  // Errors: `platform`.
  static Result<Camera> create(CameraOptions options = {});

  // Looks for the camera and waits for its first frame; at once where frames arrive. What is attached later is found
  // also after the time limit. May be called again where the link was lost.
  //
  // Errors: as those of open().
  Pending<void> connect(const RequestOptions& request = {});

  Camera(Camera&&) noexcept = default;
  Camera& operator=(Camera&& other) noexcept;
  Camera(const Camera&) = delete;
  Camera& operator=(const Camera&) = delete;
  ~Camera();

  // Its identity at its latest connection; null before the first, and where this object was moved from.
  std::shared_ptr<const ZELAccessoryInfo> info() const;

  LinkStatus linkStatus() const;
  LinkStatistics statistics() const;
  // Those of the link, the preview and the stream.
  CameraStatistics allStatistics() const;
  // The same, once every interval, also while there is no link.
  //
  // Errors: `invalid` for an interval below 10 ms.
  Subscription<CameraStatistics> statisticsEvery(std::chrono::milliseconds interval,
                                                 const SubscriptionOptions& options = {.capacity = 1});

  // Takes a photo and waits for its picture. Photos and brackets wait for each other.
  Pending<Photo> photo(const CaptureOptions& options = {}, const RequestOptions& request = {});
  // Takes a series with these exposure steps, 1 to 9 of them, in the camera's unit.
  Pending<PhotoSeries> bracket(const std::vector<std::int8_t>& steps, const CaptureOptions& options = {},
                               const RequestOptions& request = {});

  // Sends a file. type: the camera's code; path: its name there, without its drive. What was queued when the call is
  // given up is still sent. progress: where the camera's callbacks run.
  //
  // Errors: `invalid` where no name is left, or the file is above 4 GiB.
  Pending<void> upload(std::int64_t type, const std::string& path, const ZELData& content,
                       const std::function<void(const TransferProgress&)>& progress = {},
                       const RequestOptions& request = {});

  // The pictures of the preview, which runs as long as anybody needs it, at one resolution for all.
  //
  // Errors: `invalid` where it runs at another one, `media` where it cannot be started or decoded.
  Subscription<Picture> pictures(const PictureOptions& options = {});

  // Streams pictures and sound; gives the stream once its first picture has come. One stream at a time; what the host
  // wants of it beside, it adds to it.
  //
  // Errors: `invalid` beside another stream or resolution, or for an output that is none; `media` where nothing comes
  //         in time: no picture, or no sound, without which no stream begins.
  Pending<CameraStream> stream(const StreamOptions& options = {}, const RequestOptions& request = {});

  // The same at once, for hosts that show the stream before its first picture. It begins where the link is there, and
  // else when it comes; failure() and problems() tell why it cannot.
  //
  // Errors: `invalid` as above.
  Result<CameraStream> beginStream(const StreamOptions& options = {});

  // Calls an operation by its name, for command lines, scripts and servers: see Operations.h. It waits in line with the
  // requests that send the same. What the camera answers stands in the reply, a refusal too.
  //
  // Errors: `timeLimit`, `cancelled`, `closed`.
  Pending<OperationReply> call(const Operation& operation, const std::vector<Operation::Value>& arguments = {},
                               const RequestOptions& request = {});

  // The events, and the states of the link.
  Subscription<Event> events(const SubscriptionOptions& options = {});
  Subscription<LinkStatus> linkChanges(const SubscriptionOptions& options = {});

  // The classes that it is built on, for what it does not offer. A request that is made there takes the answer of one
  // of the same kind that waits here. Not after this object was moved from.
  CameraStack& stack();

 private:
  friend class CameraCore;
  explicit Camera(std::shared_ptr<CameraCore> core);
};

}  // namespace zel
