#pragma once

#include <stddef.h>
#include <stdint.h>

#include <ZELTarkaSDK/platform/export.h>
#include <ZELTarkaSDK/zel_status.h>

// Panoramas of decoded pictures. Programs include zel.h.

#ifdef __cplusplus
extern "C" {
#endif

// How pictures are stitched. Zero and NULL are the default of every member but the offset.
//
// Units: pixels, both sides even; degrees.
typedef struct zel_stitch_options {
  size_t size;
  const char* offset;     // the lens offset of the camera that took them, as zel_lens_offset() gives it
  int32_t width, height;  // 0: 1920 x 960
  int remove_purple;
  const uint8_t* logo;  // at the nadir: red, green, blue and straight alpha, rows without gaps
  int32_t logo_width, logo_height;
  double logo_angle;
} zel_stitch_options;

// Makes what stitches pictures of the camera, one at a time. It outlives the camera.
//
// Owner:  free it with zel_stitcher_free().
//
// Errors: ZEL_INVALID without an offset, or for a size that cannot be stitched.
ZEL_EXPORT zel_status zel_stitcher_new(zel_camera* camera, const zel_stitch_options* options, zel_stitcher** stitcher,
                                       zel_error* error);

// Stitches a picture of both lenses into an equirectangular one of the whole sphere, with the same time. It takes
// milliseconds of several processors.
//
// Owner:  free the new picture with zel_picture_free().
//
// Thread: any thread; calls on one stitcher wait for each other.
//
// Errors: ZEL_MEDIA where the offset cannot be read, or the picture cannot be stitched.
ZEL_EXPORT zel_status zel_stitch(zel_stitcher* stitcher, zel_picture* picture, zel_picture** stitched,
                                 zel_error* error);

ZEL_EXPORT zel_status zel_stitcher_free(zel_stitcher* stitcher);

#ifdef __cplusplus
}
#endif
