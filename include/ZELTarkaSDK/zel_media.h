#pragma once

#include <stddef.h>
#include <stdint.h>

#include <ZELTarkaSDK/platform/export.h>
#include <ZELTarkaSDK/zel_records.h>
#include <ZELTarkaSDK/zel_status.h>

// Photos, files, pictures and streams. Programs include zel.h.

#ifdef __cplusplus
extern "C" {
#endif

// -- Subscriptions

// How much a subscription keeps for a program that does not keep up.
typedef struct zel_queue_options {
  size_t size;
  size_t capacity;  // 0: 16, of pictures 4, of packets 256
  int drop_newest;  // where it is full; 0: the oldest is dropped
} zel_queue_options;

// How many were dropped because there was no room.
ZEL_EXPORT zel_status zel_subscription_dropped(zel_subscription* subscription, uint64_t* dropped, zel_error* error);

// Ends it. Afterwards its callback neither runs nor is running, except where this is called inside a callback.
//
// Errors: ZEL_CLOSED for one that was freed before. NULL is allowed.
ZEL_EXPORT zel_status zel_subscription_free(zel_subscription* subscription);

// -- Photos and files

// How far a transfer has come: pictures that have arrived, or bytes that have been sent.
//
// Thread: the camera's thread, while the call waits. With zel_options.dispatch it is the thread of the call, which
//         runs all callbacks that wait, as zel_dispatch() does.
typedef void (*zel_progress_callback)(void* user, uint64_t done, uint64_t total);

// What is stored with a photo. NULL is what is not known.
typedef struct zel_capture_options {
  size_t size;
  const zel_gps_data* position;
  const zel_gyro_data* motion;
  const zel_orientation_data* orientation;
  const uint8_t* extra_info;  // JSON
  size_t extra_info_length;
  zel_progress_callback progress;
  void* progress_user;
} zel_capture_options;

// Takes a photo and waits for its picture.
//
// Owner:  free the photo with zel_photo_free().
ZEL_EXPORT zel_status zel_take_photo(zel_camera* camera, const zel_capture_options* options, int time_limit,
                                     zel_photo** photo, zel_error* error);
// Takes a series with these exposure steps, 1 to 9 of them, in the camera's unit.
ZEL_EXPORT zel_status zel_take_bracket(zel_camera* camera, const int8_t* steps, size_t count,
                                       const zel_capture_options* options, int time_limit, zel_photo** photo,
                                       zel_error* error);

// What a photo was stored as on the card.
//
// Owner:  the photo; the name is valid until it is freed.
typedef struct zel_photo_data {
  size_t size;
  uint32_t time;  // the camera's
  uint64_t size_bytes;
  const char* name;  // NULL where it is not ASCII
  size_t pictures;   // that have come with it
} zel_photo_data;

// A picture of a photo or of a series.
//
// Owner:  the photo; name and bytes are valid until it is freed.
typedef struct zel_jpeg_data {
  size_t size;
  const char* name;  // NULL where it is not ASCII
  const uint8_t* data;
  size_t length;
} zel_jpeg_data;

ZEL_EXPORT zel_status zel_photo_get(zel_photo* photo, zel_photo_data* data, zel_error* error);
// Errors: ZEL_INVALID where there is no picture of that index.
ZEL_EXPORT zel_status zel_photo_get_jpeg(zel_photo* photo, size_t index, zel_jpeg_data* jpeg, zel_error* error);
ZEL_EXPORT zel_status zel_photo_free(zel_photo* photo);

// Sends a file. type: the camera's code; path: its name there, without its drive; progress: NULL for none. What was
// queued when the call is given up is still sent.
ZEL_EXPORT zel_status zel_upload(zel_camera* camera, int64_t type, const char* path, const uint8_t* content,
                                 size_t length, zel_progress_callback progress, void* user, int time_limit,
                                 zel_error* error);

// -- Decoded pictures of the preview

// The preview's size and rate, one of those that the camera has; zero: 1440 x 720 at 30.
//
// Units: pixels; pictures a second.
typedef struct zel_format {
  size_t size;
  int32_t width, height, fps;
} zel_format;

// The camera's code of a format, as zel_start_preview() and zel_lens_offset() take it. format: NULL for the default.
//
// Errors: ZEL_INVALID for a format that the camera does not have.
ZEL_EXPORT zel_status zel_format_code(const zel_format* format, uint8_t* code, zel_error* error);

// Rows of bytes, `stride` bytes apart.
typedef struct zel_plane {
  const uint8_t* data;
  size_t stride;
  size_t row_bytes;  // the part that belongs to the picture
  size_t rows;
} zel_plane;

// A picture with both lenses side by side: NV12, full range.
//
// Units: pixels; milliseconds since 1 January 2001 UTC, by the host's clock.
//
// Owner:  the picture; the planes are valid until it is freed, also after zel_close().
typedef struct zel_picture_data {
  size_t size;
  int32_t width, height;
  int64_t time;
  zel_plane luma;
  zel_plane chroma;                     // Cb and Cr, a byte each
  uint8_t primaries, transfer, matrix;  // code points of ITU-T H.273
} zel_picture_data;

// Owner:  the callback, or whoever it gives the picture to, frees it with zel_picture_free().
typedef void (*zel_picture_callback)(void* user, zel_picture* picture);

// The pictures of the preview, which runs as long as anybody needs it, in one format for all. format: NULL for the
// default. The rest is as with zel_events().
//
// Errors: zel_next_picture() gives ZEL_INVALID where the preview runs in another format, ZEL_MEDIA where it cannot be
//         started or decoded.
ZEL_EXPORT zel_status zel_pictures(zel_camera* camera, const zel_format* format, const zel_queue_options* queue,
                                   zel_picture_callback callback, void* user, zel_subscription** subscription,
                                   zel_error* error);
// Owner:  free the picture with zel_picture_free().
ZEL_EXPORT zel_status zel_next_picture(zel_subscription* subscription, int time_limit, zel_picture** picture,
                                       zel_error* error);
ZEL_EXPORT zel_status zel_picture_get(zel_picture* picture, zel_picture_data* data, zel_error* error);
ZEL_EXPORT zel_status zel_picture_free(zel_picture* picture);

// -- Streams

// The pictures and sound of a stream, and where they go at first. Zero and NULL are the default of every member.
//
// Units: pixels, both sides even; bits a second; degrees.
typedef struct zel_stream_options {
  size_t size;
  const zel_format* format;      // of the camera's preview
  const char* const* addresses;  // of outputs, see zel_stream_add_output()
  size_t address_count;
  int stitched;                             // 1: panoramas; 0: the camera's own pictures as they come
  int32_t stitched_width, stitched_height;  // 0: 1920 x 960
  int64_t stitched_bitrate;                 // 0: 8,000,000
  int remove_purple;
  const uint8_t* logo;  // at the nadir: red, green, blue and straight alpha, rows without gaps
  int32_t logo_width, logo_height;
  double logo_angle;
} zel_stream_options;

// Streams pictures and sound, and waits for the first picture. One stream at a time; options: NULL for the defaults.
// It goes on when the camera was lost and has come back. A time limit of 0 is 10 s.
//
// Owner:  free the stream with zel_stream_free().
//
// Errors: ZEL_INVALID beside another stream or format, or for an output that is none; ZEL_MEDIA where no picture or no
//         sound comes in time.
ZEL_EXPORT zel_status zel_stream_start(zel_camera* camera, const zel_stream_options* options, int time_limit,
                                       zel_stream** stream, zel_error* error);
// Ends it and its outputs: files are written wholly, servers get five seconds. Its reports stay.
ZEL_EXPORT zel_status zel_stream_stop(zel_stream* stream, zel_error* error);
// Ends it, and waits as zel_stream_stop() does.
ZEL_EXPORT zel_status zel_stream_free(zel_stream* stream);

// What a receiver must know before the first packet. The parameter sets have no start code; the sound is AAC-LC.
//
// Owner:  the stream; the bytes are valid until it is freed.
typedef struct zel_stream_headers {
  size_t size;
  int32_t width, height;
  int spherical;  // 1: equirectangular, and the whole sphere
  const uint8_t* sps;
  size_t sps_length;
  const uint8_t* pps;
  size_t pps_length;
  const uint8_t* audio_config;  // AudioSpecificConfig
  size_t audio_config_length;
} zel_stream_headers;

ZEL_EXPORT zel_status zel_stream_get_headers(zel_stream* stream, zel_stream_headers* headers, zel_error* error);

// What was handed on, over all connections.
typedef struct zel_stream_statistics {
  size_t size;
  uint64_t pictures, audio_frames;
  uint64_t video_bytes, audio_bytes;
  uint64_t dropped_audio;
} zel_stream_statistics;

ZEL_EXPORT zel_status zel_stream_get_statistics(zel_stream* stream, zel_stream_statistics* statistics,
                                                zel_error* error);

// What an output is doing.
typedef enum zel_output_state {
  ZEL_OUTPUT_WAITING = 0,     // the stream's headers have not come
  ZEL_OUTPUT_CONNECTING = 1,  // its file is being opened, or its server reached
  ZEL_OUTPUT_WRITING = 2,
  ZEL_OUTPUT_RETRYING = 3,  // lost its server, and waits before the next attempt
  ZEL_OUTPUT_FINISHED = 4,
  ZEL_OUTPUT_FAILED = 5  // given up; `fault` says why
} zel_output_state;

// What has become of an output. Texts that are too long are cut.
//
// Units: milliseconds of latency; -1 where it is not known.
typedef struct zel_output_report {
  size_t size;
  int id;
  zel_output_state state;
  uint64_t pictures, audio_frames, bytes;  // written
  uint64_t dropped;                        // packets that came and were not written
  int connections;
  int median_latency, latency_99;  // that half of the pictures, and 99 in 100, did not exceed
  char name[256];
  char fault[512];  // empty where there is none
} zel_output_report;

// Adds an output, a file as "film.mp4" or a server as "rtmp://server/live/key"; it begins with the next key picture.
// Gives its number.
ZEL_EXPORT zel_status zel_stream_add_output(zel_stream* stream, const char* address, int* id, zel_error* error);
// Ends it, and waits as zel_stream_stop() does. report: NULL where it is not wanted.
ZEL_EXPORT zel_status zel_stream_remove_output(zel_stream* stream, int id, zel_output_report* report, zel_error* error);
// The number of the output at that index, in the order in which they were added.
//
// Errors: ZEL_INVALID beyond the last one.
ZEL_EXPORT zel_status zel_stream_get_output(zel_stream* stream, size_t index, zel_output_report* report,
                                            zel_error* error);

// The two tracks of a stream.
typedef enum zel_track {
  ZEL_VIDEO = 0,  // H.264
  ZEL_AUDIO = 1   // AAC-LC
} zel_track;

// One whole picture, all its slices with start codes of four bytes, or one AAC frame without ADTS header.
//
// Units: microseconds since the stream's first picture.
//
// Owner:  the packet; the bytes are valid until it is freed, also after zel_close().
typedef struct zel_packet_data {
  size_t size;
  zel_track track;
  int key;            // 1: a picture from which decoding can begin
  int discontinuity;  // 1: the first of its track after a new connection, or after the camera's clock was set
  int64_t time;
  const uint8_t* data;
  size_t length;
} zel_packet_data;

// Owner:  the callback, or whoever it gives the packet to, frees it with zel_packet_free().
typedef void (*zel_packet_callback)(void* user, zel_packet* packet);
// Thread: as all callbacks. The problem is valid until the callback returns.
typedef void (*zel_problem_callback)(void* user, const zel_error* problem);

// The packets from the next key picture on, and what goes wrong while the stream runs: ZEL_LOST, after which it goes on
// by itself, and ZEL_MEDIA, which ends it. The rest is as with zel_events().
ZEL_EXPORT zel_status zel_stream_packets(zel_stream* stream, const zel_queue_options* queue,
                                         zel_packet_callback callback, void* user, zel_subscription** subscription,
                                         zel_error* error);
ZEL_EXPORT zel_status zel_stream_problems(zel_stream* stream, const zel_queue_options* queue,
                                          zel_problem_callback callback, void* user, zel_subscription** subscription,
                                          zel_error* error);
// Owner:  free the packet with zel_packet_free().
ZEL_EXPORT zel_status zel_next_packet(zel_subscription* subscription, int time_limit, zel_packet** packet,
                                      zel_error* error);
ZEL_EXPORT zel_status zel_next_problem(zel_subscription* subscription, int time_limit, zel_error* problem,
                                       zel_error* error);
ZEL_EXPORT zel_status zel_packet_get(zel_packet* packet, zel_packet_data* data, zel_error* error);
ZEL_EXPORT zel_status zel_packet_free(zel_packet* packet);

#ifdef __cplusplus
}
#endif
