#include "bindings/c/records.h"

#include <algorithm>
#include <iterator>

namespace zel::c {
namespace {

// Numbers one by one, between the wire's form and the host's.
template <class From, class To>
void copyNumbers(const From& from, To& to) {
  static_assert(sizeof(from) == sizeof(to));
  std::copy(std::begin(from), std::end(from), std::begin(to));
}

zel_lens_offset_data nativeOffset(const ZELMediaOffset& from) {
  zel_lens_offset_data to{};
  to.size = sizeof to;
  to.value_a = from.valueA;
  to.value_b = from.valueB;
  to.value_c = from.valueC;
  to.lens_count = from.lensCount;
  to.reserved1 = from.reserved1;
  to.reserved2 = from.reserved2;
  to.reserved3 = from.reserved3;
  for (std::size_t lens = 0; lens < from.lenses.size(); ++lens) {
    copyNumbers(from.lenses[lens].p, to.lenses[lens].p);
    copyNumbers(from.lenses[lens].reserved, to.lenses[lens].reserved);
  }
  return to;
}

}  // namespace

ZELGpsData wire(const zel_gps_data& from) { return {from.latitude, from.longitude, from.altitude}; }
ZELGyroData wire(const zel_gyro_data& from) { return {from.ax, from.ay, from.az, from.gx, from.gy, from.gz}; }
ZELOrientationData wire(const zel_orientation_data& from) { return {from.x, from.y, from.z, from.w}; }
ZELIPMEParam wire(const zel_manual_exposure& from) { return {from.value1, from.value2}; }

ZELIPAEMMWeight wire(const zel_metering_weights& from) {
  ZELIPAEMMWeight to;
  copyNumbers(from.weights, to.weights);
  return to;
}

calib_wb_gain wire(const zel_white_balance_gain_data& from) {
  calib_wb_gain to{from.value1, from.value2, {}};
  copyNumbers(from.gains, to.gains);
  return to;
}

calib_vignette_luma wire(const zel_vignette_luma_data& from) {
  calib_vignette_luma to{from.value1, from.value2, {}};
  copyNumbers(from.lumas, to.lumas);
  return to;
}

calib_vignette_gain wire(const zel_vignette_gain_data& from) {
  calib_vignette_gain to{from.value1, from.value2, {}};
  copyNumbers(from.gains, to.gains);
  return to;
}

timelapse_info wire(const zel_timelapse_info& from) {
  return {from.value1, from.value2, from.value3, {from.exposure1, from.exposure2}};
}

ZELOriginOffset wire(const zel_origin_offset_data& from) {
  ZELOriginOffset to{{}, {}, from.value_a, from.value_b};
  copyNumbers(from.lens0, to.lens0);
  copyNumbers(from.lens1, to.lens1);
  return to;
}

zel_white_balance_gain_data native(const calib_wb_gain& from) {
  zel_white_balance_gain_data to{};
  to.value1 = from.value1;
  to.value2 = from.value2;
  copyNumbers(from.gains, to.gains);
  return to;
}

zel_vignette_luma_data native(const calib_vignette_luma& from) {
  zel_vignette_luma_data to{};
  to.value1 = from.value1;
  to.value2 = from.value2;
  copyNumbers(from.lumas, to.lumas);
  return to;
}

zel_vignette_gain_data native(const calib_vignette_gain& from) {
  zel_vignette_gain_data to{};
  to.value1 = from.value1;
  to.value2 = from.value2;
  copyNumbers(from.gains, to.gains);
  return to;
}

zel_timelapse_info native(const timelapse_info& from) {
  return {0, from.value1, from.value2, from.value3, from.exposure.value1, from.exposure.value2};
}

zel_origin_offset_data native(const ZELOriginOffset& from) {
  zel_origin_offset_data to{};
  copyNumbers(from.lens0, to.lens0);
  copyNumbers(from.lens1, to.lens1);
  to.value_a = from.valueA;
  to.value_b = from.valueB;
  return to;
}

zel_video_info native(const ZELVideoMnd& from) {
  zel_video_info to{};
  copyNumbers(from.head, to.head);
  to.value = from.value;
  to.offset = nativeOffset(from.offset);
  to.position = {sizeof to.position, from.gps.latitude, from.gps.longitude, from.gps.altitude};
  to.motion = {sizeof to.motion, from.gyro.ax, from.gyro.ay, from.gyro.az, from.gyro.gx, from.gyro.gy, from.gyro.gz};
  to.orientation = {sizeof to.orientation, from.orientation.x, from.orientation.y, from.orientation.z,
                    from.orientation.w};
  copyNumbers(from.tail, to.tail);
  return to;
}

}  // namespace zel::c
