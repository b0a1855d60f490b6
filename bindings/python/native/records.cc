// Made from bindings/requests.toml and the headers for C by tools/bindings/generate.py.

#include "bindings/python/native/records.h"

#include "bindings/python/native/values.h"

namespace zel::python {

PyObject* toPython(const zel_battery_result& from) { return tupleOf(toPython(from.power_type), toPython(from.level)); }

PyObject* toPython(const zel_card_result& from) {
  return tupleOf(toPython(from.state), toPython(from.capacity_bytes), toPython(from.free_bytes));
}

PyObject* toPython(const zel_activation_time_result& from) {
  return tupleOf(toPython(from.seconds), toPython(from.time_zone_minutes_west));
}

PyObject* toPython(const zel_stored_file_result& from) {
  return tupleOf(toPython(from.time), toPython(from.size_bytes), toPython(from.name));
}

PyObject* toPython(const zel_gps_data& from) {
  return tupleOf(toPython(from.latitude), toPython(from.longitude), toPython(from.altitude));
}

PyObject* toPython(const zel_gyro_data& from) {
  return tupleOf(toPython(from.ax), toPython(from.ay), toPython(from.az), toPython(from.gx), toPython(from.gy),
                 toPython(from.gz));
}

PyObject* toPython(const zel_orientation_data& from) {
  return tupleOf(toPython(from.x), toPython(from.y), toPython(from.z), toPython(from.w));
}

PyObject* toPython(const zel_manual_exposure& from) { return tupleOf(toPython(from.value1), toPython(from.value2)); }

PyObject* toPython(const zel_metering_weights& from) { return tupleOf(toPython(from.weights)); }

PyObject* toPython(const zel_white_balance_gain_data& from) {
  return tupleOf(toPython(from.value1), toPython(from.value2), toPython(from.gains));
}

PyObject* toPython(const zel_vignette_luma_data& from) {
  return tupleOf(toPython(from.value1), toPython(from.value2), toPython(from.lumas));
}

PyObject* toPython(const zel_vignette_gain_data& from) {
  return tupleOf(toPython(from.value1), toPython(from.value2), toPython(from.gains));
}

PyObject* toPython(const zel_timelapse_info& from) {
  return tupleOf(toPython(from.value1), toPython(from.value2), toPython(from.value3), toPython(from.exposure1),
                 toPython(from.exposure2));
}

PyObject* toPython(const zel_lens_data& from) { return tupleOf(toPython(from.p), toPython(from.reserved)); }

PyObject* toPython(const zel_lens_offset_data& from) {
  return tupleOf(toPython(from.value_a), toPython(from.value_b), toPython(from.value_c), toPython(from.lens_count),
                 toPython(from.reserved1), toPython(from.reserved2), toPython(from.reserved3), toPython(from.lenses));
}

PyObject* toPython(const zel_origin_offset_data& from) {
  return tupleOf(toPython(from.lens0), toPython(from.lens1), toPython(from.value_a), toPython(from.value_b));
}

PyObject* toPython(const zel_video_info& from) {
  return tupleOf(toPython(from.head), toPython(from.value), toPython(from.offset), toPython(from.position),
                 toPython(from.motion), toPython(from.orientation), toPython(from.tail));
}

PyObject* toPython(const zel_link_statistics& from) {
  return tupleOf(toPython(from.frames), toPython(from.bytes), toPython(from.bytes_received),
                 toPython(from.bytes_discarded), toPython(from.bytes_written), toPython(from.bytes_to_write),
                 toPython(from.markers_found), toPython(from.positions_lost), toPython(from.stream_errors),
                 toPython(from.lost_for_memory), toPython(from.round_trip), toPython(from.resends_left),
                 toPython(from.dropped_unknown_type), toPython(from.dropped_no_consumer),
                 toPython(from.dropped_unregistered_code), toPython(from.dropped_short_message),
                 toPython(from.dropped_unregistered_data), toPython(from.dropped_short_timestamp),
                 toPython(from.dropped_timestamp_old_firmware), toPython(from.dropped_no_memory));
}

PyObject* toPython(const zel_stream_statistics& from) {
  return tupleOf(toPython(from.pictures), toPython(from.audio_frames), toPython(from.video_bytes),
                 toPython(from.audio_bytes), toPython(from.dropped_audio));
}

PyObject* toPython(const zel_output_report& from) {
  return tupleOf(toPython(from.id), toPython(static_cast<int>(from.state)), toPython(from.pictures),
                 toPython(from.audio_frames), toPython(from.bytes), toPython(from.dropped), toPython(from.connections),
                 toPython(from.median_latency), toPython(from.latency_99),
                 toPython(static_cast<const char*>(from.name)), toPython(static_cast<const char*>(from.fault)));
}

bool fromPython(PyObject* from, const std::string& name, zel_gps_data* to) {
  to->size = sizeof *to;
  const Reference items = itemsOf(from, name, "Position(latitude, longitude, altitude)", 3);
  return items && fromPython(PySequence_Fast_GET_ITEM(items.get(), 0), name + ".latitude", &to->latitude) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 1), name + ".longitude", &to->longitude) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 2), name + ".altitude", &to->altitude);
}

bool fromPython(PyObject* from, const std::string& name, zel_gyro_data* to) {
  to->size = sizeof *to;
  const Reference items = itemsOf(from, name, "Motion(ax, ay, az, gx, gy, gz)", 6);
  return items && fromPython(PySequence_Fast_GET_ITEM(items.get(), 0), name + ".ax", &to->ax) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 1), name + ".ay", &to->ay) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 2), name + ".az", &to->az) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 3), name + ".gx", &to->gx) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 4), name + ".gy", &to->gy) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 5), name + ".gz", &to->gz);
}

bool fromPython(PyObject* from, const std::string& name, zel_orientation_data* to) {
  to->size = sizeof *to;
  const Reference items = itemsOf(from, name, "Orientation(x, y, z, w)", 4);
  return items && fromPython(PySequence_Fast_GET_ITEM(items.get(), 0), name + ".x", &to->x) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 1), name + ".y", &to->y) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 2), name + ".z", &to->z) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 3), name + ".w", &to->w);
}

bool fromPython(PyObject* from, const std::string& name, zel_manual_exposure* to) {
  to->size = sizeof *to;
  const Reference items = itemsOf(from, name, "ManualExposure(value1, value2)", 2);
  return items && fromPython(PySequence_Fast_GET_ITEM(items.get(), 0), name + ".value1", &to->value1) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 1), name + ".value2", &to->value2);
}

bool fromPython(PyObject* from, const std::string& name, zel_metering_weights* to) {
  to->size = sizeof *to;
  const Reference items = itemsOf(from, name, "MeteringWeights(weights)", 1);
  return items && fromPython(PySequence_Fast_GET_ITEM(items.get(), 0), name + ".weights", &to->weights);
}

bool fromPython(PyObject* from, const std::string& name, zel_white_balance_gain_data* to) {
  to->size = sizeof *to;
  const Reference items = itemsOf(from, name, "WhiteBalanceGain(value1, value2, gains)", 3);
  return items && fromPython(PySequence_Fast_GET_ITEM(items.get(), 0), name + ".value1", &to->value1) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 1), name + ".value2", &to->value2) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 2), name + ".gains", &to->gains);
}

bool fromPython(PyObject* from, const std::string& name, zel_vignette_luma_data* to) {
  to->size = sizeof *to;
  const Reference items = itemsOf(from, name, "VignetteLuma(value1, value2, lumas)", 3);
  return items && fromPython(PySequence_Fast_GET_ITEM(items.get(), 0), name + ".value1", &to->value1) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 1), name + ".value2", &to->value2) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 2), name + ".lumas", &to->lumas);
}

bool fromPython(PyObject* from, const std::string& name, zel_vignette_gain_data* to) {
  to->size = sizeof *to;
  const Reference items = itemsOf(from, name, "VignetteGain(value1, value2, gains)", 3);
  return items && fromPython(PySequence_Fast_GET_ITEM(items.get(), 0), name + ".value1", &to->value1) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 1), name + ".value2", &to->value2) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 2), name + ".gains", &to->gains);
}

bool fromPython(PyObject* from, const std::string& name, zel_timelapse_info* to) {
  to->size = sizeof *to;
  const Reference items = itemsOf(from, name, "Timelapse(value1, value2, value3, exposure1, exposure2)", 5);
  return items && fromPython(PySequence_Fast_GET_ITEM(items.get(), 0), name + ".value1", &to->value1) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 1), name + ".value2", &to->value2) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 2), name + ".value3", &to->value3) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 3), name + ".exposure1", &to->exposure1) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 4), name + ".exposure2", &to->exposure2);
}

bool fromPython(PyObject* from, const std::string& name, zel_origin_offset_data* to) {
  to->size = sizeof *to;
  const Reference items = itemsOf(from, name, "OriginOffset(lens0, lens1, value_a, value_b)", 4);
  return items && fromPython(PySequence_Fast_GET_ITEM(items.get(), 0), name + ".lens0", &to->lens0) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 1), name + ".lens1", &to->lens1) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 2), name + ".value_a", &to->value_a) &&
         fromPython(PySequence_Fast_GET_ITEM(items.get(), 3), name + ".value_b", &to->value_b);
}

}  // namespace zel::python
