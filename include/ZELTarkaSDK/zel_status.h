#pragma once

#include <stddef.h>
#include <stdint.h>

#include <ZELTarkaSDK/platform/export.h>

// What every call in C has in common: handles, results, sizes and memory. Programs include zel.h.

#ifdef __cplusplus
extern "C" {
#endif

// Handles. Each stands for an object until it is closed or freed, and is never given again: a call with one that is
// gone gives ZEL_CLOSED, a call with one of another kind ZEL_INVALID.
typedef struct zel_camera zel_camera;
typedef struct zel_stream zel_stream;
typedef struct zel_subscription zel_subscription;
typedef struct zel_photo zel_photo;
typedef struct zel_picture zel_picture;
typedef struct zel_packet zel_packet;
typedef struct zel_call zel_call;
typedef struct zel_stitcher zel_stitcher;

// Why a call gave nothing.
typedef enum zel_status {
  ZEL_OK = 0,
  ZEL_NO_CAMERA = 1,     // none is attached, or not the one that was asked for
  ZEL_IN_USE = 2,        // another process has it
  ZEL_SILENT = 3,        // it is attached and sends nothing
  ZEL_LOST = 4,          // the link is down; also where it went down while the call waited
  ZEL_REFUSED = 5,       // the camera refused, or its answer cannot be read
  ZEL_OLD_FIRMWARE = 6,  // the camera's firmware is too old
  ZEL_TIME_LIMIT = 7,    // no answer within the time limit
  ZEL_CANCELLED = 8,     // the call was given up
  ZEL_CLOSED = 9,        // the camera, the stream or the subscription has ended
  ZEL_INVALID = 10,      // the call itself is wrong: an argument, or a wait for oneself
  ZEL_MEDIA = 11,        // pictures or sound cannot be had, decoded, stitched or encoded
  ZEL_PLATFORM = 12      // the host's system refused: a folder, a thread, memory
} zel_status;

// A zel_status in words for people; "unknown" for any other number.
ZEL_EXPORT const char* zel_status_text(int status);

// What went wrong. Every struct whose address a call takes begins with its size, so that later versions can add
// members: set it to sizeof, and everything else of a struct that is passed in to zero where it is not needed.
//
//   zel_error error = {.size = sizeof error};
//
// Errors: a size that is too small or unlikely gives ZEL_INVALID.
typedef struct zel_error {
  size_t size;
  zel_status status;
  int64_t code;       // of the camera's error, in its domain
  char domain[64];    // see ZELError.h; empty where there is none
  char message[512];  // a sentence: what was wrong and, where it helps, what to do
} zel_error;

// Frees a text or bytes that a call gave. NULL is allowed.
ZEL_EXPORT void zel_free(void* memory);

// The version of the library at run time, such as "0.2.0".
ZEL_EXPORT const char* zel_version(void);

#ifdef __cplusplus
}
#endif
