#pragma once

#include <stddef.h>
#include <stdint.h>

#include <ZELTarkaSDK/platform/export.h>
#include <ZELTarkaSDK/zel_link.h>
#include <ZELTarkaSDK/zel_media.h>
#include <ZELTarkaSDK/zel_status.h>

// Calls that are begun, and call back when they have ended: zel_begin_...() for each call that waits for the camera.
// Programs include zel.h.
//
//   static void done(void* user, zel_status status, const zel_error* error) { ... }
//   zel_call* call = NULL;
//   zel_begin_battery(camera, 0, &battery, done, NULL, &call, &error);
//   ...
//   zel_call_free(call);
//
// The parameters are those of the call that waits. What that would have given stands where `out` and its like point
// before the callback runs, and is owned as there.
//
// Owner:  what the parameters point to is copied, but for where the result goes: that must live until the callback has
//         run or the call was freed. Every call that was begun is freed with zel_call_free().
//
// Thread: any thread, inside callbacks too. The callback runs where all callbacks do, once.
//
// Errors: of the arguments at once; then nothing was begun, and the callback does not run. All others in the callback.

#ifdef __cplusplus
extern "C" {
#endif

struct zel_options;
struct zel_event;

// The call has ended. error: as calls that wait tell it, valid until the callback returns.
typedef void (*zel_done_callback)(void* user, zel_status status, const zel_error* error);

// Gives the call up: its callback gets ZEL_CANCELLED, unless its result is there. What the camera was asked to do it
// may still do.
ZEL_EXPORT zel_status zel_call_cancel(zel_call* call, zel_error* error);

// Gives the call up where it has not ended. Afterwards its callback neither runs nor is running, and nothing is written
// to where its result goes; inside a callback this does not wait, and a callback in progress on another thread is then
// the last.
//
// Errors: ZEL_CLOSED for one that was freed before. NULL is allowed.
ZEL_EXPORT zel_status zel_call_free(zel_call* call);

// Opens a camera. Where the system refuses a folder or a thread the callback may run inside this call.
//
// Errors: ZEL_INVALID with zel_options.dispatch: only a camera that is open can dispatch callbacks.
ZEL_EXPORT zel_status zel_begin_open(const struct zel_options* options, zel_camera** camera, zel_done_callback callback,
                                     void* user, zel_call** call, zel_error* error);

// progress, of the options, runs where all callbacks do, and not after the call was freed.
ZEL_EXPORT zel_status zel_begin_take_photo(zel_camera* camera, const zel_capture_options* options, int time_limit,
                                           zel_photo** photo, zel_done_callback callback, void* user, zel_call** call,
                                           zel_error* error);
ZEL_EXPORT zel_status zel_begin_take_bracket(zel_camera* camera, const int8_t* steps, size_t count,
                                             const zel_capture_options* options, int time_limit, zel_photo** photo,
                                             zel_done_callback callback, void* user, zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_upload(zel_camera* camera, int64_t type, const char* path, const uint8_t* content,
                                       size_t length, zel_progress_callback progress, void* progress_user,
                                       int time_limit, zel_done_callback callback, void* user, zel_call** call,
                                       zel_error* error);
ZEL_EXPORT zel_status zel_begin_stream_start(zel_camera* camera, const zel_stream_options* options, int time_limit,
                                             zel_stream** stream, zel_done_callback callback, void* user,
                                             zel_call** call, zel_error* error);

// The next one of a subscription without a callback. Several that were begun get one after the other.
ZEL_EXPORT zel_status zel_begin_next_event(zel_subscription* subscription, int time_limit, struct zel_event* event,
                                           zel_done_callback callback, void* user, zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_next_link_state(zel_subscription* subscription, int time_limit, zel_link_state* state,
                                                zel_done_callback callback, void* user, zel_call** call,
                                                zel_error* error);
ZEL_EXPORT zel_status zel_begin_next_picture(zel_subscription* subscription, int time_limit, zel_picture** picture,
                                             zel_done_callback callback, void* user, zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_next_packet(zel_subscription* subscription, int time_limit, zel_packet** packet,
                                            zel_done_callback callback, void* user, zel_call** call, zel_error* error);
// problem: as zel_next_problem() gives it.
ZEL_EXPORT zel_status zel_begin_next_problem(zel_subscription* subscription, int time_limit, zel_error* problem,
                                             zel_done_callback callback, void* user, zel_call** call, zel_error* error);

#ifdef __cplusplus
}
#endif
