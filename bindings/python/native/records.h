#pragma once

#include <ZELTarkaSDK/zel.h>

#include <string>

#include "bindings/python/native/python.h"

// Records and results as tuples, and records out of sequences; made from bindings/requests.toml and the headers for C
// by tools/bindings/generate.py.

namespace zel::python {

PyObject* toPython(const zel_battery_result& from);
PyObject* toPython(const zel_card_result& from);
PyObject* toPython(const zel_activation_time_result& from);
PyObject* toPython(const zel_stored_file_result& from);
PyObject* toPython(const zel_gps_data& from);
PyObject* toPython(const zel_gyro_data& from);
PyObject* toPython(const zel_orientation_data& from);
PyObject* toPython(const zel_manual_exposure& from);
PyObject* toPython(const zel_metering_weights& from);
PyObject* toPython(const zel_white_balance_gain_data& from);
PyObject* toPython(const zel_vignette_luma_data& from);
PyObject* toPython(const zel_vignette_gain_data& from);
PyObject* toPython(const zel_timelapse_info& from);
PyObject* toPython(const zel_lens_data& from);
PyObject* toPython(const zel_lens_offset_data& from);
PyObject* toPython(const zel_origin_offset_data& from);
PyObject* toPython(const zel_video_info& from);
PyObject* toPython(const zel_link_statistics& from);
PyObject* toPython(const zel_stream_statistics& from);
PyObject* toPython(const zel_output_report& from);

// False with an exception. name: for people.
bool fromPython(PyObject* from, const std::string& name, zel_gps_data* to);
bool fromPython(PyObject* from, const std::string& name, zel_gyro_data* to);
bool fromPython(PyObject* from, const std::string& name, zel_orientation_data* to);
bool fromPython(PyObject* from, const std::string& name, zel_manual_exposure* to);
bool fromPython(PyObject* from, const std::string& name, zel_metering_weights* to);
bool fromPython(PyObject* from, const std::string& name, zel_white_balance_gain_data* to);
bool fromPython(PyObject* from, const std::string& name, zel_vignette_luma_data* to);
bool fromPython(PyObject* from, const std::string& name, zel_vignette_gain_data* to);
bool fromPython(PyObject* from, const std::string& name, zel_timelapse_info* to);
bool fromPython(PyObject* from, const std::string& name, zel_origin_offset_data* to);

}  // namespace zel::python
