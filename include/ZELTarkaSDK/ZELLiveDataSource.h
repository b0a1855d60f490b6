#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

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

// Streams live from the camera: switches its preview and sound on, stitches and encodes its pictures, and hands
// everything to a delegate. A lighter use shows the preview in a view. Both share one stream of the camera, which is
// switched off when neither is left.
//
// Failures reach the delegate alone, on the main queue, in the domain "zelcam.liveSource" (ZELError.h): 1 no preview
// player, 3 no lens offset, 4 and 5 the preview did not start or stop, 6 the sound was not switched, 7 the encoder did
// not open, or five pictures in a row could not be encoded. A start that failed stays a start until stopLiveData().
// After "encode image error" nothing is tidied up, since the encode thread waits for itself: make another source.
//
// Owner:  keeps its camera stack's objects alive; the ports must outlive it. A run keeps the source alive until it is
//         stopped.
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
  // process-wide stack, for any stack, or for parts that stand by themselves. resolution: the camera's video resolution
  // code.
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

  // Single commands, a part of the starts and the stops below. result: may be absent; runs on the main queue.
  // setCameraPreviewOn:result:, setCameraAudioOn:result:, getCameraMediaOffset:
  void setCameraPreviewOn(bool on, ResultBlock result);
  void setCameraAudioOn(bool on, ResultBlock result);
  void getCameraMediaOffset(OffsetBlock result);

  // startPreviewWithFrame:result: - the view that plays the preview, null where the host shows nothing. After a failure
  // result is never called.
  // Thread: result runs on the main queue.
  void startPreviewWithFrame(const ZELRect& frame, ViewBlock result);
  void stopPreview();

  // Starts step by step, each when the camera has answered the one before: preview, sound, lens offset, then the
  // threads. Stop before you start again.
  void startLiveData();
  // Ends the run, and a start that is under way. Returns at once where nothing was started or it is stopped already.
  void stopLiveData();
  // Lets the player go and switches the camera's preview and sound off.
  void releasePlayer();

  // failWithErrorCode:description: - tells the delegate that there is when the main queue comes to it.
  void failWithErrorCode(std::int64_t code, const std::string& description);

  // What the host tells on the notification centre (application_events.h): the background switches the camera's preview
  // and sound off; becoming active switches on again what is in use. The threads go on throughout.
  void handleEnterBackground();
  void handleDidActive();

  // Settings; they count from the next start. fps comes from the resolution, and is 0 for a code above 15.
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
  // Without stitching the delegate gets raw pictures and sound alone; encoding needs stitching.
  bool isStitch() const;
  bool isEncode() const;
  void setIsStitch(bool isStitch);
  void setIsEncode(bool isEncode);
  // Units:  degrees. They count when the renderer is made, which is when the first picture comes.
  float logoAngle() const;
  std::optional<zel::platform::RgbaImage> logoImage() const;
  void setLogoAngle(float angle);
  void setLogoImage(std::optional<zel::platform::RgbaImage> image);
  // Counts at once.
  bool removePurple() const;
  void setRemovePurple(bool removePurple);
  // For the host alone.
  std::optional<std::string> url() const;
  void setUrl(std::optional<std::string> url);

  bool cancelled() const;  // no run: true at first
  bool isPreview() const;
  bool isLive() const;
  bool hasVideo() const;                      // the H.264 header of this run has been delivered
  bool hasAudio() const;                      // likewise the AAC header
  std::int32_t encodeFailCount() const;       // pictures in a row, over all runs
  std::int64_t firstTimestamp() const;        // the camera's time of the run's first sound, milliseconds
  std::int64_t bufferTimestamp() const;       // of the newest picture, likewise
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
  ResultBlock whenStarted(std::uint64_t run, void (ZELLiveDataSource::*next)(std::uint64_t run));
  void startAudio(std::uint64_t run);
  void fetchOffset(std::uint64_t run);
  void postAttach(std::uint64_t run);
  void attach(std::uint64_t run);
  bool attachToPlayer(std::uint64_t run);
  void startEncoding(std::uint64_t run);
  void runRenderThread(std::uint64_t run);
  void runEncodeThread(std::uint64_t run);

  const std::unique_ptr<State> state_;
};
