#pragma once

#include <stddef.h>
#include <stdint.h>

#include <ZELTarkaSDK/platform/export.h>
#include <ZELTarkaSDK/zel_begin.h>
#include <ZELTarkaSDK/zel_records.h>
#include <ZELTarkaSDK/zel_requests.h>
#include <ZELTarkaSDK/zel_status.h>

// The requests of zel_requests.h as calls that are begun, see zel_begin.h; made from bindings/requests.toml by
// tools/bindings/generate.py. Programs include zel.h.

#ifdef __cplusplus
extern "C" {
#endif

ZEL_EXPORT zel_status zel_begin_battery(zel_camera* camera, int time_limit, zel_battery_result* out,
                                        zel_done_callback callback, void* user, zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_card(zel_camera* camera, int time_limit, zel_card_result* out,
                                     zel_done_callback callback, void* user, zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_video_seconds_remaining(zel_camera* camera, int time_limit, uint32_t* out,
                                                        zel_done_callback callback, void* user, zel_call** call,
                                                        zel_error* error);
ZEL_EXPORT zel_status zel_begin_photos_remaining(zel_camera* camera, int time_limit, uint32_t* out,
                                                 zel_done_callback callback, void* user, zel_call** call,
                                                 zel_error* error);
ZEL_EXPORT zel_status zel_begin_serial_number(zel_camera* camera, int time_limit, char** out,
                                              zel_done_callback callback, void* user, zel_call** call,
                                              zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_serial_number(zel_camera* camera, const char* serial_number, int time_limit,
                                                  zel_done_callback callback, void* user, zel_call** call,
                                                  zel_error* error);
ZEL_EXPORT zel_status zel_begin_uuid(zel_camera* camera, int time_limit, char** out, zel_done_callback callback,
                                     void* user, zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_lens_index(zel_camera* camera, int time_limit, uint32_t* out,
                                           zel_done_callback callback, void* user, zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_exposure_index(zel_camera* camera, int time_limit, uint16_t* out,
                                               zel_done_callback callback, void* user, zel_call** call,
                                               zel_error* error);
ZEL_EXPORT zel_status zel_begin_activation_time(zel_camera* camera, int time_limit, zel_activation_time_result* out,
                                                zel_done_callback callback, void* user, zel_call** call,
                                                zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_activation_time(zel_camera* camera, int32_t seconds, int32_t time_zone_minutes_west,
                                                    int time_limit, zel_done_callback callback, void* user,
                                                    zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_local_time(zel_camera* camera, int32_t seconds, int32_t time_zone_minutes_west,
                                               int time_limit, zel_done_callback callback, void* user, zel_call** call,
                                               zel_error* error);
ZEL_EXPORT zel_status zel_begin_control_system(zel_camera* camera, uint8_t command, uint8_t delay_time, int time_limit,
                                               zel_done_callback callback, void* user, zel_call** call,
                                               zel_error* error);
ZEL_EXPORT zel_status zel_begin_cancel_system_control(zel_camera* camera, uint8_t command, int time_limit,
                                                      zel_done_callback callback, void* user, zel_call** call,
                                                      zel_error* error);
ZEL_EXPORT zel_status zel_begin_cancel_deletion(zel_camera* camera, int time_limit, zel_done_callback callback,
                                                void* user, zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_start_recording(zel_camera* camera, const zel_gps_data* position,
                                                const zel_gyro_data* motion, const zel_orientation_data* orientation,
                                                int time_limit, zel_done_callback callback, void* user, zel_call** call,
                                                zel_error* error);
ZEL_EXPORT zel_status zel_begin_start_recording_with_extra_info(zel_camera* camera, const zel_gps_data* position,
                                                                const zel_gyro_data* motion,
                                                                const zel_orientation_data* orientation,
                                                                const uint8_t* extra_info, size_t extra_info_length,
                                                                int time_limit, zel_done_callback callback, void* user,
                                                                zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_start_timed_recording(zel_camera* camera, const zel_gps_data* position,
                                                      const zel_gyro_data* motion,
                                                      const zel_orientation_data* orientation,
                                                      const uint8_t* extra_info, size_t extra_info_length,
                                                      int time_limit, int64_t* out, zel_done_callback callback,
                                                      void* user, zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_stop_recording(zel_camera* camera, int time_limit, zel_stored_file_result* out,
                                               zel_done_callback callback, void* user, zel_call** call,
                                               zel_error* error);
ZEL_EXPORT zel_status zel_begin_cancel_recording(zel_camera* camera, int time_limit, zel_done_callback callback,
                                                 void* user, zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_video_resolution(zel_camera* camera, uint8_t resolution, int time_limit,
                                                     uint8_t* out, zel_done_callback callback, void* user,
                                                     zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_video_bitrate(zel_camera* camera, uint8_t type, uint8_t bitrate, int time_limit,
                                                  uint8_t* out, zel_done_callback callback, void* user, zel_call** call,
                                                  zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_recording_limit(zel_camera* camera, int32_t limit, int time_limit,
                                                    zel_done_callback callback, void* user, zel_call** call,
                                                    zel_error* error);
ZEL_EXPORT zel_status zel_begin_recording_limit(zel_camera* camera, int time_limit, int32_t* out,
                                                zel_done_callback callback, void* user, zel_call** call,
                                                zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_photo_size(zel_camera* camera, uint8_t size, int time_limit, uint8_t* out,
                                               zel_done_callback callback, void* user, zel_call** call,
                                               zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_self_timer(zel_camera* camera, uint8_t seconds, int time_limit,
                                               zel_done_callback callback, void* user, zel_call** call,
                                               zel_error* error);
ZEL_EXPORT zel_status zel_begin_self_timer(zel_camera* camera, int time_limit, int32_t* out, zel_done_callback callback,
                                           void* user, zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_key_function(zel_camera* camera, uint8_t function, int time_limit,
                                                 zel_done_callback callback, void* user, zel_call** call,
                                                 zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_triple_press_mode(zel_camera* camera, uint8_t mode, int time_limit,
                                                      zel_done_callback callback, void* user, zel_call** call,
                                                      zel_error* error);
ZEL_EXPORT zel_status zel_begin_triple_press_mode(zel_camera* camera, int time_limit, uint8_t* out,
                                                  zel_done_callback callback, void* user, zel_call** call,
                                                  zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_mute(zel_camera* camera, uint8_t mute, int time_limit, zel_done_callback callback,
                                         void* user, zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_ip_switch_mode(zel_camera* camera, uint8_t mode, int time_limit,
                                                   zel_done_callback callback, void* user, zel_call** call,
                                                   zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_exposure_bias(zel_camera* camera, int16_t bias, int time_limit,
                                                  zel_done_callback callback, void* user, zel_call** call,
                                                  zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_metering_mode(zel_camera* camera, uint8_t mode, int time_limit,
                                                  zel_done_callback callback, void* user, zel_call** call,
                                                  zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_metering_weights(zel_camera* camera, const zel_metering_weights* weights,
                                                     int time_limit, zel_done_callback callback, void* user,
                                                     zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_still_program_mode(zel_camera* camera, uint8_t mode, uint8_t value, int time_limit,
                                                       zel_done_callback callback, void* user, zel_call** call,
                                                       zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_manual_exposure(zel_camera* camera, uint8_t mode,
                                                    const zel_manual_exposure* exposure, int time_limit,
                                                    zel_done_callback callback, void* user, zel_call** call,
                                                    zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_white_balance(zel_camera* camera, uint8_t mode, int time_limit,
                                                  zel_done_callback callback, void* user, zel_call** call,
                                                  zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_brightness(zel_camera* camera, int16_t brightness, int time_limit,
                                               zel_done_callback callback, void* user, zel_call** call,
                                               zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_contrast(zel_camera* camera, uint16_t contrast, int time_limit,
                                             zel_done_callback callback, void* user, zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_saturation(zel_camera* camera, uint16_t saturation, int time_limit,
                                               zel_done_callback callback, void* user, zel_call** call,
                                               zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_hue(zel_camera* camera, uint8_t hue, int time_limit, zel_done_callback callback,
                                        void* user, zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_sharpness(zel_camera* camera, uint8_t sharpness, int time_limit,
                                              zel_done_callback callback, void* user, zel_call** call,
                                              zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_digital_effect(zel_camera* camera, uint8_t effect, int time_limit,
                                                   zel_done_callback callback, void* user, zel_call** call,
                                                   zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_flicker(zel_camera* camera, uint8_t flicker, int time_limit,
                                            zel_done_callback callback, void* user, zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_flicker(zel_camera* camera, int time_limit, uint8_t* out, zel_done_callback callback,
                                        void* user, zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_gps_timeout(zel_camera* camera, uint16_t timeout, int time_limit,
                                                zel_done_callback callback, void* user, zel_call** call,
                                                zel_error* error);
ZEL_EXPORT zel_status zel_begin_gps_timeout(zel_camera* camera, int time_limit, int32_t* out,
                                            zel_done_callback callback, void* user, zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_timelapse(zel_camera* camera, const zel_timelapse_info* timelapse, int time_limit,
                                              zel_done_callback callback, void* user, zel_call** call,
                                              zel_error* error);
ZEL_EXPORT zel_status zel_begin_timelapse(zel_camera* camera, int time_limit, zel_timelapse_info* out,
                                          zel_done_callback callback, void* user, zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_timelapse_exposure_bias(zel_camera* camera, int16_t bias, int time_limit,
                                                            zel_done_callback callback, void* user, zel_call** call,
                                                            zel_error* error);
ZEL_EXPORT zel_status zel_begin_timelapse_exposure_bias(zel_camera* camera, int time_limit, int16_t* out,
                                                        zel_done_callback callback, void* user, zel_call** call,
                                                        zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_audio_bitrate(zel_camera* camera, uint32_t bits_per_second, int time_limit,
                                                  zel_done_callback callback, void* user, zel_call** call,
                                                  zel_error* error);
ZEL_EXPORT zel_status zel_begin_audio_bitrate(zel_camera* camera, int time_limit, uint32_t* out,
                                              zel_done_callback callback, void* user, zel_call** call,
                                              zel_error* error);
ZEL_EXPORT zel_status zel_begin_lens_offset(zel_camera* camera, uint8_t type, uint8_t type_info, int time_limit,
                                            char** out, zel_done_callback callback, void* user, zel_call** call,
                                            zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_lens_offset(zel_camera* camera, uint8_t type, uint8_t type_info, const char* offset,
                                                int time_limit, zel_done_callback callback, void* user, zel_call** call,
                                                zel_error* error);
ZEL_EXPORT zel_status zel_begin_origin_offset(zel_camera* camera, uint8_t type, uint8_t type_info, int time_limit,
                                              zel_origin_offset_data* out, zel_done_callback callback, void* user,
                                              zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_origin_offset(zel_camera* camera, uint8_t type, uint8_t type_info,
                                                  const zel_origin_offset_data* offset, int time_limit,
                                                  zel_done_callback callback, void* user, zel_call** call,
                                                  zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_white_balance_gain(zel_camera* camera, const zel_white_balance_gain_data* gain,
                                                       int time_limit, zel_done_callback callback, void* user,
                                                       zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_white_balance_gain(zel_camera* camera, int time_limit, zel_white_balance_gain_data* out,
                                                   zel_done_callback callback, void* user, zel_call** call,
                                                   zel_error* error);
ZEL_EXPORT zel_status zel_begin_white_balance_calibration(zel_camera* camera, int time_limit, uint8_t* out,
                                                          zel_done_callback callback, void* user, zel_call** call,
                                                          zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_vignette_luma(zel_camera* camera, const zel_vignette_luma_data* luma,
                                                  int time_limit, zel_done_callback callback, void* user,
                                                  zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_vignette_luma(zel_camera* camera, int time_limit, zel_vignette_luma_data* out,
                                              zel_done_callback callback, void* user, zel_call** call,
                                              zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_vignette_gain(zel_camera* camera, const zel_vignette_gain_data* gain,
                                                  int time_limit, zel_done_callback callback, void* user,
                                                  zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_vignette_gain(zel_camera* camera, int time_limit, zel_vignette_gain_data* out,
                                              zel_done_callback callback, void* user, zel_call** call,
                                              zel_error* error);
ZEL_EXPORT zel_status zel_begin_vignette_calibration(zel_camera* camera, int time_limit, uint8_t* out,
                                                     zel_done_callback callback, void* user, zel_call** call,
                                                     zel_error* error);
ZEL_EXPORT zel_status zel_begin_update_position(zel_camera* camera, const zel_gps_data* position, int time_limit,
                                                zel_done_callback callback, void* user, zel_call** call,
                                                zel_error* error);
ZEL_EXPORT zel_status zel_begin_update_motion(zel_camera* camera, const zel_gyro_data* motion, int time_limit,
                                              zel_done_callback callback, void* user, zel_call** call,
                                              zel_error* error);
ZEL_EXPORT zel_status zel_begin_start_preview(zel_camera* camera, uint8_t resolution, int time_limit, uint8_t* out,
                                              zel_done_callback callback, void* user, zel_call** call,
                                              zel_error* error);
ZEL_EXPORT zel_status zel_begin_stop_preview(zel_camera* camera, int time_limit, zel_done_callback callback, void* user,
                                             zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_switch_sound(zel_camera* camera, uint8_t type, int time_limit,
                                             zel_done_callback callback, void* user, zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_create_text_file(zel_camera* camera, const char* file_name, int32_t size_bytes,
                                                 const uint8_t* content, size_t content_length, int time_limit,
                                                 int32_t* out, zel_done_callback callback, void* user, zel_call** call,
                                                 zel_error* error);
ZEL_EXPORT zel_status zel_begin_video_metadata(zel_camera* camera, const char* file_name, int time_limit,
                                               zel_video_info* out, zel_done_callback callback, void* user,
                                               zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_photo_extra_info(zel_camera* camera, const char* file_name,
                                                     const uint8_t* extra_info, size_t extra_info_length,
                                                     int time_limit, zel_done_callback callback, void* user,
                                                     zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_set_video_extra_info(zel_camera* camera, const char* file_name,
                                                     const uint8_t* extra_info, size_t extra_info_length,
                                                     int time_limit, zel_done_callback callback, void* user,
                                                     zel_call** call, zel_error* error);
ZEL_EXPORT zel_status zel_begin_video_extra_info(zel_camera* camera, const char* file_name, int time_limit,
                                                 uint8_t** out, size_t* length, zel_done_callback callback, void* user,
                                                 zel_call** call, zel_error* error);

#ifdef __cplusplus
}
#endif
