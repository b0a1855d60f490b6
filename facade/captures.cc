#include "facade/captures.h"

#include <ZELTarkaSDK/LinkStatistics.h>
#include <ZELTarkaSDK/WireConstants.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <mutex>
#include <string>
#include <utility>

#include "base/has_memory_for.h"
#include "base/mutex.h"
#include "facade/camera_core.h"

namespace zel {
namespace {

using Reason = CameraError::Reason;

constexpr RequestKind kPhoto{"photo", kCaptureLine}, kBracket{"bracket", kCaptureLine}, kUpload{"upload", kUploadLine};
constexpr double kProgressPeriod = 0.05;  // seconds

// Watches a transfer's progress, and tells it whenever it has grown.
class Progress : public std::enable_shared_from_this<Progress> {
 public:
  using Tell = std::function<void(const TransferProgress&)>;
  using Measure = std::uint64_t (*)(const LinkStatistics&);

  Progress(const std::shared_ptr<CameraCore>& core, Tell tell, std::uint64_t total, Measure measure)
      : core_(core), tell_(std::move(tell)), total_(total), measure_(measure) {}

  // What was measured before the transfer is not its own.
  void begin(CameraStack& stack) { before_ = measure_(stack.statistics()); }
  void start() { look(); }
  void stop() { isOver_ = true; }

  const std::shared_ptr<Movement>& moved() const { return moved_; }

 private:
  void tell(const CameraCore& core, const TransferProgress& now) {
    if (!tell_) return;
    core.callbacks()->dispatch([self = shared_from_this(), now] {
      if (!self->isOver_) self->tell_(now);
    });
  }

  void look() {
    const auto core = core_.lock();
    if (!core || isOver_) return;
    std::optional<std::uint64_t> done;
    core->withStack([&](CameraStack& stack) { done = std::min(measure_(stack.statistics()) - before_, total_); });
    if (done && done != told_) {
      told_ = done;
      moved_->store(core->deadlines()->now());
      tell(*core, {*done, total_});
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
  const std::shared_ptr<Movement> moved_ = std::make_shared<Movement>(0);
};

std::uint64_t picturesOf(const LinkStatistics& link) { return link.frames[static_cast<std::size_t>(FrameType::photo)]; }

// Stops a camera that sends more bytes of pictures than that, while it sends. Its link is soon taken for lost.
class PictureBound {
 public:
  // most: 0 for no bound.
  PictureBound(const std::shared_ptr<CameraCore>& core, std::uint64_t most)
      : core_(core), bound_(most != 0 ? core->readingBound() : nullptr), most_(most) {}
  ~PictureBound() { end(); }
  PictureBound(const PictureBound&) = delete;
  PictureBound& operator=(const PictureBound&) = delete;

  // passed: called once, on the main queue.
  void begin(CameraStack& stack, std::function<void()> passed) {
    const MutexLock lock(mutex_);
    if (!bound_ || isOver_) return;
    most_ += bytesOf(stack);
    bound_->set([this, passed = std::move(passed)] { return isPassed(passed); });
  }
  void end() {
    const MutexLock lock(mutex_);
    if (bound_ && !std::exchange(isOver_, true)) bound_->set(nullptr);
  }

 private:
  static std::uint64_t bytesOf(CameraStack& stack) {
    return stack.statistics().bytes[static_cast<std::size_t>(FrameType::photo)];
  }

  // On the session thread, with no lock of this object held.
  bool isPassed(const std::function<void()>& passed) {
    const auto core = core_.lock();
    if (!core || isPassed_) return isPassed_;
    core->withStack([this](CameraStack& stack) { isPassed_ = bytesOf(stack) > most_; });
    if (isPassed_) ifMemoryAllows([&] { core->callbacks()->postToMain(passed); });
    return isPassed_;
  }

  const std::weak_ptr<CameraCore> core_;
  const std::shared_ptr<ReadingBound> bound_;
  std::uint64_t most_;
  bool isPassed_ = false;  // session thread only
  Mutex mutex_;
  bool isOver_ ZEL_GUARDED_BY(mutex_) = false;
};

// What goes with a transfer until it has ended, in whatever way.
struct Course {
  std::shared_ptr<Progress> progress;
  std::shared_ptr<PictureBound> bound = nullptr;

  void end() const {
    progress->stop();
    if (bound) bound->end();
  }
};

Course courseOf(const std::shared_ptr<CameraCore>& core, const CaptureOptions& options, std::uint64_t pictures) {
  return {std::make_shared<Progress>(core, options.progress, pictures, picturesOf),
          std::make_shared<PictureBound>(core, options.mostBytes)};
}

CameraError tooMuch(const RequestKind& kind) {
  return {Reason::platform, std::string(kind.name) + ": the pictures come to more than is allowed"};
}

// A request with a course. send: as of CameraCore::request().
template <class T, class Send>
Pending<T> transfer(CameraCore& core, const RequestKind& kind, const RequestOptions& request, const Course& course,
                    const Send& send) {
  return core.request<T>(
      kind, orLimit(request, core.options().transferTimeLimit),
      [course, kind, send](CameraStack& stack, const std::function<void(Result<T>)>& done) {
        const auto end = [course, done](Result<T> result) {
          course.end();
          done(std::move(result));
        };
        course.progress->begin(stack);
        if (course.bound) course.bound->begin(stack, [end, kind] { end(tooMuch(kind)); });
        send(stack, end);
      },
      [course] { course.end(); }, course.progress->moved());
}

// The two answers of a capture: what it is stored as, and its pictures. They come in any order.
template <class T>
struct Capture {
  std::mutex mutex;
  T result;
  std::optional<CameraError> refusal;  // of the first answer
  bool isStored = false, hasPictures = false;

  // Whether that was the second one.
  bool complete(bool stored, const std::function<void(T&)>& fill) {
    const std::lock_guard lock(mutex);
    fill(result);
    (stored ? isStored : hasPictures) = true;
    return isStored && hasPictures;
  }
  Result<T> end() { return refusal ? Result<T>(*refusal) : Result<T>(std::move(result)); }
};

// The handlers of a capture's two answers. A refusal goes to the pictures' handler too, unless they have come already,
// and it goes there last: a request that is sent before that would take it for its own.
template <class T>
class CaptureHandlers {
 public:
  CaptureHandlers(std::string_view name, std::function<void(Result<T>)> done, std::shared_ptr<Progress> progress)
      : name_(name), done_(std::move(done)), progress_(std::move(progress)) {}

  void stored(const std::optional<ZELError>& error, const StoredFile& file) const {
    if (!error) progress_->start();
    const auto fill = [&](T& result) {
      if (error) capture_->refusal = errorOf(name_, *error);
      result.stored = file;
    };
    if (capture_->complete(true, fill)) done_(capture_->end());
  }
  void pictures(const std::optional<ZELError>& error, const std::function<void(T&)>& fill) const {
    if (error) return done_(errorOf(name_, *error));
    if (capture_->complete(false, fill)) done_(capture_->end());
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
  const Course course = courseOf(core, options, 1);
  return transfer<Photo>(
      *core, kPhoto, request, course,
      [options, progress = course.progress](CameraStack& stack, std::function<void(Result<Photo>)> done) {
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
  const Course course = courseOf(core, options, bracket.count);
  return transfer<PhotoSeries>(*core, kBracket, request, course,
                               [options, bracket, progress = course.progress](
                                   CameraStack& stack, std::function<void(Result<PhotoSeries>)> done) {
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
      *core, kUpload, request, {progress},
      [type, path, content, progress](CameraStack& stack, const std::function<void(Result<void>)>& done) {
        const auto ended = [done](const std::optional<ZELError>& error) {
          done(error ? Result<void>(errorOf(kUpload.name, *error)) : Result<void>());
        };
        stack.ucd().sendFileWithType(type, path, content, ended);
        progress->start();
      });
}

}  // namespace zel
