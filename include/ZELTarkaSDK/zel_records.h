#pragma once

#include <stddef.h>
#include <stdint.h>

// The camera's records with the numbers of the host. Numbers whose meaning only the camera knows are passed through.

#ifdef __cplusplus
extern "C" {
#endif

// Where a picture is taken.
//
// Units: degrees, degrees, metres.
typedef struct zel_gps_data {
  size_t size;
  double latitude, longitude, altitude;
} zel_gps_data;

// Acceleration and rotation along the three axes, in the camera's units.
typedef struct zel_gyro_data {
  size_t size;
  float ax, ay, az, gx, gy, gz;
} zel_gyro_data;

// Orientation as a quaternion in the camera's integer units.
typedef struct zel_orientation_data {
  size_t size;
  int32_t x, y, z, w;
} zel_orientation_data;

// Manual exposure.
typedef struct zel_manual_exposure {
  size_t size;
  uint8_t value1, value2;
} zel_manual_exposure;

// Weights of the exposure meter's fields.
typedef struct zel_metering_weights {
  size_t size;
  uint8_t weights[96];
} zel_metering_weights;

// White-balance calibration.
typedef struct zel_white_balance_gain_data {
  size_t size;
  uint8_t value1, value2;
  int16_t gains[4];
} zel_white_balance_gain_data;

// Vignette calibration: luma.
typedef struct zel_vignette_luma_data {
  size_t size;
  uint8_t value1, value2;
  int16_t lumas[2];
} zel_vignette_luma_data;

// Vignette calibration: gain.
typedef struct zel_vignette_gain_data {
  size_t size;
  uint8_t value1, value2;
  int16_t gains[6];
} zel_vignette_gain_data;

// Time-lapse recording.
typedef struct zel_timelapse_info {
  size_t size;
  uint32_t value1;
  uint8_t value2, value3;
  uint8_t exposure1, exposure2;  // manual exposure
} zel_timelapse_info;

// One lens: six values in thousandths, and two unused values.
typedef struct zel_lens_data {
  int32_t p[6];
  int32_t reserved[2];
} zel_lens_data;

// The geometry of the two lenses; only the renderer interprets the numbers.
typedef struct zel_lens_offset_data {
  size_t size;
  uint16_t value_a, value_b;
  uint32_t value_c;
  uint8_t lens_count;  // 0 to 2
  uint8_t reserved1;
  uint16_t reserved2;
  uint32_t reserved3;
  zel_lens_data lenses[2];
} zel_lens_offset_data;

// The first three values of each lens and the two leading header values.
typedef struct zel_origin_offset_data {
  size_t size;
  int32_t lens0[3], lens1[3];
  uint16_t value_a, value_b;
} zel_origin_offset_data;

// Metadata of a recorded video.
typedef struct zel_video_info {
  size_t size;
  uint8_t head[8];
  uint64_t value;
  zel_lens_offset_data offset;  // the sizes of these four are set with the values
  zel_gps_data position;
  zel_gyro_data motion;
  zel_orientation_data orientation;
  uint8_t tail[32];
} zel_video_info;

#ifdef __cplusplus
}
#endif
