#include <string.h>

#include "tests/bindings/c/calls.h"

const char* wrong_arguments(zel_camera* camera) {
  zel_error error = {.size = sizeof error};
  CHECK(zel_battery(NULL, 0, NULL, NULL) == ZEL_INVALID);
  CHECK(zel_battery(camera, 0, NULL, &error) == ZEL_INVALID);
  CHECK(error.status == ZEL_INVALID && strcmp(error.message, "out is NULL") == 0);
  zel_battery_result battery = {.size = sizeof battery};
  CHECK(zel_battery(NULL, 0, &battery, &error) == ZEL_INVALID);
  CHECK(strcmp(error.message, "the camera is NULL") == 0);
  CHECK(zel_battery(camera, -1, &battery, &error) == ZEL_INVALID);
  CHECK(strcmp(error.message, "a time limit is not below 0") == 0);
  CHECK(zel_set_serial_number(camera, NULL, 0, &error) == ZEL_INVALID);
  CHECK(strcmp(error.message, "serial_number is NULL") == 0);
  CHECK(zel_set_photo_extra_info(camera, "a.jpg", NULL, 3, 0, &error) == ZEL_INVALID);
  CHECK(strcmp(error.message, "extra_info is NULL, and has a length") == 0);
  size_t length = 0;
  CHECK(zel_video_extra_info(camera, "a.mp4", 0, NULL, &length, &error) == ZEL_INVALID);
  CHECK(zel_set_metering_weights(camera, NULL, 0, &error) == ZEL_INVALID);
  CHECK(zel_open(NULL, NULL, &error) == ZEL_INVALID);
  CHECK(zel_events(camera, NULL, NULL, NULL, NULL, &error) == ZEL_INVALID);
  CHECK(zel_take_photo(camera, NULL, 0, NULL, &error) == ZEL_INVALID);
  zel_photo* photo = NULL;
  CHECK(zel_take_bracket(camera, NULL, 3, NULL, 0, &photo, &error) == ZEL_INVALID);
  const int8_t steps[10] = {0};
  CHECK(zel_take_bracket(camera, steps, 10, NULL, 0, &photo, &error) == ZEL_INVALID);
  CHECK(zel_take_bracket(camera, steps, 0, NULL, 0, &photo, &error) == ZEL_INVALID && photo == NULL);
  CHECK(zel_upload(camera, 1, NULL, NULL, 0, NULL, NULL, 0, &error) == ZEL_INVALID);
  int descriptor = -1;
  CHECK(zel_descriptor(camera, &descriptor, &error) == ZEL_INVALID);
  CHECK(strcmp(error.message, "the camera was opened without zel_options.dispatch") == 0);
  CHECK(zel_dispatch(camera, NULL) == ZEL_INVALID);
  const zel_format odd = {.size = sizeof odd, .width = 640, .height = 480, .fps = 25};
  zel_subscription* pictures = NULL;
  CHECK(zel_pictures(camera, &odd, NULL, NULL, NULL, &pictures, &error) == ZEL_INVALID && pictures == NULL);
  CHECK(strcmp(error.message, "the camera has no preview of 640 x 480 at 25") == 0);
  zel_stream_options options = {.size = sizeof options, .address_count = 1};
  zel_stream* stream = NULL;
  CHECK(zel_stream_start(camera, &options, 0, &stream, &error) == ZEL_INVALID);
  options = (zel_stream_options){.size = sizeof options, .stitched = 1, .stitched_width = 1001, .stitched_height = 500};
  CHECK(zel_stream_start(camera, &options, 0, &stream, &error) == ZEL_INVALID && stream == NULL);
  return NULL;
}

const char* wrong_handles(zel_camera* camera) {
  zel_error error = {.size = sizeof error};
  zel_subscription* events = NULL;
  CHECK_OK(zel_events(camera, NULL, NULL, NULL, &events, &error), error);
  int anything = 0;
  zel_battery_result battery = {.size = sizeof battery};
  CHECK(zel_battery((zel_camera*)(void*)events, 0, &battery, &error) == ZEL_INVALID);
  CHECK(strcmp(error.message, "this handle is no camera") == 0);
  CHECK(zel_battery((zel_camera*)(void*)&anything, 0, &battery, &error) == ZEL_INVALID);
  CHECK(zel_stream_stop((zel_stream*)(void*)camera, &error) == ZEL_INVALID);
  CHECK(strcmp(error.message, "this handle is no stream") == 0);
  CHECK(zel_close((zel_camera*)(void*)events) == ZEL_INVALID);
  zel_picture* picture = NULL;
  CHECK(zel_next_picture(events, 0, &picture, &error) == ZEL_INVALID);
  CHECK(strcmp(error.message, "this subscription gives something else") == 0);
  CHECK(zel_subscription_free(events) == ZEL_OK);
  CHECK(zel_subscription_free(events) == ZEL_CLOSED);
  zel_event event = {.size = sizeof event};
  CHECK(zel_next_event(events, 0, &event, &error) == ZEL_CLOSED);
  CHECK(strcmp(error.message, "the subscription was freed") == 0);
  CHECK(zel_subscription_free(NULL) == ZEL_OK && zel_close(NULL) == ZEL_OK && zel_stream_free(NULL) == ZEL_OK);
  CHECK(zel_photo_free(NULL) == ZEL_OK && zel_picture_free(NULL) == ZEL_OK && zel_packet_free(NULL) == ZEL_OK);
  zel_free(NULL);
  return NULL;
}

const char* wrong_sizes(zel_camera* camera) {
  zel_error error = {.size = sizeof error};
  zel_battery_result battery = {.size = 0};
  CHECK(zel_battery(camera, 0, &battery, &error) == ZEL_INVALID);
  CHECK(strstr(error.message, "out->size is 0; set it to ") == error.message);
  battery.size = sizeof battery - 1;
  CHECK(zel_battery(camera, 0, &battery, &error) == ZEL_INVALID);
  battery.size = (size_t)-1;
  CHECK(zel_battery(camera, 0, &battery, &error) == ZEL_INVALID);
  const zel_gps_data position = {.size = 3};
  CHECK(zel_update_position(camera, &position, 0, &error) == ZEL_INVALID);
  zel_error unusable = {.size = 8, .code = 77};
  battery.size = sizeof battery;
  CHECK(zel_battery(camera, 0, &battery, &unusable) == ZEL_INVALID);
  CHECK(unusable.code == 77);
  const zel_options options = {.size = 1};
  zel_camera* other = NULL;
  CHECK(zel_open(&options, &other, &error) == ZEL_INVALID && other == NULL);
  return NULL;
}

// A program that was built with a later version has larger structs.
const char* later_versions(zel_camera* camera) {
  struct {
    zel_battery_result now;
    uint64_t later;
  } battery = {.now = {.size = sizeof battery}, .later = 5};
  zel_error error = {.size = sizeof error};
  CHECK_OK(zel_battery(camera, 0, &battery.now, &error), error);
  CHECK(battery.now.level == 100 && battery.later == 0 && battery.now.size == sizeof battery);
  struct {
    zel_gps_data now;
    uint64_t later;
  } position = {.now = {.size = sizeof position}};
  CHECK_OK(zel_update_position(camera, &position.now, 0, &error), error);
  position.later = 1;
  CHECK(zel_update_position(camera, &position.now, 0, &error) == ZEL_INVALID);
  CHECK(strcmp(error.message, "position holds what a later version of the library knows") == 0);
  return NULL;
}

const char* calls_after_close(zel_camera* camera) {
  zel_error error = {.size = sizeof error};
  zel_subscription* events = NULL;
  CHECK_OK(zel_events(camera, NULL, NULL, NULL, &events, &error), error);
  CHECK(zel_close(camera) == ZEL_OK);
  zel_battery_result battery = {.size = sizeof battery};
  CHECK(zel_battery(camera, 0, &battery, &error) == ZEL_CLOSED);
  CHECK(strcmp(error.message, "the camera was closed") == 0);
  CHECK(zel_close(camera) == ZEL_CLOSED);
  zel_event event = {.size = sizeof event};
  CHECK(zel_next_event(events, 0, &event, &error) == ZEL_CLOSED);
  uint64_t dropped = 1;
  CHECK_OK(zel_subscription_dropped(events, &dropped, &error), error);
  CHECK(dropped == 0);
  CHECK(zel_subscription_free(events) == ZEL_OK);
  return NULL;
}
