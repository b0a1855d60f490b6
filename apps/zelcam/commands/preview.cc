#include "apps/zelcam/commands/commands.h"

#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/PreviewFormat.h>
#include <ZELTarkaSDK/WireConstants.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>

#include <ZELTarkaSDK/PictureFile.h>
#include <ZELTarkaSDK/platform/clock.h>
#include <ZELTarkaSDK/platform/media_library.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "apps/zelcam/command_line/decoder_threads.h"
#include "apps/zelcam/commands/picture_rate.h"
#include "apps/zelcam/host/console.h"
#include "apps/zelcam/host/interrupt.h"
#include "apps/zelcam/link/command_camera.h"
#include "apps/zelcam/link/loss_watch.h"

namespace zel::app {
namespace {

constexpr std::chrono::milliseconds kReportPeriod{1000};  // between two lines of the live report

std::uint8_t resolutionIn(const Invocation& invocation) {
  return static_cast<std::uint8_t>(invocation.values.integer("--resolution").value_or(kSmallestPreview));
}

// One run of the command.
class Preview {
 public:
  Preview(Camera& camera, const Invocation& invocation)
      : camera_(camera),
        invocation_(invocation),
        settings_(invocation.settings),
        timesAreHosts_(camera.stack().accessory().firewareVersion() >= kFirewareVersion190),
        loss_(camera, LossWatch::Silence::isBorne),
        // Pictures may be vast, and the newest is enough.
        pictures_(camera.pictures({.resolution = resolutionIn(invocation), .queue = {.capacity = 1}})) {}

  int run() {
    sayAsked(settings_);
    if (const int status = readOffset(); status != kDone) return status;
    const int status = waitForPictures();
    tellEndOfLine();
    return status == kDone ? summarise() : status;
  }

 private:
  using Clock = PictureRate::Clock;

  std::optional<std::int64_t> wanted() const {
    const auto frames = invocation_.values.integer("--frames");
    if (frames || !invocation_.values.has("--snapshot")) return frames;
    return 1;
  }

  bool stitches() const { return invocation_.values.has("--stitch"); }

  int readOffset() {
    if (!stitches()) return kDone;
    const auto offset = camera_.lensOffset(kMediaOffsetOfCamera, resolutionIn(invocation_), limitsOf(settings_)).get();
    if (!offset) return tellFailure("preview: the lens offset", offset.error(), settings_);
    offset_ = offset->value_or("");
    return kDone;
  }

  // Pictures must keep arriving: a timeout without one ends the command.
  int waitForPictures() {
    const auto patience = std::chrono::duration<double>(settings_.timeout);
    for (Clock::time_point last = Clock::now(), shown = last; rate_.pictures() != wanted();) {
      const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(last + patience - Clock::now());
      if (left.count() <= 0) {
        sayFailure(fmt::format("preview: no picture came within {} s", settings_.timeout));
        return kNoCamera;
      }
      const auto picture = pictures_.next({.timeLimit = std::min(left, kReportPeriod), .stop = loss_.stop()}).get();
      if (picture) {
        last = Clock::now();
        note(*picture);
      } else if (picture.error().reason != CameraError::Reason::timeLimit) {
        return statusOf(picture.error());
      }
      if (Clock::now() - shown >= kReportPeriod) shown = Clock::now(), report();
    }
    return kDone;
  }

  int statusOf(const CameraError& error) const {
    if (wasInterrupted()) return rate_.pictures() != 0 && !wanted() ? kDone : kInterrupted;
    if (loss_.isLost()) return tellFailure("preview", zelOSStatusError(kZELErrorNotConnected));
    return tellFailure("preview", error, settings_);
  }

  void note(const Picture& picture) {
    rate_.note(Clock::now());
    if (rate_.pictures() == 1 && settings_.verbose) say("zelcam: the first picture is here");
    const std::int64_t now = platform::absoluteTimeMilliseconds(LinuxPlatform::systemClock());
    if (timesAreHosts_ && isLate(picture.time, now)) ++late_;
    newest_ = picture.pixels;
  }

  nlohmann::ordered_json figures() const {
    const PreviewStatistics statistics = camera_.allStatistics().preview;
    return {{"frames", rate_.pictures()},
            {"width", newest_ ? newest_->width() : 0},
            {"height", newest_ ? newest_->height() : 0},
            {"fps", rate_.perSecond()},
            {"received", statistics.units},
            {"dropped", statistics.dropped + pictures_.dropped()},
            {"late", late_}};
  }

  std::string line() const {
    const auto now = figures();
    return fmt::format("{:.1f} pictures a second  {} x {}  {} decoded  {} dropped  {} late", now["fps"].get<double>(),
                       now["width"].get<int>(), now["height"].get<int>(), now["frames"].get<std::int64_t>(),
                       now["dropped"].get<std::uint64_t>(), now["late"].get<std::int64_t>());
  }

  void report() const {
    if (::isatty(STDERR_FILENO) != 0) showProgress(line());
  }
  void tellEndOfLine() const {
    if (::isatty(STDERR_FILENO) != 0) say("");
  }

  int summarise() const {
    nlohmann::ordered_json object = figures();
    if (const int status = saveSnapshot(object); status != kDone) return status;
    return tellDone(settings_.json, object, line());
  }

  // The last picture; null if it cannot be stitched, which the renderer has reported.
  platform::PixelBufferRef snapshot() const {
    if (!stitches()) return newest_;
    const int width = newest_->width() - newest_->width() % 4;  // twice as wide as high, and both even
    const auto render = camera_.stack().ports().mediaLibrary->createFlatOffscreenRender(width, width / 2);
    if (!render) return nullptr;
    render->setIsRenderVideo(true);
    render->setOffset(offset_);
    return render->renderVideo(newest_);
  }

  int saveSnapshot(nlohmann::ordered_json& object) const {
    if (!invocation_.values.has("--snapshot")) return kDone;
    const auto picture = snapshot();
    if (!picture) return kRefused;
    const std::string path = invocation_.values.text("--snapshot");
    std::string fault;
    if (!savePicture(*picture, path, fault)) return complain(kRefused, "preview", fault);
    object["snapshot"] = path;
    return kDone;
  }

  Camera& camera_;
  const Invocation& invocation_;
  const Settings& settings_;
  const bool timesAreHosts_;  // the camera tells times
  const LossWatch loss_;
  Subscription<Picture> pictures_;
  std::string offset_;  // of the lenses, where the snapshot is stitched
  PictureRate rate_;
  std::int64_t late_ = 0;
  platform::PixelBufferRef newest_;
};

}  // namespace

int runPreview(const Invocation& invocation) {
  if (invocation.values.has("--stitch") && !invocation.values.has("--snapshot")) {
    return complain(kWrongUsage, "preview", "--stitch is for the picture that --snapshot saves");
  }
  if (invocation.values.has("--snapshot") && !pictureFormOf(invocation.values.text("--snapshot"))) {
    return complain(kWrongUsage, "preview", "--snapshot takes FILE.png or FILE.jpg");
  }
  const int threads = decoderThreads(invocation.values, resolutionIn(invocation));
  return withCamera(invocation.settings, [&](Camera& camera) { return Preview(camera, invocation).run(); },
                    {.decoderThreads = threads});
}

}  // namespace zel::app
