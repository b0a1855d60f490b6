#pragma once

#include <array>
#include <cstddef>

#include <ZELTarkaSDK/WireNumber.h>
#include <ZELTarkaSDK/ZELMediaOffset.h>

// Records in the camera's messages. Their memory is their wire form. A field without a meaningful name is passed
// through; only the camera knows its meaning.

// Where a picture is taken.
// Units:  degrees, degrees, metres.
struct ZELGpsData {
  zel::F64 latitude;   //  0
  zel::F64 longitude;  //  8
  zel::F64 altitude;   // 16

  bool operator==(const ZELGpsData&) const = default;
};
static_assert(zel::WireRecord<ZELGpsData> && sizeof(ZELGpsData) == 24);
static_assert(offsetof(ZELGpsData, longitude) == 8 && offsetof(ZELGpsData, altitude) == 16);

// Acceleration and rotation along the three axes, in the camera's units.
struct ZELGyroData {
  zel::F32 ax;  //  0
  zel::F32 ay;  //  4
  zel::F32 az;  //  8
  zel::F32 gx;  // 12
  zel::F32 gy;  // 16
  zel::F32 gz;  // 20

  bool operator==(const ZELGyroData&) const = default;
};
static_assert(zel::WireRecord<ZELGyroData> && sizeof(ZELGyroData) == 24);
static_assert(offsetof(ZELGyroData, gx) == 12 && offsetof(ZELGyroData, gz) == 20);

// Orientation as a quaternion in the camera's integer units.
struct ZELOrientationData {
  zel::S32 x;  //  0
  zel::S32 y;  //  4
  zel::S32 z;  //  8
  zel::S32 w;  // 12

  bool operator==(const ZELOrientationData&) const = default;
};
static_assert(zel::WireRecord<ZELOrientationData> && sizeof(ZELOrientationData) == 16);
static_assert(offsetof(ZELOrientationData, w) == 12);

// An exposure bracket: how many pictures, and the exposure step of each.
struct aeb_info {
  zel::U8 count;                 // 0
  std::array<zel::S8, 9> steps;  // 1

  bool operator==(const aeb_info&) const = default;
};
static_assert(zel::WireRecord<aeb_info> && sizeof(aeb_info) == 10);
static_assert(offsetof(aeb_info, steps) == 1);

// Manual exposure.
struct ZELIPMEParam {
  zel::U8 value1;  // 0
  zel::U8 value2;  // 1

  bool operator==(const ZELIPMEParam&) const = default;
};
static_assert(zel::WireRecord<ZELIPMEParam> && sizeof(ZELIPMEParam) == 2);

// Weights of the exposure meter's fields.
struct ZELIPAEMMWeight {
  std::array<zel::U8, 96> weights;

  bool operator==(const ZELIPAEMMWeight&) const = default;
};
static_assert(zel::WireRecord<ZELIPAEMMWeight> && sizeof(ZELIPAEMMWeight) == 96);

// White-balance calibration.
struct calib_wb_gain {
  zel::U8 value1;                 // 0
  zel::U8 value2;                 // 1
  std::array<zel::S16, 4> gains;  // 2

  bool operator==(const calib_wb_gain&) const = default;
};
static_assert(zel::WireRecord<calib_wb_gain> && sizeof(calib_wb_gain) == 10);
static_assert(offsetof(calib_wb_gain, gains) == 2);

// Vignette calibration: luma.
struct calib_vignette_luma {
  zel::U8 value1;                 // 0
  zel::U8 value2;                 // 1
  std::array<zel::S16, 2> lumas;  // 2

  bool operator==(const calib_vignette_luma&) const = default;
};
static_assert(zel::WireRecord<calib_vignette_luma> && sizeof(calib_vignette_luma) == 6);
static_assert(offsetof(calib_vignette_luma, lumas) == 2);

// Vignette calibration: gain.
struct calib_vignette_gain {
  zel::U8 value1;                 // 0
  zel::U8 value2;                 // 1
  std::array<zel::S16, 6> gains;  // 2

  bool operator==(const calib_vignette_gain&) const = default;
};
static_assert(zel::WireRecord<calib_vignette_gain> && sizeof(calib_vignette_gain) == 14);
static_assert(offsetof(calib_vignette_gain, gains) == 2);

// Time-lapse recording.
struct timelapse_info {
  zel::U32 value1;        // 0
  zel::U8 value2;         // 4
  zel::U8 value3;         // 5
  ZELIPMEParam exposure;  // 6

  bool operator==(const timelapse_info&) const = default;
};
static_assert(zel::WireRecord<timelapse_info> && sizeof(timelapse_info) == 8);
static_assert(offsetof(timelapse_info, value2) == 4 && offsetof(timelapse_info, exposure) == 6);

// Metadata of a recorded video.
struct ZELVideoMnd {
  std::array<zel::U8, 8> head;     //   0  carried, not read
  zel::U64 value;                  //   8  carried, not read
  ZELMediaOffset offset;           //  16
  ZELGpsData gps;                  //  96
  ZELGyroData gyro;                // 120
  ZELOrientationData orientation;  // 144
  std::array<zel::U8, 32> tail;    // 160  carried, not read

  bool operator==(const ZELVideoMnd&) const = default;
};
static_assert(zel::WireRecord<ZELVideoMnd> && sizeof(ZELVideoMnd) == 192);
static_assert(offsetof(ZELVideoMnd, value) == 8 && offsetof(ZELVideoMnd, offset) == 16);
static_assert(offsetof(ZELVideoMnd, gps) == 96 && offsetof(ZELVideoMnd, gyro) == 120);
static_assert(offsetof(ZELVideoMnd, orientation) == 144 && offsetof(ZELVideoMnd, tail) == 160);
