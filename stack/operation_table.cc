#include "stack/operation_table.h"

#include <algorithm>

namespace zel {
namespace {

using binding::nothing;
using binding::operation;
using UCD = ZELCameraUCD;
using Manager = ZELCameraManager;

// The row that is sent, the operation, and the names of its parameters. Operations without a row need none.
// clang-format off
std::vector<Operation> captures() {
  return {
      operation("sendFileWithType", &UCD::sendFileWithType, "type", "filePath", "fileData"),
      operation<"registerMsgCmdStartVideo">("msgCmdStartVideoWithVideoRes", &UCD::msgCmdStartVideoWithVideoRes, "videoRes"),
      operation<"registerMsgCmdStopVP">("msgCmdStopVPWithRebackBlock", &UCD::msgCmdStopVPWithRebackBlock),
      operation<"registerMsgCmdShutter">("msgCmdShutterWithGps", &UCD::msgCmdShutterWithGps, "gps", "gyro", "orientation"),
      operation<"registerMsgCmdShutter">("newMsgCmdShutterWithGps", &UCD::newMsgCmdShutterWithGps, "gps", "gyro", "orientation"),
      operation<"registerMsgCmdShutterExtra">("msgCmdShutterExtraWithGps", &UCD::msgCmdShutterExtraWithGps, "gps", "gyro", "orientation", "jsonData"),
      operation<"registerMsgCmdShutterExtra">("newMsgCmdShutterExtraWithGps", &UCD::newMsgCmdShutterExtraWithGps, "gps", "gyro", "orientation", "jsonData"),
      operation<"registerMsgCmdShutterAEB">("msgCmdShutterAEBWithGps", &UCD::msgCmdShutterAEBWithGps, "gps", "gyro", "orientation", "aebInfo", "jsonData"),
      operation<"registerMsgCmdShutterAEB">("newMsgCmdShutterAEBWithGps", &UCD::newMsgCmdShutterAEBWithGps, "gps", "gyro", "orientation", "aebInfo", "jsonData"),
      nothing("msgCmdShutterHDRWithGps", &UCD::msgCmdShutterHDRWithGps, "gps", "gyro", "orientation", "jsonData"),
      nothing("newMsgCmdShutterHDRWithGps", &UCD::newMsgCmdShutterHDRWithGps, "gps", "gyro", "orientation", "jsonData"),
      operation<"registerMsgCmdStartRecord">("msgCmdStartRecordWithGps", &UCD::msgCmdStartRecordWithGps, "gps", "gyro", "orientation"),
      operation<"registerMsgCmdStartRecord">("newMsgCmdStartRecordWithGps", &UCD::newMsgCmdStartRecordWithGps, "gps", "gyro", "orientation"),
      operation<"registerMsgCmdStartRecordExtra">("msgCmdStartRecordExtraWithGps", &UCD::msgCmdStartRecordExtraWithGps, "gps", "gyro", "orientation", "jsonData"),
      operation<"registerMsgCmdStartRecordExtra">("newMsgCmdStartRecordExtraWithGps", &UCD::newMsgCmdStartRecordExtraWithGps, "gps", "gyro", "orientation", "jsonData"),
      operation<"registerMsgCmdStartRecordPTS">("newMsgCmdStartRecordPTSWithGps", &UCD::newMsgCmdStartRecordPTSWithGps, "gps", "gyro", "orientation", "jsonData"),
      operation<"registerMsgCmdStopRecord">("msgCmdStopRecordWithRebackBlock", &UCD::msgCmdStopRecordWithRebackBlock),
      operation<"registerMsgCmdRecordCancel">("msgCmdRecordCancelWithRebackBlock", &UCD::msgCmdRecordCancelWithRebackBlock),
      operation<"registerMsgCmdSetVideoRes">("msgCmdSetVideoRes", &UCD::msgCmdSetVideoRes, "videoRes"),
      operation<"registerMsgCmdSetVideoBitrate">("msgCmdSetVideoBitrate", &UCD::msgCmdSetVideoBitrate, "type", "videoBitrate"),
  };
}

std::vector<Operation> stateAndSettings() {
  return {
      operation<"registerMsgReqBattery">("msgReqBatteryWithRebackBlock", &UCD::msgReqBatteryWithRebackBlock),
      operation<"registerMsgReqGetCardState">("msgReqGetCardStateWithRebackBlock", &UCD::msgReqGetCardStateWithRebackBlock),
      operation<"registerMsgReqGetSerialNumber">("msgReqGetSerialNumber", &UCD::msgReqGetSerialNumber),
      operation<"registerMsgReqSetSerialNumber">("msgReqSetSerialNumber", &UCD::msgReqSetSerialNumber, "serialNumber"),
      operation<"registerMsgReqGetUUID">("msgReqGetUUIDWithRebackBlock", &UCD::msgReqGetUUIDWithRebackBlock),
      operation<"registerMsgReqGetLensIndex">("msgReqGetLensIndexWithRebackBlock", &UCD::msgReqGetLensIndexWithRebackBlock),
      operation<"registerMsgReqGetEVIndex">("msgReqGetEVIndexWithRebackBlock", &UCD::msgReqGetEVIndexWithRebackBlock),
      operation<"registerMsgReqGetVideoTimeRemaining">("msgReqGetVideoTimeRemainingWithRebackBlock", &UCD::msgReqGetVideoTimeRemainingWithRebackBlock),
      operation<"registerMsgReqGetPhotoShotsRemaining">("msgReqGetPhotoShotsRemainingWithRebackBlock", &UCD::msgReqGetPhotoShotsRemainingWithRebackBlock),
      operation<"registerMsgReqSysctrl">("msgReqSysctrl", &UCD::msgReqSysctrl, "command", "delayTime"),
      operation<"registerMsgReqSysctrlCancel">("msgReqSysctrlCancel", &UCD::msgReqSysctrlCancel, "command"),
      operation<"registerMsgReqDelFileCancel">("msgReqDelFileCancelWithRebackBlock", &UCD::msgReqDelFileCancelWithRebackBlock),
      operation<"registerMsgReqSetPhotoSize">("msgReqSetPhotoSize", &UCD::msgReqSetPhotoSize, "photoSize"),
      operation<"registerMsgReqSetLocalTime">("msgReqSetLocalTime", &UCD::msgReqSetLocalTime, "time", "timeZoneMinutesWest"),
      operation<"registerMsgReqSetActiveTime">("msgReqSetActiveTime", &UCD::msgReqSetActiveTime, "time", "timeZoneMinutesWest"),
      operation<"registerMsgReqGetActiveTime">("msgReqGetActiveTimeWithRebackBlock", &UCD::msgReqGetActiveTimeWithRebackBlock),
      operation<"registerMsgReqSetKeyFunc0">("msgReqSetKeyFunc0", &UCD::msgReqSetKeyFunc0, "function"),
      operation<"registerMsgReqSetMute">("msgReqSetMute", &UCD::msgReqSetMute, "mute"),
      operation<"registerMsgReqSetIPSwitchMode">("msgReqSetIPSwitchMode", &UCD::msgReqSetIPSwitchMode, "mode"),
      operation<"registerMsgReqSetAEEVBias">("msgReqSetAEEVBias", &UCD::msgReqSetAEEVBias, "bias"),
      operation<"registerMsgReqSetAEMeterMode">("msgReqSetAEMeterMode", &UCD::msgReqSetAEMeterMode, "mode"),
      operation<"registerMsgReqSetAEMeterMode">("msgReqSetAEMMWeight", &UCD::msgReqSetAEMMWeight, "weight"),
      operation<"registerMsgReqSetStillPMode">("msgReqSetStillPMode", &UCD::msgReqSetStillPMode, "mode", "value"),
      operation<"registerMsgReqSetMEParam">("msgReqSetMEParam", &UCD::msgReqSetMEParam, "mode", "param"),
      operation<"registerMsgReqSetWBMode">("msgReqSetWBMode", &UCD::msgReqSetWBMode, "mode"),
      operation<"registerMsgReqSetImageBrightness">("msgReqSetImageBrightness", &UCD::msgReqSetImageBrightness, "brightness"),
      operation<"registerMsgReqSetImageContrast">("msgReqSetImageContrast", &UCD::msgReqSetImageContrast, "contrast"),
      operation<"registerMsgReqSetImageSaturation">("msgReqSetImageSaturation", &UCD::msgReqSetImageSaturation, "saturation"),
      operation<"registerMsgReqSetImageHue">("msgReqSetImageHue", &UCD::msgReqSetImageHue, "hue"),
      operation<"registerMsgReqSetImageSharpness">("msgReqSetImageSharpness", &UCD::msgReqSetImageSharpness, "sharpness"),
      operation<"registerMsgReqSetImageDEffect">("msgReqReqSetImageDEffect", &UCD::msgReqReqSetImageDEffect, "effect"),
      operation<"registerMsgReqSetFlicker">("msgReqSetFlicker", &UCD::msgReqSetFlicker, "flicker"),
      operation<"registerMsgReqGetFlicker">("msgReqGetFlickerWithRebackBlock", &UCD::msgReqGetFlickerWithRebackBlock),
      operation<"registerMsgReqSetRecLimitTime">("msgReqSetRecTimeLimit", &UCD::msgReqSetRecTimeLimit, "limit"),
      operation<"registerMsgReqGetRecLimitTime">("msgReqGetRecTimeLimitWithRebackBlock", &UCD::msgReqGetRecTimeLimitWithRebackBlock),
      operation<"registerMsgReqSetPhotoSelfTimer">("msgReqSetPhotoSelfTimer", &UCD::msgReqSetPhotoSelfTimer, "seconds"),
      operation<"registerMsgReqGetPhotoSelfTimer">("msgReqGetPhotoSelfTimerWithRebackBlock", &UCD::msgReqGetPhotoSelfTimerWithRebackBlock),
      operation<"registerMsgReqSetGPSTimeout">("msgReqSetGPSTimeout", &UCD::msgReqSetGPSTimeout, "timeout"),
      operation<"registerMsgReqGetGPSTimeout">("msgReqGetGPSTimeoutWithRebackBlock", &UCD::msgReqGetGPSTimeoutWithRebackBlock),
      operation<"registerMsgReqSetTriplePressMode">("msgReqSetTriplePressMode", &UCD::msgReqSetTriplePressMode, "mode"),
      operation<"registerMsgReqGetTriplePressMode">("msgReqGetTriplePressModeWithRebackBlock", &UCD::msgReqGetTriplePressModeWithRebackBlock),
      operation<"registerMsgReqSetTimelapseInfo">("msgReqSetTimelapseInfo", &UCD::msgReqSetTimelapseInfo, "info"),
      operation<"registerMsgReqGetTimeLapseInfo">("msgReqGetTimelapseInfoWithRebackBlock", &UCD::msgReqGetTimelapseInfoWithRebackBlock),
      operation<"registerMsgReqSetTimelapseEVBias">("msgReqSetTimelapseEVBias", &UCD::msgReqSetTimelapseEVBias, "bias"),
      operation<"registerMsgReqGetTimelapseEVBias">("msgReqGetTimelapseEVBiasWithRebackBlock", &UCD::msgReqGetTimelapseEVBiasWithRebackBlock),
      operation<"registerMsgReqSwitchAudioStreamType">("msgReqSwitchAudioStreamType", &UCD::msgReqSwitchAudioStreamType, "type"),
      operation<"registerMsgReqSetAudioBitrate">("msgReqSetAudioBitrate", &UCD::msgReqSetAudioBitrate, "bitrate"),
      operation<"registerMsgReqGetAudioBitrate">("msgReqGetAudioBitrateWithRebackBlock", &UCD::msgReqGetAudioBitrateWithRebackBlock),
  };
}

std::vector<Operation> calibrationAndFiles() {
  return {
      operation<"registerMsgReqMediaOffset">("msgReqGetMediaOffset", &UCD::msgReqGetMediaOffset, "type", "typeInfo"),
      operation<"registerMsgReqSetMediaOffset">("msgReqSetMediaOffset", &UCD::msgReqSetMediaOffset, "type", "typeInfo", "offset"),
      operation<"registerMsgReqGetOriginOffset">("msgReqGetOriginOffset", &UCD::msgReqGetOriginOffset, "type", "typeInfo"),
      operation<"registerMsgReqSetOriginOffset">("msgReqSetOriginOffset", &UCD::msgReqSetOriginOffset, "type", "typeInfo", "offset"),
      operation<"registerMsgReqSetCalibWBGain">("msgReqSetCalibWBGain", &UCD::msgReqSetCalibWBGain, "gain"),
      operation<"registerMsgReqGetCalibWBGain">("msgReqGetCalibWBGainWithRebackBlock", &UCD::msgReqGetCalibWBGainWithRebackBlock),
      operation<"registerMsgReqSetCalibVigneteLuma">("msgReqSetCalibVignetteLuma", &UCD::msgReqSetCalibVignetteLuma, "luma"),
      operation<"registerMsgReqGetCalibVignetteLuma">("msgReqGetCalibVignetteLumaWithRebackBlock", &UCD::msgReqGetCalibVignetteLumaWithRebackBlock),
      operation<"registerMsgReqSetCalibVigGain">("msgReqSetCalibVigGain", &UCD::msgReqSetCalibVigGain, "gain"),
      operation<"registerMsgReqGetCalibVigGain">("msgReqGetCalibVigGainWithRebackBlock", &UCD::msgReqGetCalibVigGainWithRebackBlock),
      operation<"registerMsgReqGetCalibWBEnable">("msgReqGetCalibWBEnableWithRebackBlock", &UCD::msgReqGetCalibWBEnableWithRebackBlock),
      operation<"registerMsgReqGetCalibVigEnable">("msgReqGetCalibVigEnableWithRebackBlock", &UCD::msgReqGetCalibVigEnableWithRebackBlock),
      operation<"registerMsgReqUpdateGps">("msgReqUpdateGps", &UCD::msgReqUpdateGps, "gps"),
      operation<"registerMsgReqUpdateGps">("newMsgReqUpdateGps", &UCD::newMsgReqUpdateGps, "gps"),
      operation<"registerMsgReqUpdateGyro">("msgReqUpdateGyro", &UCD::msgReqUpdateGyro, "gyro"),
      operation<"registerMsgReqUpdateGyro">("newMsgReqUpdateGyro", &UCD::newMsgReqUpdateGyro, "gyro"),
      operation<"registerMsgReqUpdateOrientation">("msgReqUpdateOrientation", &UCD::msgReqUpdateOrientation, "orientation"),
      operation<"registerMsgReqUpdateOrientation">("newMsgReqUpdateOrientation", &UCD::newMsgReqUpdateOrientation, "orientation"),
      operation<"registerMsgReqGetFileMnd">("msgReqGetFileMnd", &UCD::msgReqGetFileMnd, "fileName"),
      operation<"registerMsgReqCreateTxtFile">("msgReqCreateTxtFile", &UCD::msgReqCreateTxtFile, "fileName", "dataSize", "data"),
      operation<"registerMsgReqSetPhotoExtraInfo">("msgReqSetPhotoExtraInfoWithFileName", &UCD::msgReqSetPhotoExtraInfoWithFileName, "fileName", "extraInfoData"),
      operation<"registerMsgReqSetVideoExtraInfo">("msgReqSetVideoExtraInfoWithFileName", &UCD::msgReqSetVideoExtraInfoWithFileName, "fileName", "extraInfoData"),
      operation<"registerMsgReqGetVideoExtraInfo">("msgReqGetVideoExtraInfoWithFileName", &UCD::msgReqGetVideoExtraInfoWithFileName, "fileName"),
      operation<"registerMsgReqSendSyncData">("msgReqSendSyncData", &UCD::msgReqSendSyncData, "data"),
      operation<"registerMsgReqBattery">("queryCameraBattery", &Manager::queryCameraBattery),
      operation<"registerMsgReqMediaOffset">("getCameraMediaOffset", &Manager::getCameraMediaOffset, "typeInfo"),
      operation<"registerMsgReqGetAudioBitrate">("getCameraAudioBitrateWithRebackBlock", &Manager::getCameraAudioBitrateWithRebackBlock),
      operation<"registerMsgReqSetAudioBitrate">("setCameraAudioBitrate", &Manager::setCameraAudioBitrate, "bitrate"),
  };
}
// clang-format on

std::vector<Operation> allOperations() {
  std::vector<Operation> all;
  for (const auto& part : {captures(), stateAndSettings(), calibrationAndFiles()}) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

}  // namespace

std::span<const Operation> operations() {
  static const std::vector<Operation> kOperations = allOperations();
  return kOperations;
}

const Operation* findOperation(std::string_view name) {
  const auto all = operations();
  const auto found = std::ranges::find(all, name, &Operation::name);
  return found != all.end() ? &*found : nullptr;
}

}  // namespace zel
