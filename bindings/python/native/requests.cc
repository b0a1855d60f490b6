// Made from bindings/requests.toml and the headers for C by tools/bindings/generate.py.

#include "bindings/python/native/methods.h"

#include "bindings/python/native/arguments.h"

// Each takes the camera, a wakeup or None, a time limit in milliseconds and the request's own arguments.

namespace zel::python {
namespace {

PyObject* battery(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<zel_battery_result>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_battery(cameraOf(*camera), timeLimit, out, &Operation::onDone, &operation, operation.call(),
                             error);
  });
}

PyObject* card(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<zel_card_result>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_card(cameraOf(*camera), timeLimit, out, &Operation::onDone, &operation, operation.call(), error);
  });
}

PyObject* video_seconds_remaining(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<std::uint32_t>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_video_seconds_remaining(cameraOf(*camera), timeLimit, out, &Operation::onDone, &operation,
                                             operation.call(), error);
  });
}

PyObject* photos_remaining(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<std::uint32_t>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_photos_remaining(cameraOf(*camera), timeLimit, out, &Operation::onDone, &operation,
                                      operation.call(), error);
  });
}

PyObject* serial_number(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<Text>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_serial_number(cameraOf(*camera), timeLimit, &out->text, &Operation::onDone, &operation,
                                   operation.call(), error);
  });
}

PyObject* set_serial_number(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const char* const serial_number = given.text("serial_number");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_serial_number(cameraOf(*camera), serial_number, timeLimit, &Operation::onDone, &operation,
                                           operation.call(), error);
      });
}

PyObject* uuid(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<Text>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_uuid(cameraOf(*camera), timeLimit, &out->text, &Operation::onDone, &operation, operation.call(),
                          error);
  });
}

PyObject* lens_index(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<std::uint32_t>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_lens_index(cameraOf(*camera), timeLimit, out, &Operation::onDone, &operation, operation.call(),
                                error);
  });
}

PyObject* exposure_index(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<std::uint16_t>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_exposure_index(cameraOf(*camera), timeLimit, out, &Operation::onDone, &operation, operation.call(),
                                    error);
  });
}

PyObject* activation_time(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<zel_activation_time_result>(
      std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
        return zel_begin_activation_time(cameraOf(*camera), timeLimit, out, &Operation::onDone, &operation,
                                         operation.call(), error);
      });
}

PyObject* set_activation_time(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 5);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto seconds = given.number<std::int32_t>("seconds");
  const auto time_zone_minutes_west = given.number<std::int32_t>("time_zone_minutes_west");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_activation_time(cameraOf(*camera), seconds, time_zone_minutes_west, timeLimit,
                                             &Operation::onDone, &operation, operation.call(), error);
      });
}

PyObject* set_local_time(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 5);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto seconds = given.number<std::int32_t>("seconds");
  const auto time_zone_minutes_west = given.number<std::int32_t>("time_zone_minutes_west");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_local_time(cameraOf(*camera), seconds, time_zone_minutes_west, timeLimit,
                                        &Operation::onDone, &operation, operation.call(), error);
      });
}

PyObject* control_system(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 5);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto command = given.number<std::uint8_t>("command");
  const auto delay_time = given.number<std::uint8_t>("delay_time");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_control_system(cameraOf(*camera), command, delay_time, timeLimit, &Operation::onDone,
                                        &operation, operation.call(), error);
      });
}

PyObject* cancel_system_control(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto command = given.number<std::uint8_t>("command");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_cancel_system_control(cameraOf(*camera), command, timeLimit, &Operation::onDone, &operation,
                                               operation.call(), error);
      });
}

PyObject* cancel_deletion(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<Nothing>(std::move(wakeup),
                              [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
                                return zel_begin_cancel_deletion(cameraOf(*camera), timeLimit, &Operation::onDone,
                                                                 &operation, operation.call(), error);
                              });
}

PyObject* start_recording(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 6);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto position = given.record<zel_gps_data>("position");
  const auto motion = given.record<zel_gyro_data>("motion");
  const auto orientation = given.record<zel_orientation_data>("orientation");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_start_recording(cameraOf(*camera), &position, &motion, &orientation, timeLimit,
                                         &Operation::onDone, &operation, operation.call(), error);
      });
}

PyObject* start_recording_with_extra_info(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 7);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto position = given.record<zel_gps_data>("position");
  const auto motion = given.record<zel_gyro_data>("motion");
  const auto orientation = given.record<zel_orientation_data>("orientation");
  const auto extra_info = given.bytesOrNone("extra_info");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_start_recording_with_extra_info(cameraOf(*camera), &position, &motion, &orientation,
                                                         extra_info.data, extra_info.length, timeLimit,
                                                         &Operation::onDone, &operation, operation.call(), error);
      });
}

PyObject* start_timed_recording(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 7);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto position = given.record<zel_gps_data>("position");
  const auto motion = given.record<zel_gyro_data>("motion");
  const auto orientation = given.record<zel_orientation_data>("orientation");
  const auto extra_info = given.bytesOrNone("extra_info");
  return given.begin<std::int64_t>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_start_timed_recording(cameraOf(*camera), &position, &motion, &orientation, extra_info.data,
                                           extra_info.length, timeLimit, out, &Operation::onDone, &operation,
                                           operation.call(), error);
  });
}

PyObject* stop_recording(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<zel_stored_file_result>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_stop_recording(cameraOf(*camera), timeLimit, out, &Operation::onDone, &operation, operation.call(),
                                    error);
  });
}

PyObject* cancel_recording(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<Nothing>(std::move(wakeup),
                              [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
                                return zel_begin_cancel_recording(cameraOf(*camera), timeLimit, &Operation::onDone,
                                                                  &operation, operation.call(), error);
                              });
}

PyObject* set_video_resolution(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto resolution = given.number<std::uint8_t>("resolution");
  return given.begin<std::uint8_t>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_set_video_resolution(cameraOf(*camera), resolution, timeLimit, out, &Operation::onDone, &operation,
                                          operation.call(), error);
  });
}

PyObject* set_video_bitrate(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 5);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto type = given.number<std::uint8_t>("type");
  const auto bitrate = given.number<std::uint8_t>("bitrate");
  return given.begin<std::uint8_t>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_set_video_bitrate(cameraOf(*camera), type, bitrate, timeLimit, out, &Operation::onDone, &operation,
                                       operation.call(), error);
  });
}

PyObject* set_recording_limit(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto limit = given.number<std::int32_t>("limit");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_recording_limit(cameraOf(*camera), limit, timeLimit, &Operation::onDone, &operation,
                                             operation.call(), error);
      });
}

PyObject* recording_limit(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<std::int32_t>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_recording_limit(cameraOf(*camera), timeLimit, out, &Operation::onDone, &operation,
                                     operation.call(), error);
  });
}

PyObject* set_photo_size(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto size = given.number<std::uint8_t>("size");
  return given.begin<std::uint8_t>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_set_photo_size(cameraOf(*camera), size, timeLimit, out, &Operation::onDone, &operation,
                                    operation.call(), error);
  });
}

PyObject* set_self_timer(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto seconds = given.number<std::uint8_t>("seconds");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_self_timer(cameraOf(*camera), seconds, timeLimit, &Operation::onDone, &operation,
                                        operation.call(), error);
      });
}

PyObject* self_timer(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<std::int32_t>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_self_timer(cameraOf(*camera), timeLimit, out, &Operation::onDone, &operation, operation.call(),
                                error);
  });
}

PyObject* set_key_function(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto function = given.number<std::uint8_t>("function");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_key_function(cameraOf(*camera), function, timeLimit, &Operation::onDone, &operation,
                                          operation.call(), error);
      });
}

PyObject* set_triple_press_mode(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto mode = given.number<std::uint8_t>("mode");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_triple_press_mode(cameraOf(*camera), mode, timeLimit, &Operation::onDone, &operation,
                                               operation.call(), error);
      });
}

PyObject* triple_press_mode(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<std::uint8_t>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_triple_press_mode(cameraOf(*camera), timeLimit, out, &Operation::onDone, &operation,
                                       operation.call(), error);
  });
}

PyObject* set_mute(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto mute = given.number<std::uint8_t>("mute");
  return given.begin<Nothing>(std::move(wakeup),
                              [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
                                return zel_begin_set_mute(cameraOf(*camera), mute, timeLimit, &Operation::onDone,
                                                          &operation, operation.call(), error);
                              });
}

PyObject* set_ip_switch_mode(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto mode = given.number<std::uint8_t>("mode");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_ip_switch_mode(cameraOf(*camera), mode, timeLimit, &Operation::onDone, &operation,
                                            operation.call(), error);
      });
}

PyObject* set_exposure_bias(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto bias = given.number<std::int16_t>("bias");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_exposure_bias(cameraOf(*camera), bias, timeLimit, &Operation::onDone, &operation,
                                           operation.call(), error);
      });
}

PyObject* set_metering_mode(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto mode = given.number<std::uint8_t>("mode");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_metering_mode(cameraOf(*camera), mode, timeLimit, &Operation::onDone, &operation,
                                           operation.call(), error);
      });
}

PyObject* set_metering_weights(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto weights = given.record<zel_metering_weights>("weights");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_metering_weights(cameraOf(*camera), &weights, timeLimit, &Operation::onDone, &operation,
                                              operation.call(), error);
      });
}

PyObject* set_still_program_mode(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 5);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto mode = given.number<std::uint8_t>("mode");
  const auto value = given.number<std::uint8_t>("value");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_still_program_mode(cameraOf(*camera), mode, value, timeLimit, &Operation::onDone,
                                                &operation, operation.call(), error);
      });
}

PyObject* set_manual_exposure(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 5);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto mode = given.number<std::uint8_t>("mode");
  const auto exposure = given.record<zel_manual_exposure>("exposure");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_manual_exposure(cameraOf(*camera), mode, &exposure, timeLimit, &Operation::onDone,
                                             &operation, operation.call(), error);
      });
}

PyObject* set_white_balance(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto mode = given.number<std::uint8_t>("mode");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_white_balance(cameraOf(*camera), mode, timeLimit, &Operation::onDone, &operation,
                                           operation.call(), error);
      });
}

PyObject* set_brightness(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto brightness = given.number<std::int16_t>("brightness");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_brightness(cameraOf(*camera), brightness, timeLimit, &Operation::onDone, &operation,
                                        operation.call(), error);
      });
}

PyObject* set_contrast(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto contrast = given.number<std::uint16_t>("contrast");
  return given.begin<Nothing>(std::move(wakeup),
                              [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
                                return zel_begin_set_contrast(cameraOf(*camera), contrast, timeLimit,
                                                              &Operation::onDone, &operation, operation.call(), error);
                              });
}

PyObject* set_saturation(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto saturation = given.number<std::uint16_t>("saturation");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_saturation(cameraOf(*camera), saturation, timeLimit, &Operation::onDone, &operation,
                                        operation.call(), error);
      });
}

PyObject* set_hue(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto hue = given.number<std::uint8_t>("hue");
  return given.begin<Nothing>(std::move(wakeup),
                              [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
                                return zel_begin_set_hue(cameraOf(*camera), hue, timeLimit, &Operation::onDone,
                                                         &operation, operation.call(), error);
                              });
}

PyObject* set_sharpness(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto sharpness = given.number<std::uint8_t>("sharpness");
  return given.begin<Nothing>(std::move(wakeup),
                              [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
                                return zel_begin_set_sharpness(cameraOf(*camera), sharpness, timeLimit,
                                                               &Operation::onDone, &operation, operation.call(), error);
                              });
}

PyObject* set_digital_effect(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto effect = given.number<std::uint8_t>("effect");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_digital_effect(cameraOf(*camera), effect, timeLimit, &Operation::onDone, &operation,
                                            operation.call(), error);
      });
}

PyObject* set_flicker(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto flicker = given.number<std::uint8_t>("flicker");
  return given.begin<Nothing>(std::move(wakeup),
                              [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
                                return zel_begin_set_flicker(cameraOf(*camera), flicker, timeLimit, &Operation::onDone,
                                                             &operation, operation.call(), error);
                              });
}

PyObject* flicker(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<std::uint8_t>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_flicker(cameraOf(*camera), timeLimit, out, &Operation::onDone, &operation, operation.call(),
                             error);
  });
}

PyObject* set_gps_timeout(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto timeout = given.number<std::uint16_t>("timeout");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_gps_timeout(cameraOf(*camera), timeout, timeLimit, &Operation::onDone, &operation,
                                         operation.call(), error);
      });
}

PyObject* gps_timeout(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<std::int32_t>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_gps_timeout(cameraOf(*camera), timeLimit, out, &Operation::onDone, &operation, operation.call(),
                                 error);
  });
}

PyObject* set_timelapse(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto timelapse = given.record<zel_timelapse_info>("timelapse");
  return given.begin<Nothing>(std::move(wakeup),
                              [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
                                return zel_begin_set_timelapse(cameraOf(*camera), &timelapse, timeLimit,
                                                               &Operation::onDone, &operation, operation.call(), error);
                              });
}

PyObject* timelapse(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<zel_timelapse_info>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_timelapse(cameraOf(*camera), timeLimit, out, &Operation::onDone, &operation, operation.call(),
                               error);
  });
}

PyObject* set_timelapse_exposure_bias(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto bias = given.number<std::int16_t>("bias");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_timelapse_exposure_bias(cameraOf(*camera), bias, timeLimit, &Operation::onDone, &operation,
                                                     operation.call(), error);
      });
}

PyObject* timelapse_exposure_bias(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<std::int16_t>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_timelapse_exposure_bias(cameraOf(*camera), timeLimit, out, &Operation::onDone, &operation,
                                             operation.call(), error);
  });
}

PyObject* set_audio_bitrate(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto bits_per_second = given.number<std::uint32_t>("bits_per_second");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_audio_bitrate(cameraOf(*camera), bits_per_second, timeLimit, &Operation::onDone,
                                           &operation, operation.call(), error);
      });
}

PyObject* audio_bitrate(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<std::uint32_t>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_audio_bitrate(cameraOf(*camera), timeLimit, out, &Operation::onDone, &operation, operation.call(),
                                   error);
  });
}

PyObject* lens_offset(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 5);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto type = given.number<std::uint8_t>("type");
  const auto type_info = given.number<std::uint8_t>("type_info");
  return given.begin<Text>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_lens_offset(cameraOf(*camera), type, type_info, timeLimit, &out->text, &Operation::onDone,
                                 &operation, operation.call(), error);
  });
}

PyObject* set_lens_offset(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 6);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto type = given.number<std::uint8_t>("type");
  const auto type_info = given.number<std::uint8_t>("type_info");
  const char* const offset = given.text("offset");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_lens_offset(cameraOf(*camera), type, type_info, offset, timeLimit, &Operation::onDone,
                                         &operation, operation.call(), error);
      });
}

PyObject* origin_offset(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 5);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto type = given.number<std::uint8_t>("type");
  const auto type_info = given.number<std::uint8_t>("type_info");
  return given.begin<zel_origin_offset_data>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_origin_offset(cameraOf(*camera), type, type_info, timeLimit, out, &Operation::onDone, &operation,
                                   operation.call(), error);
  });
}

PyObject* set_origin_offset(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 6);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto type = given.number<std::uint8_t>("type");
  const auto type_info = given.number<std::uint8_t>("type_info");
  const auto offset = given.record<zel_origin_offset_data>("offset");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_origin_offset(cameraOf(*camera), type, type_info, &offset, timeLimit, &Operation::onDone,
                                           &operation, operation.call(), error);
      });
}

PyObject* set_white_balance_gain(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto gain = given.record<zel_white_balance_gain_data>("gain");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_white_balance_gain(cameraOf(*camera), &gain, timeLimit, &Operation::onDone, &operation,
                                                operation.call(), error);
      });
}

PyObject* white_balance_gain(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<zel_white_balance_gain_data>(
      std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
        return zel_begin_white_balance_gain(cameraOf(*camera), timeLimit, out, &Operation::onDone, &operation,
                                            operation.call(), error);
      });
}

PyObject* white_balance_calibration(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<std::uint8_t>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_white_balance_calibration(cameraOf(*camera), timeLimit, out, &Operation::onDone, &operation,
                                               operation.call(), error);
  });
}

PyObject* set_vignette_luma(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto luma = given.record<zel_vignette_luma_data>("luma");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_vignette_luma(cameraOf(*camera), &luma, timeLimit, &Operation::onDone, &operation,
                                           operation.call(), error);
      });
}

PyObject* vignette_luma(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<zel_vignette_luma_data>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_vignette_luma(cameraOf(*camera), timeLimit, out, &Operation::onDone, &operation, operation.call(),
                                   error);
  });
}

PyObject* set_vignette_gain(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto gain = given.record<zel_vignette_gain_data>("gain");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_vignette_gain(cameraOf(*camera), &gain, timeLimit, &Operation::onDone, &operation,
                                           operation.call(), error);
      });
}

PyObject* vignette_gain(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<zel_vignette_gain_data>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_vignette_gain(cameraOf(*camera), timeLimit, out, &Operation::onDone, &operation, operation.call(),
                                   error);
  });
}

PyObject* vignette_calibration(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<std::uint8_t>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_vignette_calibration(cameraOf(*camera), timeLimit, out, &Operation::onDone, &operation,
                                          operation.call(), error);
  });
}

PyObject* update_position(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto position = given.record<zel_gps_data>("position");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_update_position(cameraOf(*camera), &position, timeLimit, &Operation::onDone, &operation,
                                         operation.call(), error);
      });
}

PyObject* update_motion(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto motion = given.record<zel_gyro_data>("motion");
  return given.begin<Nothing>(std::move(wakeup),
                              [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
                                return zel_begin_update_motion(cameraOf(*camera), &motion, timeLimit,
                                                               &Operation::onDone, &operation, operation.call(), error);
                              });
}

PyObject* start_preview(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto resolution = given.number<std::uint8_t>("resolution");
  return given.begin<std::uint8_t>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_start_preview(cameraOf(*camera), resolution, timeLimit, out, &Operation::onDone, &operation,
                                   operation.call(), error);
  });
}

PyObject* stop_preview(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 3);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  return given.begin<Nothing>(std::move(wakeup),
                              [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
                                return zel_begin_stop_preview(cameraOf(*camera), timeLimit, &Operation::onDone,
                                                              &operation, operation.call(), error);
                              });
}

PyObject* switch_sound(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const auto type = given.number<std::uint8_t>("type");
  return given.begin<Nothing>(std::move(wakeup),
                              [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
                                return zel_begin_switch_sound(cameraOf(*camera), type, timeLimit, &Operation::onDone,
                                                              &operation, operation.call(), error);
                              });
}

PyObject* create_text_file(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 6);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const char* const file_name = given.text("file_name");
  const auto size_bytes = given.number<std::int32_t>("size_bytes");
  const auto content = given.bytes("content");
  return given.begin<std::int32_t>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_create_text_file(cameraOf(*camera), file_name, size_bytes, content.data, content.length, timeLimit,
                                      out, &Operation::onDone, &operation, operation.call(), error);
  });
}

PyObject* video_metadata(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const char* const file_name = given.text("file_name");
  return given.begin<zel_video_info>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_video_metadata(cameraOf(*camera), file_name, timeLimit, out, &Operation::onDone, &operation,
                                    operation.call(), error);
  });
}

PyObject* set_photo_extra_info(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 5);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const char* const file_name = given.text("file_name");
  const auto extra_info = given.bytes("extra_info");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_photo_extra_info(cameraOf(*camera), file_name, extra_info.data, extra_info.length,
                                              timeLimit, &Operation::onDone, &operation, operation.call(), error);
      });
}

PyObject* set_video_extra_info(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 5);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const char* const file_name = given.text("file_name");
  const auto extra_info = given.bytes("extra_info");
  return given.begin<Nothing>(
      std::move(wakeup), [&](Operation& operation, [[maybe_unused]] auto* out, zel_error* error) {
        return zel_begin_set_video_extra_info(cameraOf(*camera), file_name, extra_info.data, extra_info.length,
                                              timeLimit, &Operation::onDone, &operation, operation.call(), error);
      });
}

PyObject* video_extra_info(PyObject*, PyObject* const* arguments, Py_ssize_t count) {
  Arguments given(arguments, count, 4);
  const auto camera = given.handle(Kind::camera, "camera");
  auto wakeup = given.wakeup();
  const int timeLimit = given.number<int>("time_limit");
  const char* const file_name = given.text("file_name");
  return given.begin<Bytes>(std::move(wakeup), [&](Operation& operation, auto* out, zel_error* error) {
    return zel_begin_video_extra_info(cameraOf(*camera), file_name, timeLimit, &out->data, &out->length,
                                      &Operation::onDone, &operation, operation.call(), error);
  });
}

PyMethodDef requestTable[] = {
    method<battery>("battery"),
    method<card>("card"),
    method<video_seconds_remaining>("video_seconds_remaining"),
    method<photos_remaining>("photos_remaining"),
    method<serial_number>("serial_number"),
    method<set_serial_number>("set_serial_number"),
    method<uuid>("uuid"),
    method<lens_index>("lens_index"),
    method<exposure_index>("exposure_index"),
    method<activation_time>("activation_time"),
    method<set_activation_time>("set_activation_time"),
    method<set_local_time>("set_local_time"),
    method<control_system>("control_system"),
    method<cancel_system_control>("cancel_system_control"),
    method<cancel_deletion>("cancel_deletion"),
    method<start_recording>("start_recording"),
    method<start_recording_with_extra_info>("start_recording_with_extra_info"),
    method<start_timed_recording>("start_timed_recording"),
    method<stop_recording>("stop_recording"),
    method<cancel_recording>("cancel_recording"),
    method<set_video_resolution>("set_video_resolution"),
    method<set_video_bitrate>("set_video_bitrate"),
    method<set_recording_limit>("set_recording_limit"),
    method<recording_limit>("recording_limit"),
    method<set_photo_size>("set_photo_size"),
    method<set_self_timer>("set_self_timer"),
    method<self_timer>("self_timer"),
    method<set_key_function>("set_key_function"),
    method<set_triple_press_mode>("set_triple_press_mode"),
    method<triple_press_mode>("triple_press_mode"),
    method<set_mute>("set_mute"),
    method<set_ip_switch_mode>("set_ip_switch_mode"),
    method<set_exposure_bias>("set_exposure_bias"),
    method<set_metering_mode>("set_metering_mode"),
    method<set_metering_weights>("set_metering_weights"),
    method<set_still_program_mode>("set_still_program_mode"),
    method<set_manual_exposure>("set_manual_exposure"),
    method<set_white_balance>("set_white_balance"),
    method<set_brightness>("set_brightness"),
    method<set_contrast>("set_contrast"),
    method<set_saturation>("set_saturation"),
    method<set_hue>("set_hue"),
    method<set_sharpness>("set_sharpness"),
    method<set_digital_effect>("set_digital_effect"),
    method<set_flicker>("set_flicker"),
    method<flicker>("flicker"),
    method<set_gps_timeout>("set_gps_timeout"),
    method<gps_timeout>("gps_timeout"),
    method<set_timelapse>("set_timelapse"),
    method<timelapse>("timelapse"),
    method<set_timelapse_exposure_bias>("set_timelapse_exposure_bias"),
    method<timelapse_exposure_bias>("timelapse_exposure_bias"),
    method<set_audio_bitrate>("set_audio_bitrate"),
    method<audio_bitrate>("audio_bitrate"),
    method<lens_offset>("lens_offset"),
    method<set_lens_offset>("set_lens_offset"),
    method<origin_offset>("origin_offset"),
    method<set_origin_offset>("set_origin_offset"),
    method<set_white_balance_gain>("set_white_balance_gain"),
    method<white_balance_gain>("white_balance_gain"),
    method<white_balance_calibration>("white_balance_calibration"),
    method<set_vignette_luma>("set_vignette_luma"),
    method<vignette_luma>("vignette_luma"),
    method<set_vignette_gain>("set_vignette_gain"),
    method<vignette_gain>("vignette_gain"),
    method<vignette_calibration>("vignette_calibration"),
    method<update_position>("update_position"),
    method<update_motion>("update_motion"),
    method<start_preview>("start_preview"),
    method<stop_preview>("stop_preview"),
    method<switch_sound>("switch_sound"),
    method<create_text_file>("create_text_file"),
    method<video_metadata>("video_metadata"),
    method<set_photo_extra_info>("set_photo_extra_info"),
    method<set_video_extra_info>("set_video_extra_info"),
    method<video_extra_info>("video_extra_info"),
    {nullptr, nullptr, 0, nullptr},
};

}  // namespace

PyMethodDef* requestMethods() { return requestTable; }

}  // namespace zel::python
