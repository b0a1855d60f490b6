#pragma once

#include <ZELTarkaSDK/zel.h>
#include <stdio.h>

// What a program in C does with a camera that the tests have attached. Each gives NULL, or what was not as it should
// be.

#ifdef __cplusplus
extern "C" {
#endif

extern char fault[1024];

#define CHECK(condition)                                                                  \
  do {                                                                                    \
    if (condition) break;                                                                 \
    snprintf(fault, sizeof fault, "%s:%d: not true: %s", __FILE__, __LINE__, #condition); \
    return fault;                                                                         \
  } while (0)

// The call succeeds; where not, the fault has its sentence.
#define CHECK_OK(call, error)                                                                          \
  do {                                                                                                 \
    if ((call) == ZEL_OK) break;                                                                       \
    snprintf(fault, sizeof fault, "%s:%d: %s failed: %s", __FILE__, __LINE__, #call, (error).message); \
    return fault;                                                                                      \
  } while (0)

const char* requests_of_every_shape(zel_camera* camera);
const char* records_come_back(zel_camera* camera);
const char* a_recording_tells_its_name(zel_camera* camera);
const char* the_identity(zel_camera* camera);

const char* wrong_arguments(zel_camera* camera);
const char* wrong_handles(zel_camera* camera);
const char* wrong_sizes(zel_camera* camera);
const char* later_versions(zel_camera* camera);
const char* calls_after_close(zel_camera* camera);

const char* photos(zel_camera* camera);
const char* brackets(zel_camera* camera);
const char* uploads(zel_camera* camera);
const char* pictures_outlive_the_camera(zel_camera* camera);
const char* streams(zel_camera* camera, const char* first_file, const char* second_file);
const char* a_stream_after_close(zel_camera* camera);

#ifdef __cplusplus
}
#endif
