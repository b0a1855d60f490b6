// Made from bindings/requests.toml by tools/bindings/generate.py.

#include <ZELTarkaSDK/CameraRequests.h>
#include <ZELTarkaSDK/zel.h>

#include "bindings/c/ask.h"
#include "bindings/c/results.h"

using namespace zel::c;

zel_status zel_battery(zel_camera* camera, int time_limit, zel_battery_result* out, zel_error* error) {
  return ask(camera, time_limit, error, RecordOut(out, kNative),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.battery(options); });
}

zel_status zel_card(zel_camera* camera, int time_limit, zel_card_result* out, zel_error* error) {
  return ask(camera, time_limit, error, RecordOut(out, kNative),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.card(options); });
}

zel_status zel_video_seconds_remaining(zel_camera* camera, int time_limit, uint32_t* out, zel_error* error) {
  return ask(camera, time_limit, error, NumberOut(out), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.videoSecondsRemaining(options);
  });
}

zel_status zel_photos_remaining(zel_camera* camera, int time_limit, uint32_t* out, zel_error* error) {
  return ask(camera, time_limit, error, NumberOut(out),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.photosRemaining(options); });
}

zel_status zel_serial_number(zel_camera* camera, int time_limit, char** out, zel_error* error) {
  return ask(camera, time_limit, error, TextOut(out),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.serialNumber(options); });
}

zel_status zel_set_serial_number(zel_camera* camera, const char* serial_number, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setSerialNumber(textIn(serial_number, "serial_number"), options);
  });
}

zel_status zel_uuid(zel_camera* camera, int time_limit, char** out, zel_error* error) {
  return ask(camera, time_limit, error, TextOut(out),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.uuid(options); });
}

zel_status zel_lens_index(zel_camera* camera, int time_limit, uint32_t* out, zel_error* error) {
  return ask(camera, time_limit, error, NumberOut(out),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.lensIndex(options); });
}

zel_status zel_exposure_index(zel_camera* camera, int time_limit, uint16_t* out, zel_error* error) {
  return ask(camera, time_limit, error, NumberOut(out),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.exposureIndex(options); });
}

zel_status zel_activation_time(zel_camera* camera, int time_limit, zel_activation_time_result* out, zel_error* error) {
  return ask(camera, time_limit, error, RecordOut(out, kNative),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.activationTime(options); });
}

zel_status zel_set_activation_time(zel_camera* camera, int32_t seconds, int32_t time_zone_minutes_west, int time_limit,
                                   zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setActivationTime(seconds, time_zone_minutes_west, options);
  });
}

zel_status zel_set_local_time(zel_camera* camera, int32_t seconds, int32_t time_zone_minutes_west, int time_limit,
                              zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setLocalTime(seconds, time_zone_minutes_west, options);
  });
}

zel_status zel_control_system(zel_camera* camera, uint8_t command, uint8_t delay_time, int time_limit,
                              zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.controlSystem(command, delay_time, options);
  });
}

zel_status zel_cancel_system_control(zel_camera* camera, uint8_t command, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.cancelSystemControl(command, options);
  });
}

zel_status zel_cancel_deletion(zel_camera* camera, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.cancelDeletion(options); });
}

zel_status zel_start_recording(zel_camera* camera, const zel_gps_data* position, const zel_gyro_data* motion,
                               const zel_orientation_data* orientation, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.startRecording(recordIn(position, "position"), recordIn(motion, "motion"),
                                recordIn(orientation, "orientation"), options);
  });
}

zel_status zel_start_recording_with_extra_info(zel_camera* camera, const zel_gps_data* position,
                                               const zel_gyro_data* motion, const zel_orientation_data* orientation,
                                               const uint8_t* extra_info, size_t extra_info_length, int time_limit,
                                               zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.startRecordingWithExtraInfo(recordIn(position, "position"), recordIn(motion, "motion"),
                                             recordIn(orientation, "orientation"),
                                             someBytesIn(extra_info, extra_info_length, "extra_info"), options);
  });
}

zel_status zel_start_timed_recording(zel_camera* camera, const zel_gps_data* position, const zel_gyro_data* motion,
                                     const zel_orientation_data* orientation, const uint8_t* extra_info,
                                     size_t extra_info_length, int time_limit, int64_t* out, zel_error* error) {
  return ask(camera, time_limit, error, NumberOut(out), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.startTimedRecording(recordIn(position, "position"), recordIn(motion, "motion"),
                                     recordIn(orientation, "orientation"),
                                     someBytesIn(extra_info, extra_info_length, "extra_info"), options);
  });
}

zel_status zel_stop_recording(zel_camera* camera, int time_limit, zel_stored_file_result* out, zel_error* error) {
  return ask(camera, time_limit, error, RecordOut(out, kNative),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.stopRecording(options); });
}

zel_status zel_cancel_recording(zel_camera* camera, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.cancelRecording(options); });
}

zel_status zel_set_video_resolution(zel_camera* camera, uint8_t resolution, int time_limit, uint8_t* out,
                                    zel_error* error) {
  return ask(camera, time_limit, error, NumberOut(out), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setVideoResolution(resolution, options);
  });
}

zel_status zel_set_video_bitrate(zel_camera* camera, uint8_t type, uint8_t bitrate, int time_limit, uint8_t* out,
                                 zel_error* error) {
  return ask(camera, time_limit, error, NumberOut(out), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setVideoBitrate(type, bitrate, options);
  });
}

zel_status zel_set_recording_limit(zel_camera* camera, int32_t limit, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setRecordingLimit(limit, options);
  });
}

zel_status zel_recording_limit(zel_camera* camera, int time_limit, int32_t* out, zel_error* error) {
  return ask(camera, time_limit, error, NumberOut(out),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.recordingLimit(options); });
}

zel_status zel_set_photo_size(zel_camera* camera, uint8_t size, int time_limit, uint8_t* out, zel_error* error) {
  return ask(camera, time_limit, error, NumberOut(out),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.setPhotoSize(size, options); });
}

zel_status zel_set_self_timer(zel_camera* camera, uint8_t seconds, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setSelfTimer(seconds, options);
  });
}

zel_status zel_self_timer(zel_camera* camera, int time_limit, int32_t* out, zel_error* error) {
  return ask(camera, time_limit, error, NumberOut(out),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.selfTimer(options); });
}

zel_status zel_set_key_function(zel_camera* camera, uint8_t function, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setKeyFunction(function, options);
  });
}

zel_status zel_set_triple_press_mode(zel_camera* camera, uint8_t mode, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setTriplePressMode(mode, options);
  });
}

zel_status zel_triple_press_mode(zel_camera* camera, int time_limit, uint8_t* out, zel_error* error) {
  return ask(camera, time_limit, error, NumberOut(out),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.triplePressMode(options); });
}

zel_status zel_set_mute(zel_camera* camera, uint8_t mute, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.setMute(mute, options); });
}

zel_status zel_set_ip_switch_mode(zel_camera* camera, uint8_t mode, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setIPSwitchMode(mode, options);
  });
}

zel_status zel_set_exposure_bias(zel_camera* camera, int16_t bias, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setExposureBias(bias, options);
  });
}

zel_status zel_set_metering_mode(zel_camera* camera, uint8_t mode, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setMeteringMode(mode, options);
  });
}

zel_status zel_set_metering_weights(zel_camera* camera, const zel_metering_weights* weights, int time_limit,
                                    zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setMeteringWeights(recordIn(weights, "weights"), options);
  });
}

zel_status zel_set_still_program_mode(zel_camera* camera, uint8_t mode, uint8_t value, int time_limit,
                                      zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setStillProgramMode(mode, value, options);
  });
}

zel_status zel_set_manual_exposure(zel_camera* camera, uint8_t mode, const zel_manual_exposure* exposure,
                                   int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setManualExposure(mode, recordIn(exposure, "exposure"), options);
  });
}

zel_status zel_set_white_balance(zel_camera* camera, uint8_t mode, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setWhiteBalance(mode, options);
  });
}

zel_status zel_set_brightness(zel_camera* camera, int16_t brightness, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setBrightness(brightness, options);
  });
}

zel_status zel_set_contrast(zel_camera* camera, uint16_t contrast, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setContrast(contrast, options);
  });
}

zel_status zel_set_saturation(zel_camera* camera, uint16_t saturation, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setSaturation(saturation, options);
  });
}

zel_status zel_set_hue(zel_camera* camera, uint8_t hue, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.setHue(hue, options); });
}

zel_status zel_set_sharpness(zel_camera* camera, uint8_t sharpness, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setSharpness(sharpness, options);
  });
}

zel_status zel_set_digital_effect(zel_camera* camera, uint8_t effect, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setDigitalEffect(effect, options);
  });
}

zel_status zel_set_flicker(zel_camera* camera, uint8_t flicker, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setFlicker(flicker, options);
  });
}

zel_status zel_flicker(zel_camera* camera, int time_limit, uint8_t* out, zel_error* error) {
  return ask(camera, time_limit, error, NumberOut(out),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.flicker(options); });
}

zel_status zel_set_gps_timeout(zel_camera* camera, uint16_t timeout, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setGpsTimeout(timeout, options);
  });
}

zel_status zel_gps_timeout(zel_camera* camera, int time_limit, int32_t* out, zel_error* error) {
  return ask(camera, time_limit, error, NumberOut(out),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.gpsTimeout(options); });
}

zel_status zel_set_timelapse(zel_camera* camera, const zel_timelapse_info* timelapse, int time_limit,
                             zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setTimelapse(recordIn(timelapse, "timelapse"), options);
  });
}

zel_status zel_timelapse(zel_camera* camera, int time_limit, zel_timelapse_info* out, zel_error* error) {
  return ask(camera, time_limit, error, RecordOut(out, kNative),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.timelapse(options); });
}

zel_status zel_set_timelapse_exposure_bias(zel_camera* camera, int16_t bias, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setTimelapseExposureBias(bias, options);
  });
}

zel_status zel_timelapse_exposure_bias(zel_camera* camera, int time_limit, int16_t* out, zel_error* error) {
  return ask(camera, time_limit, error, NumberOut(out), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.timelapseExposureBias(options);
  });
}

zel_status zel_set_audio_bitrate(zel_camera* camera, uint32_t bits_per_second, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setAudioBitrate(bits_per_second, options);
  });
}

zel_status zel_audio_bitrate(zel_camera* camera, int time_limit, uint32_t* out, zel_error* error) {
  return ask(camera, time_limit, error, NumberOut(out),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.audioBitrate(options); });
}

zel_status zel_lens_offset(zel_camera* camera, uint8_t type, uint8_t type_info, int time_limit, char** out,
                           zel_error* error) {
  return ask(camera, time_limit, error, TextOut(out), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.lensOffset(type, type_info, options);
  });
}

zel_status zel_set_lens_offset(zel_camera* camera, uint8_t type, uint8_t type_info, const char* offset, int time_limit,
                               zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setLensOffset(type, type_info, textIn(offset, "offset"), options);
  });
}

zel_status zel_origin_offset(zel_camera* camera, uint8_t type, uint8_t type_info, int time_limit,
                             zel_origin_offset_data* out, zel_error* error) {
  return ask(camera, time_limit, error, RecordOut(out, kNative),
             [&](zel::Camera& asked, const zel::RequestOptions& options) {
               return asked.originOffset(type, type_info, options);
             });
}

zel_status zel_set_origin_offset(zel_camera* camera, uint8_t type, uint8_t type_info,
                                 const zel_origin_offset_data* offset, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setOriginOffset(type, type_info, recordIn(offset, "offset"), options);
  });
}

zel_status zel_set_white_balance_gain(zel_camera* camera, const zel_white_balance_gain_data* gain, int time_limit,
                                      zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setWhiteBalanceGain(recordIn(gain, "gain"), options);
  });
}

zel_status zel_white_balance_gain(zel_camera* camera, int time_limit, zel_white_balance_gain_data* out,
                                  zel_error* error) {
  return ask(camera, time_limit, error, RecordOut(out, kNative),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.whiteBalanceGain(options); });
}

zel_status zel_white_balance_calibration(zel_camera* camera, int time_limit, uint8_t* out, zel_error* error) {
  return ask(camera, time_limit, error, NumberOut(out), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.whiteBalanceCalibration(options);
  });
}

zel_status zel_set_vignette_luma(zel_camera* camera, const zel_vignette_luma_data* luma, int time_limit,
                                 zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setVignetteLuma(recordIn(luma, "luma"), options);
  });
}

zel_status zel_vignette_luma(zel_camera* camera, int time_limit, zel_vignette_luma_data* out, zel_error* error) {
  return ask(camera, time_limit, error, RecordOut(out, kNative),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.vignetteLuma(options); });
}

zel_status zel_set_vignette_gain(zel_camera* camera, const zel_vignette_gain_data* gain, int time_limit,
                                 zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setVignetteGain(recordIn(gain, "gain"), options);
  });
}

zel_status zel_vignette_gain(zel_camera* camera, int time_limit, zel_vignette_gain_data* out, zel_error* error) {
  return ask(camera, time_limit, error, RecordOut(out, kNative),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.vignetteGain(options); });
}

zel_status zel_vignette_calibration(zel_camera* camera, int time_limit, uint8_t* out, zel_error* error) {
  return ask(camera, time_limit, error, NumberOut(out), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.vignetteCalibration(options);
  });
}

zel_status zel_update_position(zel_camera* camera, const zel_gps_data* position, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.updatePosition(recordIn(position, "position"), options);
  });
}

zel_status zel_update_motion(zel_camera* camera, const zel_gyro_data* motion, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.updateMotion(recordIn(motion, "motion"), options);
  });
}

zel_status zel_start_preview(zel_camera* camera, uint8_t resolution, int time_limit, uint8_t* out, zel_error* error) {
  return ask(camera, time_limit, error, NumberOut(out), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.startPreview(resolution, options);
  });
}

zel_status zel_stop_preview(zel_camera* camera, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.stopPreview(options); });
}

zel_status zel_switch_sound(zel_camera* camera, uint8_t type, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(),
             [&](zel::Camera& asked, const zel::RequestOptions& options) { return asked.switchSound(type, options); });
}

zel_status zel_create_text_file(zel_camera* camera, const char* file_name, int32_t size_bytes, const uint8_t* content,
                                size_t content_length, int time_limit, int32_t* out, zel_error* error) {
  return ask(camera, time_limit, error, NumberOut(out), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.createTextFile(textIn(file_name, "file_name"), size_bytes, bytesIn(content, content_length, "content"),
                                options);
  });
}

zel_status zel_video_metadata(zel_camera* camera, const char* file_name, int time_limit, zel_video_info* out,
                              zel_error* error) {
  return ask(camera, time_limit, error, RecordOut(out, kNative),
             [&](zel::Camera& asked, const zel::RequestOptions& options) {
               return asked.videoMetadata(textIn(file_name, "file_name"), options);
             });
}

zel_status zel_set_photo_extra_info(zel_camera* camera, const char* file_name, const uint8_t* extra_info,
                                    size_t extra_info_length, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setPhotoExtraInfo(textIn(file_name, "file_name"), bytesIn(extra_info, extra_info_length, "extra_info"),
                                   options);
  });
}

zel_status zel_set_video_extra_info(zel_camera* camera, const char* file_name, const uint8_t* extra_info,
                                    size_t extra_info_length, int time_limit, zel_error* error) {
  return ask(camera, time_limit, error, Nothing(), [&](zel::Camera& asked, const zel::RequestOptions& options) {
    return asked.setVideoExtraInfo(textIn(file_name, "file_name"), bytesIn(extra_info, extra_info_length, "extra_info"),
                                   options);
  });
}

zel_status zel_video_extra_info(zel_camera* camera, const char* file_name, int time_limit, uint8_t** out,
                                size_t* length, zel_error* error) {
  return ask(camera, time_limit, error, BytesOut(out, length),
             [&](zel::Camera& asked, const zel::RequestOptions& options) {
               return asked.videoExtraInfo(textIn(file_name, "file_name"), options);
             });
}
