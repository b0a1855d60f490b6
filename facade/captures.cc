#include "facade/captures.h"

#include <ZELTarkaSDK/LinkStatistics.h>
#include <ZELTarkaSDK/WireConstants.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <mutex>
#include <utility>

#include "facade/camera_core.h"

namespace zel {
namespace {

using Reason = CameraError::Reason;

// The camera takes one picture or series at a time, whatever message asks for it.
constexpr RequestKind kPhoto{"photo", "capture"}, kBracket{"bracket", "capture"}, kUpload{"upload", "upload"};
constexpr double kProgressPeriod = 0.05;  // seconds

// Tells a transfer's progress whenever it has grown.
class Progress : public std::enable_shared_from_this<Progress> {
 public:
  using Tell = std::function<void(const TransferProgress&)>;
  using Measure = std::uint64_t (*)(const LinkStatistics&);

  Progress(const std::shared_ptr<CameraCore>& core, Tell tell, std::uint64_t total, Measure measure)
      : core_(core), tell_(std::move(tell)), total_(total), measure_(measure) {}

  // What was measured before the transfer is not its own.
  void begin(CameraStack& stack) { before_ = measure_(stack.statistics()); }
  void start() {
    if (tell_) look();
  }
  void stop() { isOver_ = true; }

 private:
  void look() {
    const auto core = core_.lock();
    if (!core || isOver_) return;
    std::optional<std::uint64_t> done;
    core->withStack([&](CameraStack& stack) { done = std::min(measure_(stack.statistics()) - before_, total_); });
    if (done && done != told_) {
      told_ = done;
      core->callbacks()->post([self = shared_from_this(), now = TransferProgress{*done, total_}] {
        if (!self->isOver_) self->tell_(now);
      });
    }
    core->deadlines()->add(core->deadlines()->now() + kProgressPeriod, [weak = weak_from_this()] {
      if (const auto self = weak.lock()) self->look();
    });
  }

  const std::weak_ptr<CameraCore> core_;
  const Tell tell_;
  const std::uint64_t total_;
  const Measure measure_;
  std::uint64_t before_ = 0;
  std::optional<std::uint64_t> told_;  // main queue, after start()
  std::atomic<bool> isOver_ = false;
};

std::uint64_t picturesOf(const LinkStatistics& link) { return link.frames[static_cast<std::size_t>(FrameType::photo)]; }

// A request that tells its progress until it has ended, in whatever way. send: as of CameraCore::request().
template <class T, class Send>
Pending<T> transfer(CameraCore& core, const RequestKind& kind, const RequestOptions& request,
                    const std::shared_ptr<Progress>& progress, const Send& send) {
  return core.request<T>(
      kind, orLimit(request, core.options().transferTimeLimit),
      [progress, send](CameraStack& stack, const std::function<void(Result<T>)>& done) {
        progress->begin(stack);
        send(stack, [progress, done](Result<T> result) {
          progress->stop();
          done(std::move(result));
        });
      },
      [progress] { progress->stop(); });
}

// The two answers of a capture: what it is stored as, and its pictures. They come in any order.
template <class T>
struct Capture {
  std::mutex mutex;
  T result;
  bool isStored = false, hasPictures = false;

  // Whether that was the second one.
  bool complete(bool stored, const std::function<void(T&)>& fill) {
    const std::lock_guard lock(mutex);
    fill(result);
    (stored ? isStored : hasPictures) = true;
    return isStored && hasPictures;
  }
};

// The handlers of a capture's two answers. The pictures' handler gets the error of either, and gets it last: a request
// that is sent before that would take it for its own.
template <class T>
class CaptureHandlers {
 public:
  CaptureHandlers(std::string_view name, std::function<void(Result<T>)> done, std::shared_ptr<Progress> progress)
      : name_(name), done_(std::move(done)), progress_(std::move(progress)) {}

  void stored(const std::optional<ZELError>& error, const StoredFile& file) const {
    if (error) return;
    progress_->start();
    if (capture_->complete(true, [&](T& result) { result.stored = file; })) done_(std::move(capture_->result));
  }
  void pictures(const std::optional<ZELError>& error, const std::function<void(T&)>& fill) const {
    if (error) return done_(errorOf(name_, *error));
    if (capture_->complete(false, fill)) done_(std::move(capture_->result));
  }

 private:
  const std::string_view name_;
  const std::function<void(Result<T>)> done_;
  const std::shared_ptr<Progress> progress_;
  const std::shared_ptr<Capture<T>> capture_ = std::make_shared<Capture<T>>();
};

void sendPhoto(CameraStack& stack, const CaptureOptions& options, const CaptureHandlers<Photo>& handlers) {
  const auto stored = [handlers](const auto& error, std::uint32_t time, std::uint64_t size, const auto& name) {
    handlers.stored(error, {time, size, name});
  };
  const auto picture = [handlers](const auto& error, const auto& name, const std::optional<ZELData>& jpeg) {
    handlers.pictures(error, [&](Photo& photo) {
      photo.name = name;
      photo.jpeg = jpeg.value_or(ZELData());
    });
  };
  ZELCameraUCD& ucd = stack.ucd();
  if (options.extraInfo) {
    ucd.msgCmdShutterExtraWithGps(options.position, options.motion, options.orientation, options.extraInfo, stored,
                                  picture);
  } else {
    ucd.msgCmdShutterWithGps(options.position, options.motion, options.orientation, stored, picture);
  }
}

void sendBracket(CameraStack& stack, const aeb_info& bracket, const CaptureOptions& options,
                 const CaptureHandlers<PhotoSeries>& handlers) {
  const auto stored = [handlers](const auto& error, const std::optional<std::uint32_t>& time,
                                 const std::optional<std::uint64_t>& size, const auto& name) {
    handlers.stored(error, {time.value_or(0), size.value_or(0), name});
  };
  const auto pictures = [handlers](const auto& error, const std::vector<std::string>& names,
                                   const std::shared_ptr<const ZELDataArray>& images) {
    handlers.pictures(error, [&](PhotoSeries& series) {
      series.names = names;
      for (std::size_t at = 0; images && at < images->size(); ++at) series.jpegs.push_back(images->at(at));
    });
  };
  stack.ucd().msgCmdShutterAEBWithGps(options.position, options.motion, options.orientation, bracket, options.extraInfo,
                                      stored, pictures);
}

}  // namespace

Pending<Photo> takePhoto(const std::shared_ptr<CameraCore>& core, const CaptureOptions& options,
                         const RequestOptions& request) {
  const auto progress = std::make_shared<Progress>(core, options.progress, 1, picturesOf);
  return transfer<Photo>(*core, kPhoto, request, progress,
                         [options, progress](CameraStack& stack, std::function<void(Result<Photo>)> done) {
                           sendPhoto(stack, options, {kPhoto.name, std::move(done), progress});
                         });
}

Pending<PhotoSeries> takeBracket(const std::shared_ptr<CameraCore>& core, const std::vector<std::int8_t>& steps,
                                 const CaptureOptions& options, const RequestOptions& request) {
  aeb_info bracket{};
  if (steps.empty() || steps.size() > bracket.steps.size()) {
    return failed<PhotoSeries>({Reason::invalid, "bracket: give 1 to 9 exposure steps"}, core->callbacks());
  }
  bracket.count = static_cast<std::uint8_t>(steps.size());
  std::ranges::copy(steps, bracket.steps.begin());
  const auto progress = std::make_shared<Progress>(core, options.progress, bracket.count, picturesOf);
  return transfer<PhotoSeries>(
      *core, kBracket, request, progress,
      [options, bracket, progress](CameraStack& stack, std::function<void(Result<PhotoSeries>)> done) {
        sendBracket(stack, bracket, options, {kBracket.name, std::move(done), progress});
      });
}

Pending<void> uploadFile(const std::shared_ptr<CameraCore>& core, std::int64_t type, const std::string& path,
                         const ZELData& content, const std::function<void(const TransferProgress&)>& told,
                         const RequestOptions& request) {
  if (path.empty() || std::ranges::find(kDrives, path) != std::end(kDrives)) {
    return failed<void>({Reason::invalid, "upload: \"" + path + "\" leaves no name for the file"}, core->callbacks());
  }
  if (content.size() > kLargestFile) {
    return failed<void>(
        {Reason::invalid, "upload: a file of " + std::to_string(content.size()) + " bytes is more than the " +
                              std::to_string(kLargestFile) + " that can be sent"},
        core->callbacks());
  }
  const auto progress = std::make_shared<Progress>(core, told, content.size(),
                                                   [](const LinkStatistics& link) { return link.bytesWritten; });
  return transfer<void>(
      *core, kUpload, request, progress,
      [type, path, content, progress](CameraStack& stack, const std::function<void(Result<void>)>& done) {
        const auto ended = [done](const std::optional<ZELError>& error) {
          done(error ? Result<void>(errorOf(kUpload.name, *error)) : Result<void>());
        };
        stack.ucd().sendFileWithType(type, path, content, ended);
        progress->start();
      });
}

}  // namespace zel
