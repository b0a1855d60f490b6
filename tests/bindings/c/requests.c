#include <string.h>

#include "tests/bindings/c/calls.h"

char fault[1024];

const char* requests_of_every_shape(zel_camera* camera) {
  zel_error error = {.size = sizeof error};
  zel_battery_result battery = {.size = sizeof battery};
  CHECK_OK(zel_battery(camera, 0, &battery, &error), error);
  CHECK(battery.size == sizeof battery && battery.power_type == 1 && battery.level == 100);
  zel_card_result card = {.size = sizeof card};
  CHECK_OK(zel_card(camera, 5000, &card, &error), error);
  CHECK(card.capacity_bytes >= card.free_bytes && card.free_bytes > 0);

  CHECK_OK(zel_set_serial_number(camera, "E1A0077", 0, &error), error);
  char* serial = NULL;
  CHECK_OK(zel_serial_number(camera, 0, &serial, &error), error);
  CHECK(strcmp(serial, "E1A0077") == 0);
  zel_free(serial);

  int16_t bias = 0;
  CHECK_OK(zel_set_timelapse_exposure_bias(camera, -7, 0, &error), error);
  CHECK_OK(zel_timelapse_exposure_bias(camera, 0, &bias, NULL), error);
  CHECK(bias == -7);

  const uint8_t info[] = {'{', '}'};
  uint8_t* kept = NULL;
  size_t length = 0;
  CHECK_OK(zel_set_video_extra_info(camera, "VID_1.mp4", info, sizeof info, 0, &error), error);
  CHECK_OK(zel_video_extra_info(camera, "VID_1.mp4", 0, &kept, &length, &error), error);
  CHECK(length == 2 && memcmp(kept, info, 2) == 0);
  zel_free(kept);
  CHECK(error.status == ZEL_OK && error.message[0] == 0);
  return NULL;
}

const char* records_come_back(zel_camera* camera) {
  zel_error error = {.size = sizeof error};
  zel_timelapse_info set = {
      .size = sizeof set, .value1 = 70000, .value2 = 2, .value3 = 3, .exposure1 = 4, .exposure2 = 5};
  zel_timelapse_info timelapse = {.size = sizeof timelapse};
  CHECK_OK(zel_set_timelapse(camera, &set, 0, &error), error);
  CHECK_OK(zel_timelapse(camera, 0, &timelapse, &error), error);
  CHECK(memcmp(&timelapse, &set, sizeof set) == 0);

  zel_white_balance_gain_data gain = {.size = sizeof gain, .value1 = 1, .gains = {-1, 2, -300, 32767}};
  zel_white_balance_gain_data gains = {.size = sizeof gains};
  CHECK_OK(zel_set_white_balance_gain(camera, &gain, 0, &error), error);
  CHECK_OK(zel_white_balance_gain(camera, 0, &gains, &error), error);
  CHECK(gains.value1 == 1 && gains.gains[2] == -300 && gains.gains[3] == 32767);

  zel_origin_offset_data offset = {
      .size = sizeof offset, .lens0 = {1, -2, 3}, .lens1 = {4, 5, -60000}, .value_a = 7, .value_b = 8};
  zel_origin_offset_data offsets = {.size = sizeof offsets};
  CHECK_OK(zel_set_origin_offset(camera, 0, 0, &offset, 0, &error), error);
  CHECK_OK(zel_origin_offset(camera, 0, 0, 0, &offsets, &error), error);
  CHECK(offsets.lens0[1] == -2 && offsets.lens1[2] == -60000 && offsets.value_b == 8);

  zel_vignette_luma_data luma = {.size = sizeof luma, .value2 = 9, .lumas = {-5, 6}};
  zel_vignette_luma_data lumas = {.size = sizeof lumas};
  CHECK_OK(zel_set_vignette_luma(camera, &luma, 0, &error), error);
  CHECK_OK(zel_vignette_luma(camera, 0, &lumas, &error), error);
  CHECK(lumas.value2 == 9 && lumas.lumas[0] == -5 && lumas.lumas[1] == 6);
  zel_vignette_gain_data vignette = {.size = sizeof vignette, .gains = {1, 2, 3, 4, 5, -6}};
  zel_vignette_gain_data vignettes = {.size = sizeof vignettes};
  CHECK_OK(zel_set_vignette_gain(camera, &vignette, 0, &error), error);
  CHECK_OK(zel_vignette_gain(camera, 0, &vignettes, &error), error);
  CHECK(vignettes.gains[5] == -6);
  return NULL;
}

const char* a_recording_tells_its_name(zel_camera* camera) {
  zel_error error = {.size = sizeof error};
  const zel_gps_data position = {.size = sizeof position, .latitude = 52.5, .longitude = -13.25, .altitude = 34};
  const zel_gyro_data motion = {.size = sizeof motion, .ax = 1.5F, .gz = -2};
  const zel_orientation_data orientation = {.size = sizeof orientation, .w = -4};
  CHECK_OK(zel_start_recording(camera, &position, &motion, &orientation, 0, &error), error);
  zel_stored_file_result file = {.size = sizeof file};
  CHECK_OK(zel_stop_recording(camera, 0, &file, &error), error);
  CHECK(file.name != NULL && strstr(file.name, ".mp4") != NULL);

  zel_video_info video = {.size = sizeof video};
  CHECK_OK(zel_video_metadata(camera, file.name, 0, &video, &error), error);
  zel_free(file.name);
  CHECK(video.size == sizeof video && video.offset.size == sizeof video.offset);
  CHECK(video.position.latitude == 52.5 && video.position.longitude == -13.25 && video.position.altitude == 34);
  CHECK(video.motion.ax == 1.5F && video.motion.gz == -2 && video.orientation.w == -4);
  return NULL;
}

const char* the_identity(zel_camera* camera) {
  zel_error error = {.size = sizeof error};
  char* serial = NULL;
  CHECK_OK(zel_get_identity(camera, ZEL_SERIAL_NUMBER, &serial, &error), error);
  CHECK(strcmp(serial, "E1A0001") == 0);
  zel_free(serial);
  CHECK(zel_get_identity(camera, 77, &serial, &error) == ZEL_INVALID);
  zel_link_state state = ZEL_LINK_CLOSED;
  CHECK_OK(zel_get_link_state(camera, &state, &error), error);
  CHECK(state == ZEL_LINK_FLOWING);
  CHECK(strcmp(zel_status_text(ZEL_TIME_LIMIT), "no answer in time") == 0);
  CHECK(strcmp(zel_status_text(99), "unknown") == 0);
  CHECK(strchr(zel_version(), '.') != NULL);
  return NULL;
}
