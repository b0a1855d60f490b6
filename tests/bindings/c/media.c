#include <string.h>

#include "tests/bindings/c/calls.h"

static int is_jpeg(const zel_jpeg_data* jpeg) {
  return jpeg->length > 1000 && jpeg->data[0] == 0xFF && jpeg->data[1] == 0xD8 && jpeg->data[jpeg->length - 1] == 0xD9;
}

static void count_progress(void* user, uint64_t done, uint64_t total) {
  uint64_t* const seen = user;
  ++seen[0];
  seen[1] = done;
  seen[2] = total;
}

const char* photos(zel_camera* camera) {
  zel_error error = {.size = sizeof error};
  uint64_t seen[3] = {0};
  const zel_gps_data position = {.size = sizeof position, .latitude = 52.5};
  const zel_capture_options options = {.size = sizeof options,
                                       .position = &position,
                                       .extra_info = (const uint8_t*)"{}",
                                       .extra_info_length = 2,
                                       .progress = count_progress,
                                       .progress_user = seen};
  zel_photo* photo = NULL;
  CHECK_OK(zel_take_photo(camera, &options, 0, &photo, &error), error);
  zel_photo_data stored = {.size = sizeof stored};
  zel_jpeg_data jpeg = {.size = sizeof jpeg};
  CHECK_OK(zel_photo_get(photo, &stored, &error), error);
  CHECK_OK(zel_photo_get_jpeg(photo, 0, &jpeg, &error), error);
  CHECK(stored.pictures == 1 && stored.size_bytes == jpeg.length && strcmp(stored.name, jpeg.name) == 0);
  CHECK(is_jpeg(&jpeg));
  CHECK(zel_photo_get_jpeg(photo, 1, &jpeg, &error) == ZEL_INVALID);
  CHECK(strcmp(error.message, "the photo has no picture 1") == 0);
  CHECK(zel_photo_free(photo) == ZEL_OK && zel_photo_free(photo) == ZEL_CLOSED);
  CHECK(zel_photo_get(photo, &stored, &error) == ZEL_CLOSED);
  return NULL;
}

const char* brackets(zel_camera* camera) {
  zel_error error = {.size = sizeof error};
  const int8_t steps[] = {-2, 0, 2};
  zel_photo* photo = NULL;
  CHECK_OK(zel_take_bracket(camera, steps, 3, NULL, 0, &photo, &error), error);
  zel_photo_data stored = {.size = sizeof stored};
  CHECK_OK(zel_photo_get(photo, &stored, &error), error);
  CHECK(stored.pictures == 3);
  for (size_t one = 0; one < 3; ++one) {
    zel_jpeg_data jpeg = {.size = sizeof jpeg};
    CHECK_OK(zel_photo_get_jpeg(photo, one, &jpeg, &error), error);
    CHECK(is_jpeg(&jpeg) && jpeg.name != NULL);
  }
  CHECK(zel_photo_free(photo) == ZEL_OK);
  return NULL;
}

const char* uploads(zel_camera* camera) {
  static uint8_t content[300000];
  zel_error error = {.size = sizeof error};
  uint64_t seen[3] = {0};
  CHECK_OK(zel_upload(camera, 1, "C:/b.bin", content, sizeof content, count_progress, seen, 0, &error), error);
  CHECK(seen[0] == 0 || (seen[2] == sizeof content && seen[1] <= seen[2]));
  CHECK(zel_upload(camera, 1, "C:/", content, 1, NULL, NULL, 0, &error) == ZEL_INVALID);
  return NULL;
}

const char* pictures_outlive_the_camera(zel_camera* camera) {
  zel_error error = {.size = sizeof error};
  const zel_format format = {.size = sizeof format, .width = 1440, .height = 720, .fps = 15};
  const zel_queue_options queue = {.size = sizeof queue, .capacity = 2};
  zel_subscription* pictures = NULL;
  CHECK_OK(zel_pictures(camera, &format, &queue, NULL, NULL, &pictures, &error), error);
  zel_picture* picture = NULL;
  CHECK_OK(zel_next_picture(pictures, 30000, &picture, &error), error);
  CHECK(zel_close(camera) == ZEL_OK);
  zel_picture_data data = {.size = sizeof data};
  CHECK_OK(zel_picture_get(picture, &data, &error), error);
  CHECK(data.width == 1440 && data.height == 720 && data.time > 0);
  CHECK(data.luma.rows == 720 && data.luma.row_bytes == 1440 && data.luma.stride >= 1440);
  CHECK(data.chroma.rows == 360 && data.chroma.row_bytes == 1440);
  unsigned sum = 0;
  for (size_t row = 0; row < data.luma.rows; ++row) sum += data.luma.data[row * data.luma.stride + row];
  CHECK(sum > 0);
  CHECK(zel_picture_free(picture) == ZEL_OK);
  CHECK(zel_picture_get(picture, &data, &error) == ZEL_CLOSED);
  zel_status status = ZEL_OK;
  while ((status = zel_next_picture(pictures, 0, &picture, &error)) == ZEL_OK) zel_picture_free(picture);
  CHECK(status == ZEL_CLOSED);
  CHECK(zel_subscription_free(pictures) == ZEL_OK);
  return NULL;
}

// Takes packets until there was one of the track.
static const char* wait_for_track(zel_subscription* packets, zel_track track, int key) {
  zel_error error = {.size = sizeof error};
  for (;;) {
    zel_packet* packet = NULL;
    zel_packet_data data = {.size = sizeof data};
    CHECK_OK(zel_next_packet(packets, 30000, &packet, &error), error);
    CHECK_OK(zel_packet_get(packet, &data, &error), error);
    CHECK(data.length > 0 && data.data != NULL);
    const int found = data.track == track && (!key || data.key);
    CHECK(zel_packet_free(packet) == ZEL_OK);
    if (found) return NULL;
  }
}

static const char* outputs(zel_stream* stream, zel_subscription* packets, const char* second_file) {
  zel_error error = {.size = sizeof error};
  int second = 0;
  CHECK_OK(zel_stream_add_output(stream, second_file, &second, &error), error);
  CHECK(zel_stream_add_output(stream, "film.avi", &second, &error) == ZEL_INVALID);
  zel_output_report report = {.size = sizeof report};
  CHECK_OK(zel_stream_get_output(stream, 1, &report, &error), error);
  CHECK(report.id == second);
  for (int one = 0; one < 40; ++one) {
    const char* const wrong = wait_for_track(packets, ZEL_VIDEO, 0);
    if (wrong != NULL) return wrong;
  }
  CHECK_OK(zel_stream_remove_output(stream, second, &report, &error), error);
  CHECK(report.pictures > 0 && report.state == ZEL_OUTPUT_FINISHED && report.fault[0] == 0);
  CHECK(zel_stream_remove_output(stream, second, NULL, &error) == ZEL_INVALID);
  CHECK(zel_stream_get_output(stream, 1, &report, &error) == ZEL_INVALID);
  CHECK(strcmp(error.message, "the stream has 1 outputs") == 0);
  return NULL;
}

const char* streams(zel_camera* camera, const char* first_file, const char* second_file) {
  zel_error error = {.size = sizeof error};
  const zel_stream_options options = {.size = sizeof options, .addresses = &first_file, .address_count = 1};
  zel_stream* stream = NULL;
  CHECK_OK(zel_stream_start(camera, &options, 30000, &stream, &error), error);
  zel_stream* other = NULL;
  CHECK(zel_stream_start(camera, NULL, 0, &other, &error) == ZEL_INVALID && other == NULL);
  zel_stream_headers headers = {.size = sizeof headers};
  CHECK_OK(zel_stream_get_headers(stream, &headers, &error), error);
  CHECK(headers.width == 1440 && headers.height == 720 && headers.spherical == 0);
  CHECK(headers.sps_length > 4 && (headers.sps[0] & 0x1F) == 7 && headers.audio_config_length == 2);
  zel_subscription *packets = NULL, *problems = NULL;
  CHECK_OK(zel_stream_packets(stream, NULL, NULL, NULL, &packets, &error), error);
  CHECK_OK(zel_stream_problems(stream, NULL, NULL, NULL, &problems, &error), error);
  const char* wrong = wait_for_track(packets, ZEL_VIDEO, 1);
  if (wrong == NULL) wrong = wait_for_track(packets, ZEL_AUDIO, 0);
  if (wrong == NULL) wrong = outputs(stream, packets, second_file);
  if (wrong != NULL) return wrong;
  zel_stream_statistics statistics = {.size = sizeof statistics};
  CHECK_OK(zel_stream_get_statistics(stream, &statistics, &error), error);
  CHECK(statistics.pictures >= 40 && statistics.audio_frames > 0 && statistics.video_bytes > 10000);
  CHECK_OK(zel_stream_stop(stream, &error), error);
  zel_output_report report = {.size = sizeof report};
  CHECK_OK(zel_stream_get_output(stream, 0, &report, &error), error);
  CHECK(report.state == ZEL_OUTPUT_FINISHED && report.bytes > 10000 && strstr(report.name, "first.mp4") != NULL);
  int id = 0;
  CHECK(zel_stream_add_output(stream, second_file, &id, &error) == ZEL_CLOSED);
  zel_error problem = {.size = sizeof problem};
  CHECK(zel_next_problem(problems, 0, &problem, &error) == ZEL_CLOSED);
  CHECK(zel_subscription_free(packets) == ZEL_OK && zel_subscription_free(problems) == ZEL_OK);
  CHECK_OK(zel_stream_packets(stream, NULL, NULL, NULL, &packets, &error), error);
  zel_packet* packet = NULL;
  CHECK(zel_next_packet(packets, 0, &packet, &error) == ZEL_CLOSED);
  CHECK(zel_subscription_free(packets) == ZEL_OK && zel_stream_free(stream) == ZEL_OK);
  CHECK(zel_stream_stop(stream, &error) == ZEL_CLOSED);
  return NULL;
}

const char* a_stream_after_close(zel_camera* camera) {
  zel_error error = {.size = sizeof error};
  zel_stream* stream = NULL;
  CHECK_OK(zel_stream_start(camera, NULL, 30000, &stream, &error), error);
  zel_subscription* packets = NULL;
  CHECK_OK(zel_stream_packets(stream, NULL, NULL, NULL, &packets, &error), error);
  zel_packet* kept = NULL;
  CHECK_OK(zel_next_packet(packets, 30000, &kept, &error), error);
  CHECK(zel_close(camera) == ZEL_OK);
  int id = 0;
  CHECK(zel_stream_add_output(stream, "film.mp4", &id, &error) == ZEL_CLOSED);
  zel_packet* packet = NULL;
  zel_status status = ZEL_OK;
  while ((status = zel_next_packet(packets, 0, &packet, &error)) == ZEL_OK) zel_packet_free(packet);
  CHECK(status == ZEL_CLOSED);
  zel_packet_data data = {.size = sizeof data};
  CHECK_OK(zel_packet_get(kept, &data, &error), error);
  CHECK(data.key == 1 && data.track == ZEL_VIDEO && data.data[data.length - 1] + 1 > 0);
  CHECK_OK(zel_stream_stop(stream, &error), error);
  CHECK(zel_packet_free(kept) == ZEL_OK && zel_subscription_free(packets) == ZEL_OK &&
        zel_stream_free(stream) == ZEL_OK);
  return NULL;
}
