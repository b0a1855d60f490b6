#include <ZELTarkaSDK/platform/call_gate.h>
#include <ZELTarkaSDK/zel.h>

#include <atomic>

#include "bindings/c/ask.h"
#include "bindings/c/call_object.h"

// Photos and files.

namespace zel::c {
namespace {

// A photo, or a series, that a program holds.
struct PhotoObject {
  using Handle = zel_photo;
  static constexpr Kind kKind = Kind::photo;

  StoredFile stored;
  std::vector<std::optional<std::string>> names;
  std::vector<ZELData> jpegs;
};

std::shared_ptr<PhotoObject> objectFor(Photo photo) {
  return std::make_shared<PhotoObject>(PhotoObject{std::move(photo.stored), {photo.name}, {photo.jpeg}});
}

std::shared_ptr<PhotoObject> objectFor(PhotoSeries series) {
  const auto object = std::make_shared<PhotoObject>();
  object->stored = std::move(series.stored);
  object->names.assign(series.names.begin(), series.names.end());
  object->names.resize(series.jpegs.size());
  object->jpegs = std::move(series.jpegs);
  return object;
}

// A program's callback as long as its call lasts.
class Progress {
 public:
  Progress(const CameraObject& camera, zel_progress_callback callback, void* user)
      : dispatcher_(callback == nullptr ? nullptr : camera.dispatcher()) {
    if (callback == nullptr) return;
    function_ = [gate = gate_, callback, user, marks = camera.callsOnCameraThread()](const TransferProgress& now) {
      gate->enter([callback, user, marks, now] {
        const CameraThreadScope scope(marks);
        callback(user, now.done, now.total);
      });
    };
  }
  ~Progress() { gate_->close(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  const std::function<void(const TransferProgress&)>& function() const { return function_; }

  // Waits for the transfer. Where callbacks are dispatched, this thread runs them meanwhile: it may be the one that
  // would.
  template <class T>
  Result<T> wait(Pending<T> transfer) const {
    if (!dispatcher_) return transfer.get();
    struct End {
      std::atomic<bool> isThere = false;
      std::optional<Result<T>> result;
    };
    const auto end = std::make_shared<End>();
    transfer.then([end, dispatcher = dispatcher_](Result<T> result) {
      end->result.emplace(std::move(result));
      end->isThere = true;
      dispatcher->notify();
    });
    if (dispatcher_->runUntil([&] { return end->isThere.load(); })) return std::move(*end->result);
    return CameraError{CameraError::Reason::closed, "the camera was closed"};
  }

 private:
  const std::shared_ptr<Dispatcher> dispatcher_;
  const std::shared_ptr<CallGate> gate_ = std::make_shared<CallGate>();
  std::function<void(const TransferProgress&)> function_;
};

CaptureOptions captureOf(const zel_capture_options& given) {
  CaptureOptions options;
  if (given.position != nullptr) options.position = recordIn(given.position, "options->position");
  if (given.motion != nullptr) options.motion = recordIn(given.motion, "options->motion");
  if (given.orientation != nullptr) options.orientation = recordIn(given.orientation, "options->orientation");
  options.extraInfo = someBytesIn(given.extra_info, given.extra_info_length, "options->extra_info");
  return options;
}

// begin: makes the transfer of a Camera, with CaptureOptions and RequestOptions.
template <class Begin>
zel_status capture(zel_camera* camera, const zel_capture_options* options, int time_limit, zel_photo** photo,
                   zel_error* error, const Begin& begin) {
  return guarded(error, [&] {
    checkGiven(photo, "photo");
    const zel_capture_options given = takenOrZero(options, "options");
    CaptureOptions how = captureOf(given);
    const RequestOptions request = withTimeLimit(time_limit);
    checkMayWait();
    auto object = objectOf<CameraObject>(camera);
    const Progress progress(*object, given.progress, given.progress_user);
    how.progress = progress.function();
    auto pending = object->with([&](Camera& asked) { return begin(asked, how, request); });
    object = nullptr;
    *photo = newHandle(objectFor(valueOf(progress.wait(std::move(pending)))));
  });
}

// A program's progress callback until its call is freed.
std::function<void(const TransferProgress&)> progressOf(const std::shared_ptr<CallObject>& call,
                                                        zel_progress_callback callback, void* user) {
  if (callback == nullptr) return {};
  return [weak = std::weak_ptr(call), callback, user](const TransferProgress& now) {
    if (const auto self = weak.lock()) self->callBack([callback, user, now] { callback(user, now.done, now.total); });
  };
}

// As capture(), and does not wait.
template <class Begin>
zel_status beginCapture(zel_camera* camera, const zel_capture_options* options, int time_limit, zel_photo** photo,
                        const Done& done, zel_error* error, const Begin& begin) {
  return guarded(error, [&] {
    checkGiven(photo, "photo");
    done.check();
    const zel_capture_options given = takenOrZero(options, "options");
    CaptureOptions how = captureOf(given);
    const RequestOptions request = withTimeLimit(time_limit);
    const auto object = objectOf<CameraObject>(camera);
    const auto call = std::make_shared<CallObject>(done, object->callsOnCameraThread());
    how.progress = progressOf(call, given.progress, given.progress_user);
    startCall(call, done.call, object->with([&](Camera& asked) { return begin(asked, how, request); }),
              [photo](auto taken) { *photo = newHandle(objectFor(std::move(taken))); });
  });
}

// More than a camera takes is one too many.
std::vector<std::int8_t> stepsOf(const int8_t* steps, std::size_t count) {
  if (steps == nullptr) refuse("steps is NULL");
  return {steps, steps + std::min(count, std::size_t{10})};
}

const char* textOrNull(const std::optional<std::string>& text) { return text ? text->c_str() : nullptr; }

}  // namespace
}  // namespace zel::c

using namespace zel::c;

zel_status zel_take_photo(zel_camera* camera, const zel_capture_options* options, int time_limit, zel_photo** photo,
                          zel_error* error) {
  return capture(camera, options, time_limit, photo, error,
                 [](zel::Camera& asked, const zel::CaptureOptions& how, const zel::RequestOptions& request) {
                   return asked.photo(how, request);
                 });
}

zel_status zel_take_bracket(zel_camera* camera, const int8_t* steps, size_t count, const zel_capture_options* options,
                            int time_limit, zel_photo** photo, zel_error* error) {
  return capture(camera, options, time_limit, photo, error,
                 [&](zel::Camera& asked, const zel::CaptureOptions& how, const zel::RequestOptions& request) {
                   return asked.bracket(stepsOf(steps, count), how, request);
                 });
}

zel_status zel_begin_take_photo(zel_camera* camera, const zel_capture_options* options, int time_limit,
                                zel_photo** photo, zel_done_callback callback, void* user, zel_call** call,
                                zel_error* error) {
  return beginCapture(camera, options, time_limit, photo, {callback, user, call}, error,
                      [](zel::Camera& asked, const zel::CaptureOptions& how, const zel::RequestOptions& request) {
                        return asked.photo(how, request);
                      });
}

zel_status zel_begin_take_bracket(zel_camera* camera, const int8_t* steps, size_t count,
                                  const zel_capture_options* options, int time_limit, zel_photo** photo,
                                  zel_done_callback callback, void* user, zel_call** call, zel_error* error) {
  return beginCapture(camera, options, time_limit, photo, {callback, user, call}, error,
                      [&](zel::Camera& asked, const zel::CaptureOptions& how, const zel::RequestOptions& request) {
                        return asked.bracket(stepsOf(steps, count), how, request);
                      });
}

zel_status zel_photo_get(zel_photo* photo, zel_photo_data* data, zel_error* error) {
  return guarded(error, [&] {
    checkSized(data, "data");
    const auto object = objectOf<PhotoObject>(photo);
    give(data, zel_photo_data{0, object->stored.time, object->stored.sizeBytes, textOrNull(object->stored.name),
                              object->jpegs.size()});
  });
}

zel_status zel_photo_get_jpeg(zel_photo* photo, size_t index, zel_jpeg_data* jpeg, zel_error* error) {
  return guarded(error, [&] {
    checkSized(jpeg, "jpeg");
    const auto object = objectOf<PhotoObject>(photo);
    if (index >= object->jpegs.size()) refuse("the photo has no picture " + std::to_string(index));
    const auto bytes = object->jpegs[index].bytes();
    give(jpeg, zel_jpeg_data{0, textOrNull(object->names[index]), bytes.data(), bytes.size()});
  });
}

zel_status zel_photo_free(zel_photo* photo) {
  return guarded(nullptr, [&] {
    if (photo != nullptr) takeObject<PhotoObject>(photo);
  });
}

zel_status zel_upload(zel_camera* camera, int64_t type, const char* path, const uint8_t* content, size_t length,
                      zel_progress_callback progress, void* user, int time_limit, zel_error* error) {
  return guarded(error, [&] {
    const std::string name = textIn(path, "path");
    const ZELData bytes = bytesIn(content, length, "content");
    const zel::RequestOptions request = withTimeLimit(time_limit);
    checkMayWait();
    auto object = objectOf<CameraObject>(camera);
    const Progress told(*object, progress, user);
    auto pending =
        object->with([&](zel::Camera& asked) { return asked.upload(type, name, bytes, told.function(), request); });
    object = nullptr;
    valueOf(told.wait(std::move(pending)));
  });
}

zel_status zel_begin_upload(zel_camera* camera, int64_t type, const char* path, const uint8_t* content, size_t length,
                            zel_progress_callback progress, void* progress_user, int time_limit,
                            zel_done_callback callback, void* user, zel_call** call, zel_error* error) {
  return guarded(error, [&] {
    const Done done{callback, user, call};
    done.check();
    const std::string name = textIn(path, "path");
    const ZELData bytes = bytesIn(content, length, "content");
    const zel::RequestOptions request = withTimeLimit(time_limit);
    const auto object = objectOf<CameraObject>(camera);
    const auto begun = std::make_shared<CallObject>(done, object->callsOnCameraThread());
    const auto told = progressOf(begun, progress, progress_user);
    startCall(begun, call,
              object->with([&](zel::Camera& asked) { return asked.upload(type, name, bytes, told, request); }),
              Nothing());
  });
}
