#include "apps/zelcam/commands/commands.h"

#include <ZELTarkaSDK/PreviewFormat.h>
#include <ZELTarkaSDK/WireConstants.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>
#include <ZELTarkaSDK/ZELRenderView.h>

#include <fmt/format.h>
#include <unistd.h>

#include <memory>
#include <optional>
#include <string>

#include <ZELTarkaSDK/PictureFile.h>

#include "apps/zelcam/command_line/decoder_threads.h"
#include "apps/zelcam/commands/picture_rate.h"
#include "apps/zelcam/host/console.h"
#include "apps/zelcam/host/interrupt.h"
#include "apps/zelcam/link/answer.h"
#include "apps/zelcam/link/bus.h"
#include "apps/zelcam/link/camera_link.h"
#include "base/shared_value.h"

namespace zel::app {
namespace {

constexpr double kReportPeriod = 1.0;  // seconds between two lines of the live report

// The pictures decoded so far.
struct Decoded {
  PictureRate rate;
  std::int64_t late = 0;
  platform::PixelBufferRef newest;
  bool complete = false;  // the requested number is reached
};

// Counts pictures on the decode thread and stores the newest.
class PictureCounter final : public ZELPixelBufferDataProtocol {
 public:
  PictureCounter(CameraLink& link, std::optional<std::int64_t> wanted, bool verbose)
      : platform_(link.platform()),
        wanted_(wanted),
        verbose_(verbose),
        timesAreHosts_(link.stack().accessory().firewareVersion() >= kFirewareVersion190) {}

  void onPixelBuffer(const platform::PixelBufferRef& picture, std::int64_t timestamp) override {
    decoded_.with([&](Decoded& decoded) { note(decoded, picture, timestamp); });
  }

  Decoded decoded() const { return decoded_.get(); }

 private:
  void note(Decoded& decoded, const platform::PixelBufferRef& picture, std::int64_t timestamp) const {
    if (decoded.complete) return;
    decoded.rate.note(PictureRate::Clock::now());
    if (decoded.rate.pictures() == 1 && verbose_) say("zelcam: the first picture is here");
    const std::int64_t now = platform::absoluteTimeMilliseconds(platform_.ports().clock);
    if (timesAreHosts_ && isLate(timestamp, now)) ++decoded.late;
    decoded.newest = picture;
    decoded.complete = wanted_ && decoded.rate.pictures() >= *wanted_;
    if (decoded.complete) platform_.stopMainQueue();
  }

  LinuxPlatform& platform_;
  const std::optional<std::int64_t> wanted_;
  const bool verbose_;
  const bool timesAreHosts_;
  Guarded<Decoded> decoded_;
};

std::uint8_t resolutionIn(const Invocation& invocation) {
  return static_cast<std::uint8_t>(invocation.values.integer("--resolution").value_or(kSmallestPreview));
}

// One run of the command.
class Preview {
 public:
  Preview(CameraLink& link, const Invocation& invocation) : link_(link), invocation_(invocation) {}

  int run() {
    player_ = link_.stack().suitablePreviewPlayer();
    counter_ = std::make_shared<PictureCounter>(link_, wanted(), invocation_.settings.verbose);
    player_->setPixelBufferDelegate(counter_);
    if (const int status = startVideo(); status != kDone) return status;
    if (const int status = readOffset(); status != kDone) return status;
    const auto tick =
        link_.platform().ports().threads.currentRunLoop().scheduleRepeating(kReportPeriod, [this] { report(); });
    const int status = waitForPictures();
    tellEndOfLine();
    if (status != kDone) return status;
    return summarise();
  }

 private:
  std::optional<std::int64_t> wanted() const {
    const auto frames = invocation_.values.integer("--frames");
    if (frames || !invocation_.values.has("--snapshot")) return frames;
    return 1;
  }

  std::uint8_t resolution() const { return resolutionIn(invocation_); }

  int startVideo() {
    const auto answer = std::make_shared<Answer<std::uint8_t>>();
    player_->setFps(kPreviewFormats[resolution()].fps);
    link_.stack().ucd().msgCmdStartVideoWithVideoRes(resolution(), keepIn(answer, link_.platform()));
    link_.sayAsked();
    return link_.waitForAnswer("preview", *answer);
  }

  bool stitches() const { return invocation_.values.has("--stitch"); }

  int readOffset() {
    if (!stitches()) return kDone;
    return askLensOffset(link_, "preview", resolution(), offset_);
  }

  // Pictures must keep arriving: a timeout without one ends the command.
  int waitForPictures() {
    while (true) {
      const std::int64_t before = counter_->decoded().rate.pictures();
      const Waited end = link_.waitFor([this] { return counter_->decoded().complete; }, invocation_.settings.timeout,
                                       [](LinkLoss loss) { return loss == LinkLoss::silent; });
      if (end == Waited::done) return kDone;
      const bool some = counter_->decoded().rate.pictures() != 0;
      if (end == Waited::interrupted) return some && !wanted() ? kDone : kInterrupted;
      if (end == Waited::lost) return tellEnd("preview", end, std::nullopt, invocation_.settings);
      if (counter_->decoded().rate.pictures() != before) continue;
      sayFailure(fmt::format("preview: no picture came within {} s", invocation_.settings.timeout));
      return kNoCamera;
    }
  }

  nlohmann::ordered_json figures() const {
    const Decoded decoded = counter_->decoded();
    const auto statistics = player_->statistics();
    const auto width = decoded.newest ? decoded.newest->width() : 0;
    const auto height = decoded.newest ? decoded.newest->height() : 0;
    return {{"frames", decoded.rate.pictures()},
            {"width", width},
            {"height", height},
            {"fps", decoded.rate.perSecond()},
            {"received", statistics.units},
            {"dropped", statistics.dropped},
            {"late", decoded.late}};
  }

  std::string line() const {
    const auto now = figures();
    return fmt::format("{:.1f} pictures a second  {} x {}  {} decoded  {} dropped  {} late", now["fps"].get<double>(),
                       now["width"].get<int>(), now["height"].get<int>(), now["frames"].get<std::int64_t>(),
                       now["dropped"].get<std::uint64_t>(), now["late"].get<std::int64_t>());
  }

  void report() {
    if (::isatty(STDERR_FILENO) != 0) showProgress(line());
  }
  void tellEndOfLine() const {
    if (::isatty(STDERR_FILENO) != 0) say("");
  }

  int summarise() {
    nlohmann::ordered_json object = figures();
    if (const int status = saveSnapshot(object); status != kDone) return status;
    return tellDone(invocation_.settings.json, object, line());
  }

  // The last picture; null if it cannot be stitched, which the renderer has reported.
  platform::PixelBufferRef snapshot() const {
    platform::PixelBufferRef newest = counter_->decoded().newest;
    if (!stitches()) return newest;
    const int width = newest->width() - newest->width() % 4;  // twice as wide as high, and both even
    const auto view =
        ZELRenderView::initWithFrame(link_.stack().ports(), {0, 0, static_cast<double>(width), width / 2.0}, 0);
    if (!view) return nullptr;
    view->playVideoStream(player_, offset_);
    return view->picture();
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

  CameraLink& link_;
  const Invocation& invocation_;
  std::string offset_;  // of the lenses, where the snapshot is stitched
  std::shared_ptr<PictureCounter> counter_;
  std::shared_ptr<ZELPreviewPlayer> player_;
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
  return withCamera(
      invocation.settings, [&](CameraLink& link) { return Preview(link, invocation).run(); }, threads);
}

}  // namespace zel::app
