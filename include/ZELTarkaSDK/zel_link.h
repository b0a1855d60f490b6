#pragma once

#include <stddef.h>
#include <stdint.h>

#include <ZELTarkaSDK/platform/export.h>
#include <ZELTarkaSDK/zel_status.h>

// The link to the camera: its state, and what it has carried. Programs include zel.h.

#ifdef __cplusplus
extern "C" {
#endif

// How far the link to the camera has come.
typedef enum zel_link_state {
  ZEL_LINK_CLOSED = 0,   // no connection
  ZEL_LINK_OPEN = 1,     // a session is open, and no frame has come yet
  ZEL_LINK_FLOWING = 2,  // frames arrive: the camera can be asked
  ZEL_LINK_SILENT = 3    // frames have stopped; the next one makes it flowing again
} zel_link_state;

ZEL_EXPORT zel_status zel_get_link_state(zel_camera* camera, zel_link_state* state, zel_error* error);

// Types of the frames that a camera sends; indices of zel_link_statistics. 5 and 6 stay empty.
typedef enum zel_frame_type {
  ZEL_FRAME_OTHER = 0,  // of a type that is not known
  ZEL_FRAME_PREVIEW_VIDEO = 1,
  ZEL_FRAME_PREVIEW_AUDIO = 2,
  ZEL_FRAME_PHOTO = 3,
  ZEL_FRAME_MESSAGE = 4,
  ZEL_FRAME_REGISTERED = 7,
  ZEL_FRAME_TIMESTAMP = 8,
  ZEL_FRAME_FILE = 9,
  ZEL_FRAME_TYPES = 10  // how many indices there are
} zel_frame_type;

// Counters since the camera was opened, over all its connections. Dropped frames count as received too.
//
// Units: frames; bytes of whole frames, headers included; milliseconds.
typedef struct zel_link_statistics {
  size_t size;
  uint64_t frames[ZEL_FRAME_TYPES];  // by type
  uint64_t bytes[ZEL_FRAME_TYPES];
  uint64_t bytes_received;   // all bytes read from the stream
  uint64_t bytes_discarded;  // before a marker, without the marker itself
  uint64_t bytes_written;    // that the stream to the camera has taken
  uint64_t bytes_to_write;   // that wait for the stream to the camera
  uint64_t markers_found;    // how often the stream was synchronised
  uint64_t positions_lost;   // impossible lengths of frames, each of which opened the session again
  uint64_t stream_errors;    // each of which opened the session again
  uint64_t lost_for_memory;  // requests and answers for which there was no memory, and nobody could be told
  int64_t round_trip;        // of the last time synchronisation; -1 before the first
  int32_t resends_left;      // of the time synchronisation
  uint64_t dropped_unknown_type;
  uint64_t dropped_no_consumer;        // nobody had asked for what it carries
  uint64_t dropped_unregistered_code;  // a message that is no answer
  uint64_t dropped_short_message;      // a message that is too short for its code
  uint64_t dropped_unregistered_data;  // of type ZEL_FRAME_REGISTERED
  uint64_t dropped_short_timestamp;
  uint64_t dropped_timestamp_old_firmware;  // from firmware that sends none
  uint64_t dropped_no_memory;
} zel_link_statistics;

ZEL_EXPORT zel_status zel_get_link_statistics(zel_camera* camera, zel_link_statistics* statistics, zel_error* error);

#ifdef __cplusplus
}
#endif
