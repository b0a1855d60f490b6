#pragma once

#include <stddef.h>
#include <stdint.h>

#include <ZELTarkaSDK/platform/export.h>
#include <ZELTarkaSDK/zel_begin.h>
#include <ZELTarkaSDK/zel_begin_requests.h>
#include <ZELTarkaSDK/zel_link.h>
#include <ZELTarkaSDK/zel_media.h>
#include <ZELTarkaSDK/zel_records.h>
#include <ZELTarkaSDK/zel_requests.h>
#include <ZELTarkaSDK/zel_status.h>
#include <ZELTarkaSDK/zel_stitch.h>

// A camera for programs in C, and for languages that call C: zel::Camera, call by call. docs/c.md begins with a
// program.
//
//   zel_camera* camera;
//   zel_error error = {.size = sizeof error};
//   if (zel_open(NULL, &camera, &error) != ZEL_OK) return puts(error.message), 1;
//   zel_battery_result battery = {.size = sizeof battery};
//   zel_status status = zel_battery(camera, 0, &battery, &error);
//   zel_close(camera);
//
// Every call takes where it is to tell an error, or NULL. A time limit is in milliseconds; 0 is the camera's own for a
// request, and none for zel_next_...(). What a call gives is untouched where the call fails.
//
// Thread: any thread, for every call. Calls that wait must not be made inside a callback on the camera's thread; they
//         give ZEL_INVALID there.

#ifdef __cplusplus
extern "C" {
#endif

// Gets sentences that no call tells: about the bus's folder, a camera that another has, an output.
//
// Thread: any thread, and it must call nothing here; with zel_options.dispatch that of zel_dispatch().
typedef void (*zel_log_callback)(void* user, const char* sentence);

// Which camera is opened, and how. Zero and NULL are the default of every member.
//
// Units: milliseconds.
typedef struct zel_options {
  size_t size;
  const char* serial_number;  // the one camera; NULL: the first that is attached
  int open_time_limit;        // 0: 10 s
  int time_limit;             // of requests; 0: 5 s
  int transfer_time_limit;    // of photos and files; 0: 60 s
  int dispatch;               // 1: callbacks run in zel_dispatch() alone; 0: on the camera's thread
  const char* accessories_folder;
  const char* program;   // what others are told that has the camera; NULL: this program's name
  int decoder_threads;   // 0: 1
  zel_log_callback log;  // NULL: the standard error
  void* log_user;
  int direct;  // 1: a session of its own with the camera, never through a gateway
} zel_options;

// Finds the camera and waits for its first frame. options: NULL for the defaults.
//
// Owner:  close the camera with zel_close() before the program ends.
//
// Errors: ZEL_NO_CAMERA, ZEL_SILENT, ZEL_IN_USE at once, ZEL_PLATFORM where the system refuses a folder or a thread.
ZEL_EXPORT zel_status zel_open(const zel_options* options, zel_camera** camera, zel_error* error);

// Ends the camera: waiting calls give ZEL_CLOSED, streams and subscriptions end, and no callback runs any more. It
// waits for a callback in progress, except inside a callback. What the camera gave stays until it is freed itself.
//
// Errors: ZEL_CLOSED for a camera that was closed before. NULL is allowed.
ZEL_EXPORT zel_status zel_close(zel_camera* camera);

// -- A loop of one's own

// A descriptor that can be read, as poll() and epoll tell it, while callbacks wait for zel_dispatch(). It is the
// camera's: do not read or close it; it is gone with the camera.
//
// Errors: ZEL_INVALID without zel_options.dispatch.
ZEL_EXPORT zel_status zel_descriptor(zel_camera* camera, int* descriptor, zel_error* error);

// Runs the callbacks that wait, on this thread, and returns. Callbacks may call everything, also zel_close() and calls
// that wait.
//
// Errors: ZEL_INVALID without zel_options.dispatch.
ZEL_EXPORT zel_status zel_dispatch(zel_camera* camera, zel_error* error);

// -- What it is

typedef enum zel_identity {
  ZEL_SERIAL_NUMBER = 0,
  ZEL_NAME = 1,
  ZEL_MANUFACTURER = 2,
  ZEL_MODEL_NUMBER = 3,
  ZEL_FIRMWARE_REVISION = 4,
  ZEL_HARDWARE_REVISION = 5
} zel_identity;

// What it told of itself at its latest connection. which: a zel_identity.
//
// Owner:  free the text with zel_free().
ZEL_EXPORT zel_status zel_get_identity(zel_camera* camera, int which, char** text, zel_error* error);

// -- Events, and the states of the link

// What the camera tells by itself. The comment of each says its numbers; those that it did not send are 0.
typedef enum zel_event_type {
  ZEL_FIRMWARE_UPDATE_DONE = 0,
  ZEL_RECORD_AUTO_SPLIT = 1,  // file time, file size; text: file name
  ZEL_BATTERY_UPDATE = 2,     // power type, level
  ZEL_BATTERY_LOW = 3,        // level
  ZEL_BATTERY_SHUT_DOWN = 4,  // level
  ZEL_CARD_STATE = 5,         // state
  ZEL_KEY_PRESSED = 7,        // key
  ZEL_LENS_OFFSET = 8,        // a number; text: the lens offset
  ZEL_RECORD_CARD_FULL = 9,   // as ZEL_RECORD_AUTO_SPLIT
  ZEL_RECORD_TIME_OVER = 10,  // as ZEL_RECORD_AUTO_SPLIT
  ZEL_GYRO_DATA = 11,
  ZEL_SHUTTER_STATE = 12,   // state
  ZEL_DELETE_PROGRESS = 13  // three numbers
} zel_event_type;

// An event. In a callback the text is valid until the callback returns; zel_next_event() gives one to be freed with
// zel_free().
typedef struct zel_event {
  size_t size;
  int64_t type;  // a zel_event_type; cameras to come may send others
  int64_t numbers[3];
  char* text;  // NULL where there is none
  int failed;  // 1: the firmware update failed
} zel_event;

typedef void (*zel_event_callback)(void* user, const zel_event* event);
typedef void (*zel_link_callback)(void* user, zel_link_state state);

// A subscription to what follows: each goes to the callback or, where that is NULL, is kept for zel_next_...(). The
// subscription is there before the first callback. queue: NULL for the default.
//
// Owner:  free the subscription with zel_subscription_free().
ZEL_EXPORT zel_status zel_events(zel_camera* camera, const zel_queue_options* queue, zel_event_callback callback,
                                 void* user, zel_subscription** subscription, zel_error* error);
ZEL_EXPORT zel_status zel_link_changes(zel_camera* camera, const zel_queue_options* queue, zel_link_callback callback,
                                       void* user, zel_subscription** subscription, zel_error* error);

// Waits for the next one.
//
// Errors: ZEL_TIME_LIMIT; ZEL_CLOSED where nothing follows any more; ZEL_INVALID for a subscription with a callback.
ZEL_EXPORT zel_status zel_next_event(zel_subscription* subscription, int time_limit, zel_event* event,
                                     zel_error* error);
ZEL_EXPORT zel_status zel_next_link_state(zel_subscription* subscription, int time_limit, zel_link_state* state,
                                          zel_error* error);

#ifdef __cplusplus
}
#endif
