// Made from bindings/requests.toml by tools/bindings/generate.py.

#include <ZELTarkaSDK/CameraRequests.h>
#include <ZELTarkaSDK/ZELCameraManager.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>

#include "facade/ask.h"

namespace zel {

Pending<Battery> CameraRequests::battery(const RequestOptions& options) {
  return ask<Battery>(core_, {"battery", "registerMsgReqBattery"}, options,
                      &ZELCameraUCD::msgReqBatteryWithRebackBlock);
}

Pending<Card> CameraRequests::card(const RequestOptions& options) {
  return ask<Card>(core_, {"card", "registerMsgReqGetCardState"}, options,
                   &ZELCameraUCD::msgReqGetCardStateWithRebackBlock);
}

Pending<std::uint32_t> CameraRequests::videoSecondsRemaining(const RequestOptions& options) {
  return ask<std::uint32_t>(core_, {"videoSecondsRemaining", "registerMsgReqGetVideoTimeRemaining"}, options,
                            &ZELCameraUCD::msgReqGetVideoTimeRemainingWithRebackBlock);
}

Pending<std::uint32_t> CameraRequests::photosRemaining(const RequestOptions& options) {
  return ask<std::uint32_t>(core_, {"photosRemaining", "registerMsgReqGetPhotoShotsRemaining"}, options,
                            &ZELCameraUCD::msgReqGetPhotoShotsRemainingWithRebackBlock);
}

Pending<std::optional<std::string>> CameraRequests::serialNumber(const RequestOptions& options) {
  return ask<std::optional<std::string>>(core_, {"serialNumber", "registerMsgReqGetSerialNumber"}, options,
                                         &ZELCameraUCD::msgReqGetSerialNumber);
}

Pending<void> CameraRequests::setSerialNumber(const std::string& serialNumber, const RequestOptions& options) {
  return ask<void>(core_, {"setSerialNumber", "registerMsgReqSetSerialNumber"}, options,
                   &ZELCameraUCD::msgReqSetSerialNumber, serialNumber);
}

Pending<std::optional<std::string>> CameraRequests::uuid(const RequestOptions& options) {
  return ask<std::optional<std::string>>(core_, {"uuid", "registerMsgReqGetUUID"}, options,
                                         &ZELCameraUCD::msgReqGetUUIDWithRebackBlock);
}

Pending<std::uint32_t> CameraRequests::lensIndex(const RequestOptions& options) {
  return ask<std::uint32_t>(core_, {"lensIndex", "registerMsgReqGetLensIndex"}, options,
                            &ZELCameraUCD::msgReqGetLensIndexWithRebackBlock);
}

Pending<std::uint16_t> CameraRequests::exposureIndex(const RequestOptions& options) {
  return ask<std::uint16_t>(core_, {"exposureIndex", "registerMsgReqGetEVIndex"}, options,
                            &ZELCameraUCD::msgReqGetEVIndexWithRebackBlock);
}

Pending<ActivationTime> CameraRequests::activationTime(const RequestOptions& options) {
  return ask<ActivationTime>(core_, {"activationTime", "registerMsgReqGetActiveTime"}, options,
                             &ZELCameraUCD::msgReqGetActiveTimeWithRebackBlock);
}

Pending<void> CameraRequests::setActivationTime(std::int32_t seconds, std::int32_t timeZoneMinutesWest,
                                                const RequestOptions& options) {
  return ask<void>(core_, {"setActivationTime", "registerMsgReqSetActiveTime"}, options,
                   &ZELCameraUCD::msgReqSetActiveTime, seconds, timeZoneMinutesWest);
}

Pending<void> CameraRequests::setLocalTime(std::int32_t seconds, std::int32_t timeZoneMinutesWest,
                                           const RequestOptions& options) {
  return ask<void>(core_, {"setLocalTime", "registerMsgReqSetLocalTime"}, options, &ZELCameraUCD::msgReqSetLocalTime,
                   seconds, timeZoneMinutesWest);
}

Pending<void> CameraRequests::controlSystem(std::uint8_t command, std::uint8_t delayTime,
                                            const RequestOptions& options) {
  return ask<void>(core_, {"controlSystem", "registerMsgReqSysctrl"}, options, &ZELCameraUCD::msgReqSysctrl, command,
                   delayTime);
}

Pending<void> CameraRequests::cancelSystemControl(std::uint8_t command, const RequestOptions& options) {
  return ask<void>(core_, {"cancelSystemControl", "registerMsgReqSysctrlCancel"}, options,
                   &ZELCameraUCD::msgReqSysctrlCancel, command);
}

Pending<void> CameraRequests::cancelDeletion(const RequestOptions& options) {
  return ask<void>(core_, {"cancelDeletion", "registerMsgReqDelFileCancel"}, options,
                   &ZELCameraUCD::msgReqDelFileCancelWithRebackBlock);
}

Pending<void> CameraRequests::startRecording(const ZELGpsData& position, const ZELGyroData& motion,
                                             const ZELOrientationData& orientation, const RequestOptions& options) {
  return ask<void>(core_, {"startRecording", "registerMsgCmdStartRecord"}, options,
                   &ZELCameraUCD::msgCmdStartRecordWithGps, position, motion, orientation);
}

Pending<void> CameraRequests::startRecordingWithExtraInfo(const ZELGpsData& position, const ZELGyroData& motion,
                                                          const ZELOrientationData& orientation,
                                                          const std::optional<ZELData>& extraInfo,
                                                          const RequestOptions& options) {
  return ask<void>(core_, {"startRecordingWithExtraInfo", "registerMsgCmdStartRecordExtra"}, options,
                   &ZELCameraUCD::msgCmdStartRecordExtraWithGps, position, motion, orientation, extraInfo);
}

Pending<std::int64_t> CameraRequests::startTimedRecording(const ZELGpsData& position, const ZELGyroData& motion,
                                                          const ZELOrientationData& orientation,
                                                          const std::optional<ZELData>& extraInfo,
                                                          const RequestOptions& options) {
  return ask<std::int64_t>(core_, {"startTimedRecording", "registerMsgCmdStartRecordPTS"}, options,
                           &ZELCameraUCD::newMsgCmdStartRecordPTSWithGps, position, motion, orientation, extraInfo);
}

Pending<StoredFile> CameraRequests::stopRecording(const RequestOptions& options) {
  return ask<StoredFile>(core_, {"stopRecording", "registerMsgCmdStopRecord"}, options,
                         &ZELCameraUCD::msgCmdStopRecordWithRebackBlock);
}

Pending<void> CameraRequests::cancelRecording(const RequestOptions& options) {
  return ask<void>(core_, {"cancelRecording", "registerMsgCmdRecordCancel"}, options,
                   &ZELCameraUCD::msgCmdRecordCancelWithRebackBlock);
}

Pending<std::uint8_t> CameraRequests::setVideoResolution(std::uint8_t resolution, const RequestOptions& options) {
  return ask<std::uint8_t>(core_, {"setVideoResolution", "registerMsgCmdSetVideoRes"}, options,
                           &ZELCameraUCD::msgCmdSetVideoRes, resolution);
}

Pending<std::uint8_t> CameraRequests::setVideoBitrate(std::uint8_t type, std::uint8_t bitrate,
                                                      const RequestOptions& options) {
  return ask<std::uint8_t>(core_, {"setVideoBitrate", "registerMsgCmdSetVideoBitrate"}, options,
                           &ZELCameraUCD::msgCmdSetVideoBitrate, type, bitrate);
}

Pending<void> CameraRequests::setRecordingLimit(std::int32_t limit, const RequestOptions& options) {
  return ask<void>(core_, {"setRecordingLimit", "registerMsgReqSetRecLimitTime"}, options,
                   &ZELCameraUCD::msgReqSetRecTimeLimit, limit);
}

Pending<std::int32_t> CameraRequests::recordingLimit(const RequestOptions& options) {
  return ask<std::int32_t>(core_, {"recordingLimit", "registerMsgReqGetRecLimitTime"}, options,
                           &ZELCameraUCD::msgReqGetRecTimeLimitWithRebackBlock);
}

Pending<std::uint8_t> CameraRequests::setPhotoSize(std::uint8_t size, const RequestOptions& options) {
  return ask<std::uint8_t>(core_, {"setPhotoSize", "registerMsgReqSetPhotoSize"}, options,
                           &ZELCameraUCD::msgReqSetPhotoSize, size);
}

Pending<void> CameraRequests::setSelfTimer(std::uint8_t seconds, const RequestOptions& options) {
  return ask<void>(core_, {"setSelfTimer", "registerMsgReqSetPhotoSelfTimer"}, options,
                   &ZELCameraUCD::msgReqSetPhotoSelfTimer, seconds);
}

Pending<std::int32_t> CameraRequests::selfTimer(const RequestOptions& options) {
  return ask<std::int32_t>(core_, {"selfTimer", "registerMsgReqGetPhotoSelfTimer"}, options,
                           &ZELCameraUCD::msgReqGetPhotoSelfTimerWithRebackBlock);
}

Pending<void> CameraRequests::setKeyFunction(std::uint8_t function, const RequestOptions& options) {
  return ask<void>(core_, {"setKeyFunction", "registerMsgReqSetKeyFunc0"}, options, &ZELCameraUCD::msgReqSetKeyFunc0,
                   function);
}

Pending<void> CameraRequests::setTriplePressMode(std::uint8_t mode, const RequestOptions& options) {
  return ask<void>(core_, {"setTriplePressMode", "registerMsgReqSetTriplePressMode"}, options,
                   &ZELCameraUCD::msgReqSetTriplePressMode, mode);
}

Pending<std::uint8_t> CameraRequests::triplePressMode(const RequestOptions& options) {
  return ask<std::uint8_t>(core_, {"triplePressMode", "registerMsgReqGetTriplePressMode"}, options,
                           &ZELCameraUCD::msgReqGetTriplePressModeWithRebackBlock);
}

Pending<void> CameraRequests::setMute(std::uint8_t mute, const RequestOptions& options) {
  return ask<void>(core_, {"setMute", "registerMsgReqSetMute"}, options, &ZELCameraUCD::msgReqSetMute, mute);
}

Pending<void> CameraRequests::setIPSwitchMode(std::uint8_t mode, const RequestOptions& options) {
  return ask<void>(core_, {"setIPSwitchMode", "registerMsgReqSetIPSwitchMode"}, options,
                   &ZELCameraUCD::msgReqSetIPSwitchMode, mode);
}

Pending<void> CameraRequests::setExposureBias(std::int16_t bias, const RequestOptions& options) {
  return ask<void>(core_, {"setExposureBias", "registerMsgReqSetAEEVBias"}, options, &ZELCameraUCD::msgReqSetAEEVBias,
                   bias);
}

Pending<void> CameraRequests::setMeteringMode(std::uint8_t mode, const RequestOptions& options) {
  return ask<void>(core_, {"setMeteringMode", "registerMsgReqSetAEMeterMode"}, options,
                   &ZELCameraUCD::msgReqSetAEMeterMode, mode);
}

Pending<void> CameraRequests::setMeteringWeights(const ZELIPAEMMWeight& weights, const RequestOptions& options) {
  return ask<void>(core_, {"setMeteringWeights", "registerMsgReqSetAEMeterMode"}, options,
                   &ZELCameraUCD::msgReqSetAEMMWeight, weights);
}

Pending<void> CameraRequests::setStillProgramMode(std::uint8_t mode, std::uint8_t value,
                                                  const RequestOptions& options) {
  return ask<void>(core_, {"setStillProgramMode", "registerMsgReqSetStillPMode"}, options,
                   &ZELCameraUCD::msgReqSetStillPMode, mode, value);
}

Pending<void> CameraRequests::setManualExposure(std::uint8_t mode, const ZELIPMEParam& exposure,
                                                const RequestOptions& options) {
  return ask<void>(core_, {"setManualExposure", "registerMsgReqSetMEParam"}, options, &ZELCameraUCD::msgReqSetMEParam,
                   mode, exposure);
}

Pending<void> CameraRequests::setWhiteBalance(std::uint8_t mode, const RequestOptions& options) {
  return ask<void>(core_, {"setWhiteBalance", "registerMsgReqSetWBMode"}, options, &ZELCameraUCD::msgReqSetWBMode,
                   mode);
}

Pending<void> CameraRequests::setBrightness(std::int16_t brightness, const RequestOptions& options) {
  return ask<void>(core_, {"setBrightness", "registerMsgReqSetImageBrightness"}, options,
                   &ZELCameraUCD::msgReqSetImageBrightness, brightness);
}

Pending<void> CameraRequests::setContrast(std::uint16_t contrast, const RequestOptions& options) {
  return ask<void>(core_, {"setContrast", "registerMsgReqSetImageContrast"}, options,
                   &ZELCameraUCD::msgReqSetImageContrast, contrast);
}

Pending<void> CameraRequests::setSaturation(std::uint16_t saturation, const RequestOptions& options) {
  return ask<void>(core_, {"setSaturation", "registerMsgReqSetImageSaturation"}, options,
                   &ZELCameraUCD::msgReqSetImageSaturation, saturation);
}

Pending<void> CameraRequests::setHue(std::uint8_t hue, const RequestOptions& options) {
  return ask<void>(core_, {"setHue", "registerMsgReqSetImageHue"}, options, &ZELCameraUCD::msgReqSetImageHue, hue);
}

Pending<void> CameraRequests::setSharpness(std::uint8_t sharpness, const RequestOptions& options) {
  return ask<void>(core_, {"setSharpness", "registerMsgReqSetImageSharpness"}, options,
                   &ZELCameraUCD::msgReqSetImageSharpness, sharpness);
}

Pending<void> CameraRequests::setDigitalEffect(std::uint8_t effect, const RequestOptions& options) {
  return ask<void>(core_, {"setDigitalEffect", "registerMsgReqSetImageDEffect"}, options,
                   &ZELCameraUCD::msgReqReqSetImageDEffect, effect);
}

Pending<void> CameraRequests::setFlicker(std::uint8_t flicker, const RequestOptions& options) {
  return ask<void>(core_, {"setFlicker", "registerMsgReqSetFlicker"}, options, &ZELCameraUCD::msgReqSetFlicker,
                   flicker);
}

Pending<std::uint8_t> CameraRequests::flicker(const RequestOptions& options) {
  return ask<std::uint8_t>(core_, {"flicker", "registerMsgReqGetFlicker"}, options,
                           &ZELCameraUCD::msgReqGetFlickerWithRebackBlock);
}

Pending<void> CameraRequests::setGpsTimeout(std::uint16_t timeout, const RequestOptions& options) {
  return ask<void>(core_, {"setGpsTimeout", "registerMsgReqSetGPSTimeout"}, options, &ZELCameraUCD::msgReqSetGPSTimeout,
                   timeout);
}

Pending<std::int32_t> CameraRequests::gpsTimeout(const RequestOptions& options) {
  return ask<std::int32_t>(core_, {"gpsTimeout", "registerMsgReqGetGPSTimeout"}, options,
                           &ZELCameraUCD::msgReqGetGPSTimeoutWithRebackBlock);
}

Pending<void> CameraRequests::setTimelapse(const timelapse_info& timelapse, const RequestOptions& options) {
  return ask<void>(core_, {"setTimelapse", "registerMsgReqSetTimelapseInfo"}, options,
                   &ZELCameraUCD::msgReqSetTimelapseInfo, timelapse);
}

Pending<timelapse_info> CameraRequests::timelapse(const RequestOptions& options) {
  return ask<timelapse_info>(core_, {"timelapse", "registerMsgReqGetTimeLapseInfo"}, options,
                             &ZELCameraUCD::msgReqGetTimelapseInfoWithRebackBlock);
}

Pending<void> CameraRequests::setTimelapseExposureBias(std::int16_t bias, const RequestOptions& options) {
  return ask<void>(core_, {"setTimelapseExposureBias", "registerMsgReqSetTimelapseEVBias"}, options,
                   &ZELCameraUCD::msgReqSetTimelapseEVBias, bias);
}

Pending<std::int16_t> CameraRequests::timelapseExposureBias(const RequestOptions& options) {
  return ask<std::int16_t>(core_, {"timelapseExposureBias", "registerMsgReqGetTimelapseEVBias"}, options,
                           &ZELCameraUCD::msgReqGetTimelapseEVBiasWithRebackBlock);
}

Pending<void> CameraRequests::setAudioBitrate(std::uint32_t bitsPerSecond, const RequestOptions& options) {
  return ask<void>(core_, {"setAudioBitrate", "registerMsgReqSetAudioBitrate"}, options,
                   &ZELCameraManager::setCameraAudioBitrate, bitsPerSecond);
}

Pending<std::uint32_t> CameraRequests::audioBitrate(const RequestOptions& options) {
  return ask<std::uint32_t>(core_, {"audioBitrate", "registerMsgReqGetAudioBitrate"}, options,
                            &ZELCameraManager::getCameraAudioBitrateWithRebackBlock);
}

Pending<std::optional<std::string>> CameraRequests::lensOffset(std::uint8_t type, std::uint8_t typeInfo,
                                                               const RequestOptions& options) {
  return ask<std::optional<std::string>>(core_, {"lensOffset", "registerMsgReqMediaOffset"}, options,
                                         &ZELCameraUCD::msgReqGetMediaOffset, type, typeInfo);
}

Pending<void> CameraRequests::setLensOffset(std::uint8_t type, std::uint8_t typeInfo, const std::string& offset,
                                            const RequestOptions& options) {
  return ask<void>(core_, {"setLensOffset", "registerMsgReqSetMediaOffset"}, options,
                   &ZELCameraUCD::msgReqSetMediaOffset, type, typeInfo, offset);
}

Pending<ZELOriginOffset> CameraRequests::originOffset(std::uint8_t type, std::uint8_t typeInfo,
                                                      const RequestOptions& options) {
  return ask<ZELOriginOffset>(core_, {"originOffset", "registerMsgReqGetOriginOffset"}, options,
                              &ZELCameraUCD::msgReqGetOriginOffset, type, typeInfo);
}

Pending<void> CameraRequests::setOriginOffset(std::uint8_t type, std::uint8_t typeInfo, const ZELOriginOffset& offset,
                                              const RequestOptions& options) {
  return ask<void>(core_, {"setOriginOffset", "registerMsgReqSetOriginOffset"}, options,
                   &ZELCameraUCD::msgReqSetOriginOffset, type, typeInfo, offset);
}

Pending<void> CameraRequests::setWhiteBalanceGain(const calib_wb_gain& gain, const RequestOptions& options) {
  return ask<void>(core_, {"setWhiteBalanceGain", "registerMsgReqSetCalibWBGain"}, options,
                   &ZELCameraUCD::msgReqSetCalibWBGain, gain);
}

Pending<calib_wb_gain> CameraRequests::whiteBalanceGain(const RequestOptions& options) {
  return ask<calib_wb_gain>(core_, {"whiteBalanceGain", "registerMsgReqGetCalibWBGain"}, options,
                            &ZELCameraUCD::msgReqGetCalibWBGainWithRebackBlock);
}

Pending<std::uint8_t> CameraRequests::whiteBalanceCalibration(const RequestOptions& options) {
  return ask<std::uint8_t>(core_, {"whiteBalanceCalibration", "registerMsgReqGetCalibWBEnable"}, options,
                           &ZELCameraUCD::msgReqGetCalibWBEnableWithRebackBlock);
}

Pending<void> CameraRequests::setVignetteLuma(const calib_vignette_luma& luma, const RequestOptions& options) {
  return ask<void>(core_, {"setVignetteLuma", "registerMsgReqSetCalibVigneteLuma"}, options,
                   &ZELCameraUCD::msgReqSetCalibVignetteLuma, luma);
}

Pending<calib_vignette_luma> CameraRequests::vignetteLuma(const RequestOptions& options) {
  return ask<calib_vignette_luma>(core_, {"vignetteLuma", "registerMsgReqGetCalibVignetteLuma"}, options,
                                  &ZELCameraUCD::msgReqGetCalibVignetteLumaWithRebackBlock);
}

Pending<void> CameraRequests::setVignetteGain(const calib_vignette_gain& gain, const RequestOptions& options) {
  return ask<void>(core_, {"setVignetteGain", "registerMsgReqSetCalibVigGain"}, options,
                   &ZELCameraUCD::msgReqSetCalibVigGain, gain);
}

Pending<calib_vignette_gain> CameraRequests::vignetteGain(const RequestOptions& options) {
  return ask<calib_vignette_gain>(core_, {"vignetteGain", "registerMsgReqGetCalibVigGain"}, options,
                                  &ZELCameraUCD::msgReqGetCalibVigGainWithRebackBlock);
}

Pending<std::uint8_t> CameraRequests::vignetteCalibration(const RequestOptions& options) {
  return ask<std::uint8_t>(core_, {"vignetteCalibration", "registerMsgReqGetCalibVigEnable"}, options,
                           &ZELCameraUCD::msgReqGetCalibVigEnableWithRebackBlock);
}

Pending<void> CameraRequests::updatePosition(const ZELGpsData& position, const RequestOptions& options) {
  return tell(core_, {"updatePosition", "registerMsgReqUpdateGps"}, options, &ZELCameraUCD::msgReqUpdateGps, position);
}

Pending<void> CameraRequests::updateMotion(const ZELGyroData& motion, const RequestOptions& options) {
  return tell(core_, {"updateMotion", "registerMsgReqUpdateGyro"}, options, &ZELCameraUCD::msgReqUpdateGyro, motion);
}

Pending<std::uint8_t> CameraRequests::startPreview(std::uint8_t resolution, const RequestOptions& options) {
  return ask<std::uint8_t>(core_, {"startPreview", "registerMsgCmdStartVideo"}, options,
                           &ZELCameraUCD::msgCmdStartVideoWithVideoRes, resolution);
}

Pending<void> CameraRequests::stopPreview(const RequestOptions& options) {
  return ask<void>(core_, {"stopPreview", "registerMsgCmdStopVP"}, options, &ZELCameraUCD::msgCmdStopVPWithRebackBlock);
}

Pending<void> CameraRequests::switchSound(std::uint8_t type, const RequestOptions& options) {
  return ask<void>(core_, {"switchSound", "registerMsgReqSwitchAudioStreamType"}, options,
                   &ZELCameraUCD::msgReqSwitchAudioStreamType, type);
}

Pending<std::int32_t> CameraRequests::createTextFile(const std::string& fileName, std::int32_t sizeBytes,
                                                     const ZELData& content, const RequestOptions& options) {
  return ask<std::int32_t>(core_, {"createTextFile", "registerMsgReqCreateTxtFile"}, options,
                           &ZELCameraUCD::msgReqCreateTxtFile, fileName, sizeBytes, content);
}

Pending<ZELVideoMnd> CameraRequests::videoMetadata(const std::string& fileName, const RequestOptions& options) {
  return ask<ZELVideoMnd>(core_, {"videoMetadata", "registerMsgReqGetFileMnd"}, options,
                          &ZELCameraUCD::msgReqGetFileMnd, fileName);
}

Pending<void> CameraRequests::setPhotoExtraInfo(const std::string& fileName, const ZELData& extraInfo,
                                                const RequestOptions& options) {
  return ask<void>(core_, {"setPhotoExtraInfo", "registerMsgReqSetPhotoExtraInfo"}, options,
                   &ZELCameraUCD::msgReqSetPhotoExtraInfoWithFileName, fileName, extraInfo);
}

Pending<void> CameraRequests::setVideoExtraInfo(const std::string& fileName, const ZELData& extraInfo,
                                                const RequestOptions& options) {
  return ask<void>(core_, {"setVideoExtraInfo", "registerMsgReqSetVideoExtraInfo"}, options,
                   &ZELCameraUCD::msgReqSetVideoExtraInfoWithFileName, fileName, extraInfo);
}

Pending<std::optional<ZELData>> CameraRequests::videoExtraInfo(const std::string& fileName,
                                                               const RequestOptions& options) {
  return ask<std::optional<ZELData>>(core_, {"videoExtraInfo", "registerMsgReqGetVideoExtraInfo"}, options,
                                     &ZELCameraUCD::msgReqGetVideoExtraInfoWithFileName, fileName);
}

}  // namespace zel
