#include <ZELTarkaSDK/ZELAccessoryInfo.h>
#include <ZELTarkaSDK/zel.h>

#include <algorithm>

#include "bindings/c/ask.h"
#include "bindings/c/call_object.h"
#include "bindings/c/callbacks.h"
#include "bindings/c/camera_object.h"
#include "bindings/c/sized.h"
#include "bindings/c/text.h"

// The calls on the camera itself.

namespace zel::c {

void CameraObject::close() {
  std::optional<Camera> camera;  // destroyed without the lock: a callback that it waits for may want it
  {
    const std::unique_lock lock(mutex_);
    camera = std::exchange(camera_, std::nullopt);
  }
  camera.reset();
  if (dispatcher_) dispatcher_->close();
}

namespace {

void setLimit(int given, std::chrono::milliseconds& limit) {
  if (given != 0) limit = withTimeLimit(given).timeLimit;
}

CameraObject::Log logOf(const zel_options& options, const std::shared_ptr<Dispatcher>& dispatcher) {
  if (options.log == nullptr) return {};
  const auto tell = [log = options.log, user = options.log_user](const std::string& text) { log(user, text.c_str()); };
  if (!dispatcher) return tell;
  return [dispatcher, tell](const std::string& text) { dispatcher->post([tell, text] { tell(text); }); };
}

CameraOptions optionsOf(const zel_options& given, const std::shared_ptr<Dispatcher>& dispatcher,
                        const CameraObject::Log& log) {
  CameraOptions options;
  options.serialNumber = someTextIn(given.serial_number);
  setLimit(given.open_time_limit, options.openTimeLimit);
  setLimit(given.time_limit, options.timeLimit);
  setLimit(given.transfer_time_limit, options.transferTimeLimit);
  if (dispatcher) options.executor = [dispatcher](std::function<void()> call) { dispatcher->post(std::move(call)); };
  options.accessoriesFolder = someTextIn(given.accessories_folder);
  options.program = someTextIn(given.program);
  options.direct = given.direct != 0;
  if (given.decoder_threads < 0) refuse("there are no threads below 0");
  if (given.decoder_threads > 0) options.decoderThreads = given.decoder_threads;
  options.warn = log;
  return options;
}

// What waits in it may hold the camera that could not be opened.
struct EndOfDispatcher {
  std::shared_ptr<Dispatcher> dispatcher;
  ~EndOfDispatcher() {
    if (dispatcher) dispatcher->close();
  }
};

zel_camera* opened(const zel_options& given) {
  EndOfDispatcher end{given.dispatch != 0 ? std::make_shared<Dispatcher>() : nullptr};
  const CameraObject::Log log = logOf(given, end.dispatcher);
  Camera camera = valueOf(Camera::open(optionsOf(given, end.dispatcher, log)).get());
  zel_camera* const handle = newHandle(std::make_shared<CameraObject>(std::move(camera), end.dispatcher, log));
  end.dispatcher = nullptr;
  return handle;
}

// A number, since C does not keep programs from giving an enumeration any.
const std::string& fieldOf(const ZELAccessoryInfo& info, int which) {
  switch (which) {
    case ZEL_SERIAL_NUMBER:
      return info.serialNumber();
    case ZEL_NAME:
      return info.name();
    case ZEL_MANUFACTURER:
      return info.manufacturer();
    case ZEL_MODEL_NUMBER:
      return info.modelNumber();
    case ZEL_FIRMWARE_REVISION:
      return info.firmwareRevision();
    case ZEL_HARDWARE_REVISION:
      return info.hardwareRevision();
    default:
      refuse("there is no such identity");
  }
}

zel_link_statistics statisticsOf(const LinkStatistics& from) {
  static_assert(kFrameTypeCount == ZEL_FRAME_TYPES && static_cast<int>(FrameType::file) == ZEL_FRAME_FILE);
  zel_link_statistics to{};
  std::ranges::copy(from.frames, to.frames);
  std::ranges::copy(from.bytes, to.bytes);
  to.bytes_received = from.bytesReceived;
  to.bytes_discarded = from.bytesDiscarded;
  to.bytes_written = from.bytesWritten;
  to.bytes_to_write = from.bytesToWrite;
  to.markers_found = from.markersFound;
  to.positions_lost = from.positionsLost;
  to.stream_errors = from.streamErrors;
  to.lost_for_memory = from.lostForMemory;
  to.round_trip = from.roundTrip;
  to.resends_left = from.resendsLeft;
  to.dropped_unknown_type = from.dropped.unknownType;
  to.dropped_no_consumer = from.dropped.noConsumer;
  to.dropped_unregistered_code = from.dropped.unregisteredCode;
  to.dropped_short_message = from.dropped.shortMessage;
  to.dropped_unregistered_data = from.dropped.unregisteredData;
  to.dropped_short_timestamp = from.dropped.shortTimestamp;
  to.dropped_timestamp_old_firmware = from.dropped.timestampOldFirmware;
  to.dropped_no_memory = from.dropped.noMemory;
  return to;
}

std::shared_ptr<Dispatcher> dispatcherOf(zel_camera* camera) {
  auto dispatcher = objectOf<CameraObject>(camera)->dispatcher();
  if (!dispatcher) refuse("the camera was opened without zel_options.dispatch");
  return dispatcher;
}

}  // namespace
}  // namespace zel::c

using namespace zel::c;

zel_status zel_open(const zel_options* options, zel_camera** camera, zel_error* error) {
  return guarded(error, [&] {
    checkGiven(camera, "camera");
    const zel_options given = takenOrZero(options, "options");
    checkMayWait();
    *camera = opened(given);
  });
}

zel_status zel_begin_open(const zel_options* options, zel_camera** camera, zel_done_callback callback, void* user,
                          zel_call** call, zel_error* error) {
  return guarded(error, [&] {
    checkGiven(camera, "camera");
    const Done done{callback, user, call};
    done.check();
    const zel_options given = takenOrZero(options, "options");
    if (given.dispatch != 0) refuse("a camera with zel_options.dispatch is opened with zel_open(), which waits");
    const CameraObject::Log log = logOf(given, nullptr);
    startCall(zel::Camera::open(optionsOf(given, nullptr, log)), true, done, [camera, log](zel::Camera opened) {
      *camera = newHandle(std::make_shared<CameraObject>(std::move(opened), nullptr, log));
    });
  });
}

zel_status zel_close(zel_camera* camera) {
  return guarded(nullptr, [&] {
    if (camera != nullptr) takeObject<CameraObject>(camera)->close();
  });
}

zel_status zel_descriptor(zel_camera* camera, int* descriptor, zel_error* error) {
  return guarded(error, [&] {
    checkGiven(descriptor, "descriptor");
    *descriptor = dispatcherOf(camera)->descriptor();
  });
}

zel_status zel_dispatch(zel_camera* camera, zel_error* error) {
  return guarded(error, [&] { dispatcherOf(camera)->run(); });
}

zel_status zel_get_identity(zel_camera* camera, int which, char** text, zel_error* error) {
  return guarded(error, [&] {
    checkGiven(text, "text");
    const auto info = objectOf<CameraObject>(camera)->with([](zel::Camera& asked) { return asked.info(); });
    if (!info) fail({zel::CameraError::Reason::lost, "the camera is not connected"});
    *text = textOut(fieldOf(*info, which));
  });
}

zel_status zel_get_link_statistics(zel_camera* camera, zel_link_statistics* statistics, zel_error* error) {
  return guarded(error, [&] {
    checkSized(statistics, "statistics");
    give(statistics,
         statisticsOf(objectOf<CameraObject>(camera)->with([](zel::Camera& asked) { return asked.statistics(); })));
  });
}

zel_status zel_get_link_state(zel_camera* camera, zel_link_state* state, zel_error* error) {
  return guarded(error, [&] {
    checkGiven(state, "state");
    const auto status = objectOf<CameraObject>(camera)->with([](zel::Camera& asked) { return asked.linkStatus(); });
    *state = static_cast<zel_link_state>(status);
  });
}
