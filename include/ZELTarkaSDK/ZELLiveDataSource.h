#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <ZELTarkaSDK/LiveStatistics.h>
#include <ZELTarkaSDK/ZELCameraMediaDataDelegate.h>
#include <ZELTarkaSDK/ZELLiveDataSourceProtocol.h>
#include <ZELTarkaSDK/ZELPixelBufferDataProtocol.h>
#include <ZELTarkaSDK/ZELRenderView.h>
#include <ZELTarkaSDK/platform/export.h>

class ZELPreviewPlayer;

namespace zel {
class CameraStack;
struct LiveParts;
}  // namespace zel

// Streams live from the camera: switches its preview and sound on, stitches and encodes its pictures, and delivers the
// output to a delegate. It can also only show the preview in a view. Both uses share one camera stream, which is
// switched off when both have ended.
//
// Errors are reported to the delegate only, on the main queue, in the domain "zelcam.liveSource" (ZELError.h): 1 no
// preview player, 3 no lens offset, 4 and 5 the preview did not start or stop, 6 the sound was not switched, 7 the
// encoder did not open, or five pictures in a row could not be encoded. After a failed start the source stays started
// until stopLiveData(). After "encode image error" nothing is released, since the encode thread waits for itself
// forever: create a new source.
//
// Owner:  keeps its camera stack's objects alive; the ports must outlive it. A run keeps the source alive until
//         stopLiveData().
// Thread: any thread, except where a delegate's operation says otherwise. stopLiveData() waits for the run's threads.
class ZEL_EXPORT ZELLiveDataSource final : public ZELPixelBufferDataProtocol,
                                           public ZELCameraMediaDataDelegate,
                                           public std::enable_shared_from_this<ZELLiveDataSource> {
 public:
  using Number = std::uint64_t;
  using Source = std::shared_ptr<ZELLiveDataSource>;
  using ResultBlock = std::function<void(bool success)>;
  using OffsetBlock = std::function<void(bool success, const std::optional<std::string>& offset)>;
  using ViewBlock = std::function<void(std::shared_ptr<ZELRenderView> view)>;

  // initWitCameraResolution:stitchWidth:stitchHeight:bitrate: ("Wit" is the interface's spelling) - for the
  // process-wide stack, for any stack, or for separate parts. resolution: the camera's video resolution code.
  // Units:  pixels of the stitched pictures; the bitrate is the encoder's.
  static Source initWitCameraResolution(Number resolution, Number stitchWidth, Number stitchHeight, Number bitrate);
  static Source initWitCameraResolution(zel::CameraStack& stack, Number resolution, Number stitchWidth,
                                        Number stitchHeight, Number bitrate);
  static Source initWitCameraResolution(const zel::LiveParts& parts, Number resolution, Number stitchWidth,
                                        Number stitchHeight, Number bitrate);
  ~ZELLiveDataSource() override;
  ZELLiveDataSource(const ZELLiveDataSource&) = delete;
  ZELLiveDataSource& operator=(const ZELLiveDataSource&) = delete;

  // Receives all output; held weakly.
  void setDataSourceDelegate(std::weak_ptr<ZELLiveDataSourceProtocol> delegate);
  std::shared_ptr<ZELLiveDataSourceProtocol> dataSourceDelegate() const;

  // Single commands that the starts and stops below consist of. result: may be empty; runs on the main queue.
  // setCameraPreviewOn:result:, setCameraAudioOn:result:, getCameraMediaOffset:
  void setCameraPreviewOn(bool on, ResultBlock result);
  void setCameraAudioOn(bool on, ResultBlock result);
  void getCameraMediaOffset(OffsetBlock result);

  // startPreviewWithFrame:result: - result gets the view that shows the preview, null when the host has none. After a
  // failure result is never called.
  // Thread: result runs on the main queue.
  void startPreviewWithFrame(const ZELRect& frame, ViewBlock result);
  void stopPreview();

  // Starts in steps: preview, sound, lens offset, then the threads. Each waits for the camera's reply to the previous
  // one. Call stopLiveData() before the next start.
  void startLiveData();
  // Ends the run, or a start in progress. Returns at once when nothing is started.
  void stopLiveData();
  // Releases the player and switches the camera's preview and sound off.
  void releasePlayer();

  // failWithErrorCode:description: - reports to the delegate that is set when the main queue runs the task.
  void failWithErrorCode(std::int64_t code, const std::string& description);

  // Called for the host's notifications (application_events.h): entering the background switches the camera's preview
  // and sound off, becoming active switches those in use on again. The threads keep running.
  void handleEnterBackground();
  void handleDidActive();

  // Settings; they take effect at the next start. fps follows from the resolution, and is 0 for a code above 15.
  std::uint64_t resolution() const;
  std::uint64_t width() const;
  std::uint64_t height() const;
  std::uint64_t bitrate() const;
  std::uint64_t fps() const;
  void setResolution(std::uint64_t resolution);  // leaves fps as it is
  void setWidth(std::uint64_t width);
  void setHeight(std::uint64_t height);
  void setBitrate(std::uint64_t bitrate);
  void setFps(std::uint64_t fps);
  // Without stitching the delegate gets only raw pictures and sound; encoding needs stitching.
  bool isStitch() const;
  bool isEncode() const;
  void setIsStitch(bool isStitch);
  void setIsEncode(bool isEncode);
  // Units:  degrees. Read when the renderer is created, at the first picture.
  float logoAngle() const;
  std::optional<zel::platform::RgbaImage> logoImage() const;
  void setLogoAngle(float angle);
  void setLogoImage(std::optional<zel::platform::RgbaImage> image);
  // Takes effect at once.
  bool removePurple() const;
  void setRemovePurple(bool removePurple);
  // For the host's own use.
  std::optional<std::string> url() const;
  void setUrl(std::optional<std::string> url);

  bool cancelled() const;  // no run: true at first
  bool isPreview() const;
  bool isLive() const;
  bool hasVideo() const;                      // the H.264 header of this run has been delivered
  bool hasAudio() const;                      // the AAC header of this run has been delivered
  std::int32_t encodeFailCount() const;       // pictures in a row, over all runs
  std::int64_t firstTimestamp() const;        // the camera's time of the run's first sound, milliseconds
  std::int64_t bufferTimestamp() const;       // the camera's time of the newest picture, milliseconds
  std::optional<std::string> offset() const;  // the lens offset that was fetched last
  std::shared_ptr<ZELPreviewPlayer> player() const;
  zel::LiveStatistics statistics() const;
  // From the preview player. The camera's own H.264 is deliberately not used.
  void onPixelBuffer(const zel::platform::PixelBufferRef& pixelBuffer, std::int64_t timestamp) override;
  void onH264Nalu(Bytes nalu, bool keyFrame, std::int64_t timestamp) override;
  void onSps(Bytes sps, Bytes pps) override;
  void onAACHeader(Bytes header) override;
  void onAACAdts(Bytes data, std::int64_t timestamp) override;

 private:
  struct State;
  explicit ZELLiveDataSource(std::unique_ptr<State> state);
  void observeApplication();
  void choosePlayer();
  void startShowing(const ZELRect& frame, const ViewBlock& result);
  void requestPreview(bool on, const ResultBlock& result);
  void requestAudio(bool on, const ResultBlock& result);
  void requestOffset(const OffsetBlock& result);
  void fail(std::int64_t code, std::string_view description);
  ResultBlock whenStarted(std::uint64_t run, void (ZELLiveDataSource::*next)(std::uint64_t run));
  void startAudio(std::uint64_t run);
  void fetchOffset(std::uint64_t run);
  void postAttach(std::uint64_t run);
  void attach(std::uint64_t run);
  bool attachToPlayer(std::uint64_t run);
  void startEncoding(std::uint64_t run);
  void openEncoder(std::uint64_t run);
  void runRenderThread(std::uint64_t run);
  void runEncodeThread(std::uint64_t run);

  const std::unique_ptr<State> state_;
};
