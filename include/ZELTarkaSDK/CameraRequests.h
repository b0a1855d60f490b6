#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <ZELTarkaSDK/CameraValues.h>
#include <ZELTarkaSDK/Pending.h>
#include <ZELTarkaSDK/ZELCameraRecords.h>
#include <ZELTarkaSDK/ZELData.h>
#include <ZELTarkaSDK/platform/export.h>

namespace zel {

class CameraCore;

// Every request that a camera answers, as a call each; made from bindings/requests.toml by tools/bindings/generate.py.
//
// Requests of one kind wait for each other; those of different kinds do not. Numbers whose meaning only the camera
// knows are passed through.
//
// Thread: any thread.
//
// Errors: `lost` without a link, `refused` by the camera, `timeLimit`, `cancelled`, and `closed` once the camera object
//         is destroyed.
class ZEL_EXPORT CameraRequests {
 public:
  // Asks for the battery.
  Pending<Battery> battery(const RequestOptions& options = {});

  // Asks for the memory card.
  Pending<Card> card(const RequestOptions& options = {});

  // Asks how many seconds of video the card still takes.
  Pending<std::uint32_t> videoSecondsRemaining(const RequestOptions& options = {});

  // Asks how many photos the card still takes.
  Pending<std::uint32_t> photosRemaining(const RequestOptions& options = {});

  // Asks for the serial number that the camera has stored.
  Pending<std::optional<std::string>> serialNumber(const RequestOptions& options = {});

  // Stores a serial number. A text that is not ASCII is sent as nothing.
  Pending<void> setSerialNumber(const std::string& serialNumber, const RequestOptions& options = {});

  // Asks for the camera's UUID.
  Pending<std::optional<std::string>> uuid(const RequestOptions& options = {});

  // Asks for the index of the lens.
  Pending<std::uint32_t> lensIndex(const RequestOptions& options = {});

  // Asks for the exposure index.
  Pending<std::uint16_t> exposureIndex(const RequestOptions& options = {});

  // Asks when the camera was first used.
  Pending<ActivationTime> activationTime(const RequestOptions& options = {});

  // Stores when the camera was first used. seconds: since 1970.
  Pending<void> setActivationTime(std::int32_t seconds, std::int32_t timeZoneMinutesWest,
                                  const RequestOptions& options = {});

  // Sets the camera's clock. seconds: since 1970.
  Pending<void> setLocalTime(std::int32_t seconds, std::int32_t timeZoneMinutesWest,
                             const RequestOptions& options = {});

  // Makes the camera do one of its system commands. command: the camera's code. delayTime: in the camera's unit.
  Pending<void> controlSystem(std::uint8_t command, std::uint8_t delayTime, const RequestOptions& options = {});

  // Takes a system command back that waits for its time. command: the camera's code.
  Pending<void> cancelSystemControl(std::uint8_t command, const RequestOptions& options = {});

  // Ends a deletion of files that is under way.
  Pending<void> cancelDeletion(const RequestOptions& options = {});

  // Begins a recording on the card. Records that are all zero stand for a position and a motion that are not known.
  Pending<void> startRecording(const ZELGpsData& position, const ZELGyroData& motion,
                               const ZELOrientationData& orientation, const RequestOptions& options = {});

  // The same with extra information. extraInfo: JSON that is stored with the recording.
  Pending<void> startRecordingWithExtraInfo(const ZELGpsData& position, const ZELGyroData& motion,
                                            const ZELOrientationData& orientation,
                                            const std::optional<ZELData>& extraInfo,
                                            const RequestOptions& options = {});

  // The same; gives the camera's time stamp of the recording's start. extraInfo: JSON that is stored with the
  // recording.
  Pending<std::int64_t> startTimedRecording(const ZELGpsData& position, const ZELGyroData& motion,
                                            const ZELOrientationData& orientation,
                                            const std::optional<ZELData>& extraInfo,
                                            const RequestOptions& options = {});

  // Ends the recording.
  Pending<StoredFile> stopRecording(const RequestOptions& options = {});

  // Ends the recording and throws it away.
  Pending<void> cancelRecording(const RequestOptions& options = {});

  // Sets the resolution of recordings; gives the one that the camera chose. resolution: the camera's code.
  Pending<std::uint8_t> setVideoResolution(std::uint8_t resolution, const RequestOptions& options = {});

  // Sets the bitrate of recordings; gives the one that the camera chose. type: the camera's code. bitrate: the camera's
  // code.
  Pending<std::uint8_t> setVideoBitrate(std::uint8_t type, std::uint8_t bitrate, const RequestOptions& options = {});

  // Limits the length of recordings. The limit's low 8 bits are sent. limit: in the camera's unit.
  Pending<void> setRecordingLimit(std::int32_t limit, const RequestOptions& options = {});

  // Asks for the limit of recordings.
  Pending<std::int32_t> recordingLimit(const RequestOptions& options = {});

  // Sets the size of photos; gives the one that the camera chose. size: the camera's code.
  Pending<std::uint8_t> setPhotoSize(std::uint8_t size, const RequestOptions& options = {});

  // Sets the self-timer of photos.
  Pending<void> setSelfTimer(std::uint8_t seconds, const RequestOptions& options = {});

  // Asks for the self-timer, in seconds.
  Pending<std::int32_t> selfTimer(const RequestOptions& options = {});

  // Sets what the camera's key does. function: the camera's code.
  Pending<void> setKeyFunction(std::uint8_t function, const RequestOptions& options = {});

  // Sets what three presses of the key do. mode: the camera's code.
  Pending<void> setTriplePressMode(std::uint8_t mode, const RequestOptions& options = {});

  // Asks what three presses of the key do.
  Pending<std::uint8_t> triplePressMode(const RequestOptions& options = {});

  // Mutes the camera. mute: the camera's code.
  Pending<void> setMute(std::uint8_t mute, const RequestOptions& options = {});

  // Sets the IP switch mode. mode: the camera's code.
  Pending<void> setIPSwitchMode(std::uint8_t mode, const RequestOptions& options = {});

  // Sets the bias of the automatic exposure. bias: in the camera's unit.
  Pending<void> setExposureBias(std::int16_t bias, const RequestOptions& options = {});

  // Sets how the exposure is metered. mode: the camera's code.
  Pending<void> setMeteringMode(std::uint8_t mode, const RequestOptions& options = {});

  // Sets the metering mode to 0 instead: the weights never reach the camera.
  Pending<void> setMeteringWeights(const ZELIPAEMMWeight& weights, const RequestOptions& options = {});

  // Sets the program of still pictures. mode: the camera's code. value: the camera's code.
  Pending<void> setStillProgramMode(std::uint8_t mode, std::uint8_t value, const RequestOptions& options = {});

  // Sets the manual exposure. mode: the camera's code.
  Pending<void> setManualExposure(std::uint8_t mode, const ZELIPMEParam& exposure, const RequestOptions& options = {});

  // Sets the white balance. mode: the camera's code.
  Pending<void> setWhiteBalance(std::uint8_t mode, const RequestOptions& options = {});

  // Sets the brightness of pictures. brightness: in the camera's scale.
  Pending<void> setBrightness(std::int16_t brightness, const RequestOptions& options = {});

  // Sets the contrast of pictures. contrast: in the camera's scale.
  Pending<void> setContrast(std::uint16_t contrast, const RequestOptions& options = {});

  // Sets the saturation of pictures. saturation: in the camera's scale.
  Pending<void> setSaturation(std::uint16_t saturation, const RequestOptions& options = {});

  // Sets the hue of pictures. hue: in the camera's scale.
  Pending<void> setHue(std::uint8_t hue, const RequestOptions& options = {});

  // Sets the sharpness of pictures. sharpness: in the camera's scale.
  Pending<void> setSharpness(std::uint8_t sharpness, const RequestOptions& options = {});

  // Sets the digital effect of pictures. effect: the camera's code.
  Pending<void> setDigitalEffect(std::uint8_t effect, const RequestOptions& options = {});

  // Sets the mains frequency against whose flicker the camera works. flicker: the camera's code.
  Pending<void> setFlicker(std::uint8_t flicker, const RequestOptions& options = {});

  // Asks for that frequency, as the camera's code.
  Pending<std::uint8_t> flicker(const RequestOptions& options = {});

  // Sets how long a position counts. The low 8 bits are sent. timeout: in the camera's unit.
  Pending<void> setGpsTimeout(std::uint16_t timeout, const RequestOptions& options = {});

  // Asks how long a position counts.
  Pending<std::int32_t> gpsTimeout(const RequestOptions& options = {});

  // Sets the time lapse.
  Pending<void> setTimelapse(const timelapse_info& timelapse, const RequestOptions& options = {});

  // Asks for the time lapse.
  Pending<timelapse_info> timelapse(const RequestOptions& options = {});

  // Sets the exposure bias of the time lapse. bias: in the camera's unit.
  Pending<void> setTimelapseExposureBias(std::int16_t bias, const RequestOptions& options = {});

  // Asks for the exposure bias of the time lapse.
  Pending<std::int16_t> timelapseExposureBias(const RequestOptions& options = {});

  // Sets the bitrate of the sound. Firmware below 190 has no such setting.
  Pending<void> setAudioBitrate(std::uint32_t bitsPerSecond, const RequestOptions& options = {});

  // Asks for the bitrate of the sound, in bits a second. Firmware below 190 has no such setting.
  Pending<std::uint32_t> audioBitrate(const RequestOptions& options = {});

  // Asks for the lens offset, by which pictures are stitched, as its text. type: 0: the camera's own. typeInfo: the
  // camera's code.
  Pending<std::optional<std::string>> lensOffset(std::uint8_t type, std::uint8_t typeInfo,
                                                 const RequestOptions& options = {});

  // Stores a lens offset. type: 0: the camera's own. typeInfo: the camera's code.
  Pending<void> setLensOffset(std::uint8_t type, std::uint8_t typeInfo, const std::string& offset,
                              const RequestOptions& options = {});

  // Asks for the offset of the pictures' origin. type: the camera's code. typeInfo: the camera's code.
  Pending<ZELOriginOffset> originOffset(std::uint8_t type, std::uint8_t typeInfo, const RequestOptions& options = {});

  // Stores the offset of the pictures' origin. type: the camera's code. typeInfo: the camera's code.
  Pending<void> setOriginOffset(std::uint8_t type, std::uint8_t typeInfo, const ZELOriginOffset& offset,
                                const RequestOptions& options = {});

  // Stores the calibration of the white balance.
  Pending<void> setWhiteBalanceGain(const calib_wb_gain& gain, const RequestOptions& options = {});

  // Asks for the calibration of the white balance.
  Pending<calib_wb_gain> whiteBalanceGain(const RequestOptions& options = {});

  // Asks whether that calibration is in use, as the camera's code.
  Pending<std::uint8_t> whiteBalanceCalibration(const RequestOptions& options = {});

  // Stores the luma of the vignette's calibration.
  Pending<void> setVignetteLuma(const calib_vignette_luma& luma, const RequestOptions& options = {});

  // Asks for the luma of the vignette's calibration.
  Pending<calib_vignette_luma> vignetteLuma(const RequestOptions& options = {});

  // Stores the gain of the vignette's calibration.
  Pending<void> setVignetteGain(const calib_vignette_gain& gain, const RequestOptions& options = {});

  // Asks for the gain of the vignette's calibration.
  Pending<calib_vignette_gain> vignetteGain(const RequestOptions& options = {});

  // Asks whether that calibration is in use, as the camera's code.
  Pending<std::uint8_t> vignetteCalibration(const RequestOptions& options = {});

  // Tells the camera where the host is. It does not answer.
  Pending<void> updatePosition(const ZELGpsData& position, const RequestOptions& options = {});

  // Tells the camera how the host moves. It does not answer.
  Pending<void> updateMotion(const ZELGyroData& motion, const RequestOptions& options = {});

  // Starts the preview; gives the resolution that the camera chose. Pictures and streams of this object do so
  // themselves. resolution: the code, see PreviewFormat.h.
  Pending<std::uint8_t> startPreview(std::uint8_t resolution, const RequestOptions& options = {});

  // Stops the preview, also where pictures or streams of this object need it.
  Pending<void> stopPreview(const RequestOptions& options = {});

  // Switches the preview's sound. type: 0 off, 1 on.
  Pending<void> switchSound(std::uint8_t type, const RequestOptions& options = {});

  // Stores a text file; gives the camera's own code. The first 32 bytes of the name and the low 16 bits of the size are
  // sent.
  Pending<std::int32_t> createTextFile(const std::string& fileName, std::int32_t sizeBytes, const ZELData& content,
                                       const RequestOptions& options = {});

  // Asks for the metadata of a recorded video.
  Pending<ZELVideoMnd> videoMetadata(const std::string& fileName, const RequestOptions& options = {});

  // Stores a photo's extra information. The first 64 bytes of the name are sent.
  Pending<void> setPhotoExtraInfo(const std::string& fileName, const ZELData& extraInfo,
                                  const RequestOptions& options = {});

  // Stores a video's extra information. The first 64 bytes of the name are sent.
  Pending<void> setVideoExtraInfo(const std::string& fileName, const ZELData& extraInfo,
                                  const RequestOptions& options = {});

  // Asks for a video's extra information.
  Pending<std::optional<ZELData>> videoExtraInfo(const std::string& fileName, const RequestOptions& options = {});

 protected:
  CameraRequests() = default;
  ~CameraRequests() = default;
  CameraRequests(const CameraRequests&) = default;
  CameraRequests& operator=(const CameraRequests&) = default;
  CameraRequests(CameraRequests&&) noexcept = default;
  CameraRequests& operator=(CameraRequests&&) noexcept = default;
  std::shared_ptr<CameraCore> core_;
};

}  // namespace zel
