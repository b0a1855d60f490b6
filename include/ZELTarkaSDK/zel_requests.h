#pragma once

#include <stddef.h>
#include <stdint.h>

#include <ZELTarkaSDK/platform/export.h>
#include <ZELTarkaSDK/zel_records.h>
#include <ZELTarkaSDK/zel_status.h>

// Every request that a camera answers, as a call each; made from bindings/requests.toml by tools/bindings/generate.py.
// Programs include zel.h.
//
// Requests of one kind wait for each other; those of different kinds do not. Numbers whose meaning only the camera
// knows are passed through. A text or bytes that are absent are NULL.
//
// Units: milliseconds of the time limit; 0 is the camera's own.
//
// Thread: any thread; see zel.h.
//
// Errors: ZEL_LOST without a link, ZEL_REFUSED by the camera, ZEL_TIME_LIMIT, and ZEL_CLOSED once the camera is
//         closed.

#ifdef __cplusplus
extern "C" {
#endif

// The battery, and what the camera runs on.
typedef struct zel_battery_result {
  size_t size;
  uint8_t power_type;  // 1 and 2 are what the camera calls so
  uint8_t level;       // in the camera's scale
} zel_battery_result;

// The memory card.
typedef struct zel_card_result {
  size_t size;
  uint8_t state;  // the camera's code
  uint64_t capacity_bytes;
  uint64_t free_bytes;
} zel_card_result;

// When the camera was first used.
typedef struct zel_activation_time_result {
  size_t size;
  int32_t seconds;  // since 1970
  int32_t time_zone_minutes_west;
} zel_activation_time_result;

// What a photo or a recording was stored as on the card.
typedef struct zel_stored_file_result {
  size_t size;
  uint32_t time;  // the camera's
  uint64_t size_bytes;
  char* name;  // NULL where it is not ASCII; free it with zel_free()
} zel_stored_file_result;

// Asks for the battery.
ZEL_EXPORT zel_status zel_battery(zel_camera* camera, int time_limit, zel_battery_result* out, zel_error* error);

// Asks for the memory card.
ZEL_EXPORT zel_status zel_card(zel_camera* camera, int time_limit, zel_card_result* out, zel_error* error);

// Asks how many seconds of video the card still takes.
ZEL_EXPORT zel_status zel_video_seconds_remaining(zel_camera* camera, int time_limit, uint32_t* out, zel_error* error);

// Asks how many photos the card still takes.
ZEL_EXPORT zel_status zel_photos_remaining(zel_camera* camera, int time_limit, uint32_t* out, zel_error* error);

// Asks for the serial number that the camera has stored. Free what it gives with zel_free().
ZEL_EXPORT zel_status zel_serial_number(zel_camera* camera, int time_limit, char** out, zel_error* error);

// Stores a serial number. A text that is not ASCII is sent as nothing.
ZEL_EXPORT zel_status zel_set_serial_number(zel_camera* camera, const char* serial_number, int time_limit,
                                            zel_error* error);

// Asks for the camera's UUID. Free what it gives with zel_free().
ZEL_EXPORT zel_status zel_uuid(zel_camera* camera, int time_limit, char** out, zel_error* error);

// Asks for the index of the lens.
ZEL_EXPORT zel_status zel_lens_index(zel_camera* camera, int time_limit, uint32_t* out, zel_error* error);

// Asks for the exposure index.
ZEL_EXPORT zel_status zel_exposure_index(zel_camera* camera, int time_limit, uint16_t* out, zel_error* error);

// Asks when the camera was first used.
ZEL_EXPORT zel_status zel_activation_time(zel_camera* camera, int time_limit, zel_activation_time_result* out,
                                          zel_error* error);

// Stores when the camera was first used. seconds: since 1970.
ZEL_EXPORT zel_status zel_set_activation_time(zel_camera* camera, int32_t seconds, int32_t time_zone_minutes_west,
                                              int time_limit, zel_error* error);

// Sets the camera's clock. seconds: since 1970.
ZEL_EXPORT zel_status zel_set_local_time(zel_camera* camera, int32_t seconds, int32_t time_zone_minutes_west,
                                         int time_limit, zel_error* error);

// Makes the camera do one of its system commands. command: the camera's code. delay_time: in the camera's unit.
ZEL_EXPORT zel_status zel_control_system(zel_camera* camera, uint8_t command, uint8_t delay_time, int time_limit,
                                         zel_error* error);

// Takes a system command back that waits for its time. command: the camera's code.
ZEL_EXPORT zel_status zel_cancel_system_control(zel_camera* camera, uint8_t command, int time_limit, zel_error* error);

// Ends a deletion of files that is under way.
ZEL_EXPORT zel_status zel_cancel_deletion(zel_camera* camera, int time_limit, zel_error* error);

// Begins a recording on the card. Records that are all zero stand for a position and a motion that are not known.
ZEL_EXPORT zel_status zel_start_recording(zel_camera* camera, const zel_gps_data* position, const zel_gyro_data* motion,
                                          const zel_orientation_data* orientation, int time_limit, zel_error* error);

// The same with extra information. extra_info: JSON that is stored with the recording.
ZEL_EXPORT zel_status zel_start_recording_with_extra_info(zel_camera* camera, const zel_gps_data* position,
                                                          const zel_gyro_data* motion,
                                                          const zel_orientation_data* orientation,
                                                          const uint8_t* extra_info, size_t extra_info_length,
                                                          int time_limit, zel_error* error);

// The same; gives the camera's time stamp of the recording's start. extra_info: JSON that is stored with the recording.
ZEL_EXPORT zel_status zel_start_timed_recording(zel_camera* camera, const zel_gps_data* position,
                                                const zel_gyro_data* motion, const zel_orientation_data* orientation,
                                                const uint8_t* extra_info, size_t extra_info_length, int time_limit,
                                                int64_t* out, zel_error* error);

// Ends the recording. Free what it gives with zel_free().
ZEL_EXPORT zel_status zel_stop_recording(zel_camera* camera, int time_limit, zel_stored_file_result* out,
                                         zel_error* error);

// Ends the recording and throws it away.
ZEL_EXPORT zel_status zel_cancel_recording(zel_camera* camera, int time_limit, zel_error* error);

// Sets the resolution of recordings; gives the one that the camera chose. resolution: the camera's code.
ZEL_EXPORT zel_status zel_set_video_resolution(zel_camera* camera, uint8_t resolution, int time_limit, uint8_t* out,
                                               zel_error* error);

// Sets the bitrate of recordings; gives the one that the camera chose. type: the camera's code. bitrate: the camera's
// code.
ZEL_EXPORT zel_status zel_set_video_bitrate(zel_camera* camera, uint8_t type, uint8_t bitrate, int time_limit,
                                            uint8_t* out, zel_error* error);

// Limits the length of recordings. The limit's low 8 bits are sent. limit: in the camera's unit.
ZEL_EXPORT zel_status zel_set_recording_limit(zel_camera* camera, int32_t limit, int time_limit, zel_error* error);

// Asks for the limit of recordings.
ZEL_EXPORT zel_status zel_recording_limit(zel_camera* camera, int time_limit, int32_t* out, zel_error* error);

// Sets the size of photos; gives the one that the camera chose. size: the camera's code.
ZEL_EXPORT zel_status zel_set_photo_size(zel_camera* camera, uint8_t size, int time_limit, uint8_t* out,
                                         zel_error* error);

// Sets the self-timer of photos.
ZEL_EXPORT zel_status zel_set_self_timer(zel_camera* camera, uint8_t seconds, int time_limit, zel_error* error);

// Asks for the self-timer, in seconds.
ZEL_EXPORT zel_status zel_self_timer(zel_camera* camera, int time_limit, int32_t* out, zel_error* error);

// Sets what the camera's key does. function: the camera's code.
ZEL_EXPORT zel_status zel_set_key_function(zel_camera* camera, uint8_t function, int time_limit, zel_error* error);

// Sets what three presses of the key do. mode: the camera's code.
ZEL_EXPORT zel_status zel_set_triple_press_mode(zel_camera* camera, uint8_t mode, int time_limit, zel_error* error);

// Asks what three presses of the key do.
ZEL_EXPORT zel_status zel_triple_press_mode(zel_camera* camera, int time_limit, uint8_t* out, zel_error* error);

// Mutes the camera. mute: the camera's code.
ZEL_EXPORT zel_status zel_set_mute(zel_camera* camera, uint8_t mute, int time_limit, zel_error* error);

// Sets the IP switch mode. mode: the camera's code.
ZEL_EXPORT zel_status zel_set_ip_switch_mode(zel_camera* camera, uint8_t mode, int time_limit, zel_error* error);

// Sets the bias of the automatic exposure. bias: in the camera's unit.
ZEL_EXPORT zel_status zel_set_exposure_bias(zel_camera* camera, int16_t bias, int time_limit, zel_error* error);

// Sets how the exposure is metered. mode: the camera's code.
ZEL_EXPORT zel_status zel_set_metering_mode(zel_camera* camera, uint8_t mode, int time_limit, zel_error* error);

// Sets the metering mode to 0 instead: the weights never reach the camera.
ZEL_EXPORT zel_status zel_set_metering_weights(zel_camera* camera, const zel_metering_weights* weights, int time_limit,
                                               zel_error* error);

// Sets the program of still pictures. mode: the camera's code. value: the camera's code.
ZEL_EXPORT zel_status zel_set_still_program_mode(zel_camera* camera, uint8_t mode, uint8_t value, int time_limit,
                                                 zel_error* error);

// Sets the manual exposure. mode: the camera's code.
ZEL_EXPORT zel_status zel_set_manual_exposure(zel_camera* camera, uint8_t mode, const zel_manual_exposure* exposure,
                                              int time_limit, zel_error* error);

// Sets the white balance. mode: the camera's code.
ZEL_EXPORT zel_status zel_set_white_balance(zel_camera* camera, uint8_t mode, int time_limit, zel_error* error);

// Sets the brightness of pictures. brightness: in the camera's scale.
ZEL_EXPORT zel_status zel_set_brightness(zel_camera* camera, int16_t brightness, int time_limit, zel_error* error);

// Sets the contrast of pictures. contrast: in the camera's scale.
ZEL_EXPORT zel_status zel_set_contrast(zel_camera* camera, uint16_t contrast, int time_limit, zel_error* error);

// Sets the saturation of pictures. saturation: in the camera's scale.
ZEL_EXPORT zel_status zel_set_saturation(zel_camera* camera, uint16_t saturation, int time_limit, zel_error* error);

// Sets the hue of pictures. hue: in the camera's scale.
ZEL_EXPORT zel_status zel_set_hue(zel_camera* camera, uint8_t hue, int time_limit, zel_error* error);

// Sets the sharpness of pictures. sharpness: in the camera's scale.
ZEL_EXPORT zel_status zel_set_sharpness(zel_camera* camera, uint8_t sharpness, int time_limit, zel_error* error);

// Sets the digital effect of pictures. effect: the camera's code.
ZEL_EXPORT zel_status zel_set_digital_effect(zel_camera* camera, uint8_t effect, int time_limit, zel_error* error);

// Sets the mains frequency against whose flicker the camera works. flicker: the camera's code.
ZEL_EXPORT zel_status zel_set_flicker(zel_camera* camera, uint8_t flicker, int time_limit, zel_error* error);

// Asks for that frequency, as the camera's code.
ZEL_EXPORT zel_status zel_flicker(zel_camera* camera, int time_limit, uint8_t* out, zel_error* error);

// Sets how long a position counts. The low 8 bits are sent. timeout: in the camera's unit.
ZEL_EXPORT zel_status zel_set_gps_timeout(zel_camera* camera, uint16_t timeout, int time_limit, zel_error* error);

// Asks how long a position counts.
ZEL_EXPORT zel_status zel_gps_timeout(zel_camera* camera, int time_limit, int32_t* out, zel_error* error);

// Sets the time lapse.
ZEL_EXPORT zel_status zel_set_timelapse(zel_camera* camera, const zel_timelapse_info* timelapse, int time_limit,
                                        zel_error* error);

// Asks for the time lapse.
ZEL_EXPORT zel_status zel_timelapse(zel_camera* camera, int time_limit, zel_timelapse_info* out, zel_error* error);

// Sets the exposure bias of the time lapse. bias: in the camera's unit.
ZEL_EXPORT zel_status zel_set_timelapse_exposure_bias(zel_camera* camera, int16_t bias, int time_limit,
                                                      zel_error* error);

// Asks for the exposure bias of the time lapse.
ZEL_EXPORT zel_status zel_timelapse_exposure_bias(zel_camera* camera, int time_limit, int16_t* out, zel_error* error);

// Sets the bitrate of the sound. Firmware below 190 has no such setting.
ZEL_EXPORT zel_status zel_set_audio_bitrate(zel_camera* camera, uint32_t bits_per_second, int time_limit,
                                            zel_error* error);

// Asks for the bitrate of the sound, in bits a second. Firmware below 190 has no such setting.
ZEL_EXPORT zel_status zel_audio_bitrate(zel_camera* camera, int time_limit, uint32_t* out, zel_error* error);

// Asks for the lens offset, by which pictures are stitched, as its text. type: 0: the camera's own. type_info: the
// camera's code. Free what it gives with zel_free().
ZEL_EXPORT zel_status zel_lens_offset(zel_camera* camera, uint8_t type, uint8_t type_info, int time_limit, char** out,
                                      zel_error* error);

// Stores a lens offset. type: 0: the camera's own. type_info: the camera's code.
ZEL_EXPORT zel_status zel_set_lens_offset(zel_camera* camera, uint8_t type, uint8_t type_info, const char* offset,
                                          int time_limit, zel_error* error);

// Asks for the offset of the pictures' origin. type: the camera's code. type_info: the camera's code.
ZEL_EXPORT zel_status zel_origin_offset(zel_camera* camera, uint8_t type, uint8_t type_info, int time_limit,
                                        zel_origin_offset_data* out, zel_error* error);

// Stores the offset of the pictures' origin. type: the camera's code. type_info: the camera's code.
ZEL_EXPORT zel_status zel_set_origin_offset(zel_camera* camera, uint8_t type, uint8_t type_info,
                                            const zel_origin_offset_data* offset, int time_limit, zel_error* error);

// Stores the calibration of the white balance.
ZEL_EXPORT zel_status zel_set_white_balance_gain(zel_camera* camera, const zel_white_balance_gain_data* gain,
                                                 int time_limit, zel_error* error);

// Asks for the calibration of the white balance.
ZEL_EXPORT zel_status zel_white_balance_gain(zel_camera* camera, int time_limit, zel_white_balance_gain_data* out,
                                             zel_error* error);

// Asks whether that calibration is in use, as the camera's code.
ZEL_EXPORT zel_status zel_white_balance_calibration(zel_camera* camera, int time_limit, uint8_t* out, zel_error* error);

// Stores the luma of the vignette's calibration.
ZEL_EXPORT zel_status zel_set_vignette_luma(zel_camera* camera, const zel_vignette_luma_data* luma, int time_limit,
                                            zel_error* error);

// Asks for the luma of the vignette's calibration.
ZEL_EXPORT zel_status zel_vignette_luma(zel_camera* camera, int time_limit, zel_vignette_luma_data* out,
                                        zel_error* error);

// Stores the gain of the vignette's calibration.
ZEL_EXPORT zel_status zel_set_vignette_gain(zel_camera* camera, const zel_vignette_gain_data* gain, int time_limit,
                                            zel_error* error);

// Asks for the gain of the vignette's calibration.
ZEL_EXPORT zel_status zel_vignette_gain(zel_camera* camera, int time_limit, zel_vignette_gain_data* out,
                                        zel_error* error);

// Asks whether that calibration is in use, as the camera's code.
ZEL_EXPORT zel_status zel_vignette_calibration(zel_camera* camera, int time_limit, uint8_t* out, zel_error* error);

// Tells the camera where the host is. It does not answer.
ZEL_EXPORT zel_status zel_update_position(zel_camera* camera, const zel_gps_data* position, int time_limit,
                                          zel_error* error);

// Tells the camera how the host moves. It does not answer.
ZEL_EXPORT zel_status zel_update_motion(zel_camera* camera, const zel_gyro_data* motion, int time_limit,
                                        zel_error* error);

// Starts the preview; gives the resolution that the camera chose. Pictures and streams of this object do so themselves.
// resolution: the code, see PreviewFormat.h.
ZEL_EXPORT zel_status zel_start_preview(zel_camera* camera, uint8_t resolution, int time_limit, uint8_t* out,
                                        zel_error* error);

// Stops the preview, also where pictures or streams of this object need it.
ZEL_EXPORT zel_status zel_stop_preview(zel_camera* camera, int time_limit, zel_error* error);

// Switches the preview's sound. type: 0 off, 1 on.
ZEL_EXPORT zel_status zel_switch_sound(zel_camera* camera, uint8_t type, int time_limit, zel_error* error);

// Stores a text file; gives the camera's own code. The first 32 bytes of the name and the low 16 bits of the size are
// sent.
ZEL_EXPORT zel_status zel_create_text_file(zel_camera* camera, const char* file_name, int32_t size_bytes,
                                           const uint8_t* content, size_t content_length, int time_limit, int32_t* out,
                                           zel_error* error);

// Asks for the metadata of a recorded video.
ZEL_EXPORT zel_status zel_video_metadata(zel_camera* camera, const char* file_name, int time_limit, zel_video_info* out,
                                         zel_error* error);

// Stores a photo's extra information. The first 64 bytes of the name are sent.
ZEL_EXPORT zel_status zel_set_photo_extra_info(zel_camera* camera, const char* file_name, const uint8_t* extra_info,
                                               size_t extra_info_length, int time_limit, zel_error* error);

// Stores a video's extra information. The first 64 bytes of the name are sent.
ZEL_EXPORT zel_status zel_set_video_extra_info(zel_camera* camera, const char* file_name, const uint8_t* extra_info,
                                               size_t extra_info_length, int time_limit, zel_error* error);

// Asks for a video's extra information. Free what it gives with zel_free().
ZEL_EXPORT zel_status zel_video_extra_info(zel_camera* camera, const char* file_name, int time_limit, uint8_t** out,
                                           size_t* length, zel_error* error);

#ifdef __cplusplus
}
#endif
