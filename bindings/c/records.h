#pragma once

#include <ZELTarkaSDK/ZELCameraRecords.h>
#include <ZELTarkaSDK/zel_records.h>

// The camera's records as C has them, and back.

namespace zel::c {

ZELGpsData wire(const zel_gps_data& from);
ZELGyroData wire(const zel_gyro_data& from);
ZELOrientationData wire(const zel_orientation_data& from);
ZELIPMEParam wire(const zel_manual_exposure& from);
ZELIPAEMMWeight wire(const zel_metering_weights& from);
calib_wb_gain wire(const zel_white_balance_gain_data& from);
calib_vignette_luma wire(const zel_vignette_luma_data& from);
calib_vignette_gain wire(const zel_vignette_gain_data& from);
timelapse_info wire(const zel_timelapse_info& from);
ZELOriginOffset wire(const zel_origin_offset_data& from);

zel_white_balance_gain_data native(const calib_wb_gain& from);
zel_vignette_luma_data native(const calib_vignette_luma& from);
zel_vignette_gain_data native(const calib_vignette_gain& from);
zel_timelapse_info native(const timelapse_info& from);
zel_origin_offset_data native(const ZELOriginOffset& from);
zel_video_info native(const ZELVideoMnd& from);

}  // namespace zel::c
