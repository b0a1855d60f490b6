#include "bindings/python/native/arguments.h"
#include "bindings/python/native/methods.h"

// Photos, files and pictures.

namespace zel::python {
namespace {

// What is stored with a photo, and what it points to.
struct Capture {
  zel_gps_data position;
  zel_gyro_data motion;
  zel_orientation_data orientation;
  zel_capture_options options{};

  // position, motion, orientation, extra info: each may be None.
  explicit Capture(Arguments& given) {
    bool hasPosition = false, hasMotion = false, hasOrientation = false;
    position = given.recordOrNone<zel_gps_data>("position", &hasPosition);
    motion = given.recordOrNone<zel_gyro_data>("motion", &hasMotion);
    orientation = given.recordOrNone<zel_orientation_data>("orientation", &hasOrientation);
    const auto extra = given.bytesOrNone("extra_info");
    options.size = sizeof options;
    if (hasPosition) options.position = &position;
    if (hasMotion) options.motion = &motion;
    if (hasOrientation) options.orientation = &orientation;
    options.extra_info = extra.data;
    options.extra_info_length = extra.length;
  }
  Capture(const Capture&) = delete;
  Capture& operator=(const Capture&) = delete;

  const zel_capture_options* toldTo(Operation& operation, bool wantsProgress) {
    options.progress = wantsProgress ? &Operation::onProgress : nullptr;
    options.progress_user = &operation;
    return &options;
  }
};

// take_photo(camera, wakeup, limit, position, motion, orientation, extra info, wants progress)
PyObject* takePhoto(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 8);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int limit = given.number<int>("time_limit");
  Capture capture(given);
  const bool wantsProgress = given.number<int>("progress") != 0;
  return given.begin<zel_photo*>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_take_photo(cameraOf(*camera), capture.toldTo(operation, wantsProgress), limit, out,
                                &Operation::onDone, &operation, operation.call(), error);
  });
}

// take_bracket(camera, wakeup, limit, steps, position, motion, orientation, extra info, wants progress)
PyObject* takeBracket(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 9);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int limit = given.number<int>("time_limit");
  std::vector<std::int8_t> steps = given.steps("steps");
  const std::size_t number = steps.size();
  steps.push_back(0);  // so that none is not NULL
  Capture capture(given);
  const bool wantsProgress = given.number<int>("progress") != 0;
  return given.begin<zel_photo*>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_take_bracket(cameraOf(*camera), steps.data(), number, capture.toldTo(operation, wantsProgress),
                                  limit, out, &Operation::onDone, &operation, operation.call(), error);
  });
}

// upload(camera, wakeup, limit, type, path, content, wants progress)
PyObject* upload(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 7);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int limit = given.number<int>("time_limit");
  const auto type = given.number<std::int64_t>("type");
  const char* const path = given.text("path");
  const auto content = given.bytes("content");
  const bool wantsProgress = given.number<int>("progress") != 0;
  return given.begin<Nothing>(std::move(wakeup), [&](Operation& operation, Nothing*, zel_error* error) {
    return zel_begin_upload(cameraOf(*camera), type, path, content.data, content.length,
                            wantsProgress ? &Operation::onProgress : nullptr, &operation, limit, &Operation::onDone,
                            &operation, operation.call(), error);
  });
}

// pictures(camera, width, height, fps, capacity, drop newest)
PyObject* pictures(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 6);
  const auto camera = given.handle(Kind::camera, "camera");
  const zel_format format = formatFrom(given);
  const zel_queue_options queue = queueFrom(given);
  if (given.isWrong()) return nullptr;
  return newSubscription([&](zel_subscription** out, zel_error* error) {
    return zel_pictures(cameraOf(*camera), &format, &queue, nullptr, nullptr, out, error);
  });
}

// format_code(width, height, fps)
PyObject* formatCode(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const zel_format format = formatFrom(given);
  std::uint8_t code = 0;
  if (given.isWrong() || !called([&](zel_error* error) { return zel_format_code(&format, &code, error); }))
    return nullptr;
  return toPython(code);
}

// stitcher(camera, offset, width, height, remove purple, logo, its width, its height, its angle)
PyObject* stitcher(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 9);
  const auto camera = given.handle(Kind::camera, "camera");
  zel_stitch_options options{};
  options.size = sizeof options;
  options.offset = given.text("offset");
  options.width = given.number<std::int32_t>("width");
  options.height = given.number<std::int32_t>("height");
  options.remove_purple = given.number<int>("remove_purple");
  const LogoPixels logo(given);
  logo.putInto(options);
  zel_stitcher* made = nullptr;
  if (given.isWrong() || !logo.isWhole() ||
      !called([&](zel_error* error) { return zel_stitcher_new(cameraOf(*camera), &options, &made, error); }))
    return nullptr;
  return newHandle(Kind::stitcher, made);
}

// stitch(stitcher, wakeup, picture): on a thread of its own.
PyObject* stitch(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  auto stitcher = given.handle(Kind::stitcher, "stitcher");
  auto wakeup = given.wakeup();
  zel_picture* const picture = given.picture();
  if (given.isWrong()) return nullptr;
  const auto operation = std::make_shared<OperationWith<zel_picture*>>(std::move(wakeup));
  auto* const out = &operation->out;
  const auto work = [stitcher, picture, out](zel_error* error) {
    return zel_stitch(stitcherOf(*stitcher), picture, out, error);
  };
  if (runAside(operation, work)) return newCall(operation);
  raise(ZEL_PLATFORM, "the system has no thread left");
  return nullptr;
}

PyMethodDef mediaTable[] = {
    method<takePhoto>("take_photo"), method<takeBracket>("take_bracket"), method<upload>("upload"),
    method<pictures>("pictures"),    method<formatCode>("format_code"),   method<stitcher>("stitcher"),
    method<stitch>("stitch"),        {nullptr, nullptr, 0, nullptr},
};

}  // namespace

zel_format formatFrom(Arguments& given) {
  zel_format format{};
  format.size = sizeof format;
  format.width = given.number<std::int32_t>("width");
  format.height = given.number<std::int32_t>("height");
  format.fps = given.number<std::int32_t>("fps");
  return format;
}

LogoPixels::LogoPixels(Arguments& given)
    : pixels(given.bytesOrNone("logo")),
      width(given.number<std::int32_t>("logo width")),
      height(given.number<std::int32_t>("logo height")),
      angle(given.number<double>("logo_angle")) {}

bool LogoPixels::isWhole() const {
  const bool isWhole = pixels.data == nullptr ||
                       (width > 0 && height > 0 && pixels.length == 4 * std::size_t(width) * std::size_t(height));
  if (!isWhole)
    PyErr_Format(PyExc_ValueError, "the logo has %zu bytes, and needs 4 for each of %d x %d pixels", pixels.length,
                 width, height);
  return isWhole;
}

PyMethodDef* mediaMethods() { return mediaTable; }

}  // namespace zel::python
