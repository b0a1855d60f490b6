#include <ZELTarkaSDK/ZELMessageKeys.h>

#include <algorithm>

#include "apps/zelcam/operation.h"
#include "apps/zelcam/operation_binding.h"

namespace zel::app {
namespace {

using namespace binding;
using namespace key;

std::vector<Operation> allOperations() {
  return {
      answered<&ZELCameraUCD::sendFileWithType>("sendFileWithType", {"type", "filePath", "fileData"}),
      answered<&ZELCameraUCD::msgCmdStartVideoWithVideoRes>("msgCmdStartVideoWithVideoRes", {"videoRes"}, {ucharValue}),
      answered<&ZELCameraUCD::msgCmdStopVPWithRebackBlock>("msgCmdStopVPWithRebackBlock"),
      answered<&ZELCameraUCD::msgCmdShutterWithGps>("msgCmdShutterWithGps", {"gps", "gyro", "orientation"},
                                                    {fileTime, fileSize, fileName}),
      answered<&ZELCameraUCD::newMsgCmdShutterWithGps>("newMsgCmdShutterWithGps", {"gps", "gyro", "orientation"},
                                                       {fileTime, fileSize, fileName}),
      answered<&ZELCameraUCD::msgCmdShutterExtraWithGps>(
          "msgCmdShutterExtraWithGps", {"gps", "gyro", "orientation", "jsonData"}, {fileTime, fileSize, fileName}),
      answered<&ZELCameraUCD::newMsgCmdShutterExtraWithGps>(
          "newMsgCmdShutterExtraWithGps", {"gps", "gyro", "orientation", "jsonData"}, {fileTime, fileSize, fileName}),
      answered<&ZELCameraUCD::msgCmdShutterAEBWithGps>("msgCmdShutterAEBWithGps",
                                                       {"gps", "gyro", "orientation", "aebInfo", "jsonData"},
                                                       {fileTime, fileSize, fileName}),
      answered<&ZELCameraUCD::newMsgCmdShutterAEBWithGps>("newMsgCmdShutterAEBWithGps",
                                                          {"gps", "gyro", "orientation", "aebInfo", "jsonData"},
                                                          {fileTime, fileSize, fileName}),
      doesNothing<&ZELCameraUCD::msgCmdShutterHDRWithGps>("msgCmdShutterHDRWithGps",
                                                          {"gps", "gyro", "orientation", "jsonData"}),
      doesNothing<&ZELCameraUCD::newMsgCmdShutterHDRWithGps>("newMsgCmdShutterHDRWithGps",
                                                             {"gps", "gyro", "orientation", "jsonData"}),
      answered<&ZELCameraUCD::msgCmdStartRecordWithGps>("msgCmdStartRecordWithGps", {"gps", "gyro", "orientation"}),
      answered<&ZELCameraUCD::newMsgCmdStartRecordWithGps>("newMsgCmdStartRecordWithGps",
                                                           {"gps", "gyro", "orientation"}),
      answered<&ZELCameraUCD::msgCmdStartRecordExtraWithGps>("msgCmdStartRecordExtraWithGps",
                                                             {"gps", "gyro", "orientation", "jsonData"}),
      answered<&ZELCameraUCD::newMsgCmdStartRecordExtraWithGps>("newMsgCmdStartRecordExtraWithGps",
                                                                {"gps", "gyro", "orientation", "jsonData"}),
      answered<&ZELCameraUCD::newMsgCmdStartRecordPTSWithGps>("newMsgCmdStartRecordPTSWithGps",
                                                              {"gps", "gyro", "orientation", "jsonData"}, {int64Value}),
      answered<&ZELCameraUCD::msgCmdStopRecordWithRebackBlock>("msgCmdStopRecordWithRebackBlock", {},
                                                               {fileTime, fileSize, fileName}),
      answered<&ZELCameraUCD::msgCmdRecordCancelWithRebackBlock>("msgCmdRecordCancelWithRebackBlock"),
      answered<&ZELCameraUCD::msgCmdSetVideoRes>("msgCmdSetVideoRes", {"videoRes"}, {ucharValue}),
      answered<&ZELCameraUCD::msgCmdSetVideoBitrate>("msgCmdSetVideoBitrate", {"type", "videoBitrate"}, {ucharValue}),
      answered<&ZELCameraUCD::msgReqBatteryWithRebackBlock>("msgReqBatteryWithRebackBlock", {},
                                                            {ucharValue, ucharValue2}),
      answered<&ZELCameraUCD::msgReqGetCardStateWithRebackBlock>("msgReqGetCardStateWithRebackBlock", {},
                                                                 {ucharValue, uint64Value, uint64Value2}),
      answered<&ZELCameraUCD::msgReqGetSerialNumber>("msgReqGetSerialNumber", {}, {nsString}),
      answered<&ZELCameraUCD::msgReqSetSerialNumber>("msgReqSetSerialNumber", {"serialNumber"}),
      answered<&ZELCameraUCD::msgReqGetUUIDWithRebackBlock>("msgReqGetUUIDWithRebackBlock", {}, {nsString}),
      answered<&ZELCameraUCD::msgReqGetLensIndexWithRebackBlock>("msgReqGetLensIndexWithRebackBlock", {}, {uintValue}),
      answered<&ZELCameraUCD::msgReqGetEVIndexWithRebackBlock>("msgReqGetEVIndexWithRebackBlock", {}, {ushortValue}),
      answered<&ZELCameraUCD::msgReqGetVideoTimeRemainingWithRebackBlock>("msgReqGetVideoTimeRemainingWithRebackBlock",
                                                                          {}, {uintValue}),
      answered<&ZELCameraUCD::msgReqGetPhotoShotsRemainingWithRebackBlock>(
          "msgReqGetPhotoShotsRemainingWithRebackBlock", {}, {uintValue}),
      answered<&ZELCameraUCD::msgReqSysctrl>("msgReqSysctrl", {"command", "delayTime"}),
      answered<&ZELCameraUCD::msgReqSysctrlCancel>("msgReqSysctrlCancel", {"command"}),
      answered<&ZELCameraUCD::msgReqDelFileCancelWithRebackBlock>("msgReqDelFileCancelWithRebackBlock"),
      answered<&ZELCameraUCD::msgReqSetPhotoSize>("msgReqSetPhotoSize", {"photoSize"}, {ucharValue}),
      answered<&ZELCameraUCD::msgReqSetLocalTime>("msgReqSetLocalTime", {"time", "timeZoneMinutesWest"}),
      answered<&ZELCameraUCD::msgReqSetActiveTime>("msgReqSetActiveTime", {"time", "timeZoneMinutesWest"}),
      answered<&ZELCameraUCD::msgReqGetActiveTimeWithRebackBlock>("msgReqGetActiveTimeWithRebackBlock", {},
                                                                  {intValue, intValue2}),
      answered<&ZELCameraUCD::msgReqSetKeyFunc0>("msgReqSetKeyFunc0", {"function"}),
      answered<&ZELCameraUCD::msgReqSetMute>("msgReqSetMute", {"mute"}),
      answered<&ZELCameraUCD::msgReqSetIPSwitchMode>("msgReqSetIPSwitchMode", {"mode"}),
      answered<&ZELCameraUCD::msgReqSetAEEVBias>("msgReqSetAEEVBias", {"bias"}),
      answered<&ZELCameraUCD::msgReqSetAEMeterMode>("msgReqSetAEMeterMode", {"mode"}),
      answered<&ZELCameraUCD::msgReqSetAEMMWeight>("msgReqSetAEMMWeight", {"weight"}),
      answered<&ZELCameraUCD::msgReqSetStillPMode>("msgReqSetStillPMode", {"mode", "value"}),
      answered<&ZELCameraUCD::msgReqSetMEParam>("msgReqSetMEParam", {"mode", "param"}),
      answered<&ZELCameraUCD::msgReqSetWBMode>("msgReqSetWBMode", {"mode"}),
      answered<&ZELCameraUCD::msgReqSetImageBrightness>("msgReqSetImageBrightness", {"brightness"}),
      answered<&ZELCameraUCD::msgReqSetImageContrast>("msgReqSetImageContrast", {"contrast"}),
      answered<&ZELCameraUCD::msgReqSetImageSaturation>("msgReqSetImageSaturation", {"saturation"}),
      answered<&ZELCameraUCD::msgReqSetImageHue>("msgReqSetImageHue", {"hue"}),
      answered<&ZELCameraUCD::msgReqSetImageSharpness>("msgReqSetImageSharpness", {"sharpness"}),
      answered<&ZELCameraUCD::msgReqReqSetImageDEffect>("msgReqReqSetImageDEffect", {"effect"}),
      answered<&ZELCameraUCD::msgReqSetFlicker>("msgReqSetFlicker", {"flicker"}),
      answered<&ZELCameraUCD::msgReqGetFlickerWithRebackBlock>("msgReqGetFlickerWithRebackBlock", {}, {ucharValue}),
      answered<&ZELCameraUCD::msgReqSetRecTimeLimit>("msgReqSetRecTimeLimit", {"limit"}),
      answered<&ZELCameraUCD::msgReqGetRecTimeLimitWithRebackBlock>("msgReqGetRecTimeLimitWithRebackBlock", {},
                                                                    {intValue}),
      answered<&ZELCameraUCD::msgReqSetPhotoSelfTimer>("msgReqSetPhotoSelfTimer", {"seconds"}),
      answered<&ZELCameraUCD::msgReqGetPhotoSelfTimerWithRebackBlock>("msgReqGetPhotoSelfTimerWithRebackBlock", {},
                                                                      {intValue}),
      answered<&ZELCameraUCD::msgReqSetGPSTimeout>("msgReqSetGPSTimeout", {"timeout"}),
      answered<&ZELCameraUCD::msgReqGetGPSTimeoutWithRebackBlock>("msgReqGetGPSTimeoutWithRebackBlock", {},
                                                                  {ushortValue}),
      answered<&ZELCameraUCD::msgReqSetTriplePressMode>("msgReqSetTriplePressMode", {"mode"}),
      answered<&ZELCameraUCD::msgReqGetTriplePressModeWithRebackBlock>("msgReqGetTriplePressModeWithRebackBlock", {},
                                                                       {ucharValue}),
      answered<&ZELCameraUCD::msgReqSetTimelapseInfo>("msgReqSetTimelapseInfo", {"info"}),
      answered<&ZELCameraUCD::msgReqGetTimelapseInfoWithRebackBlock>("msgReqGetTimelapseInfoWithRebackBlock", {},
                                                                     {nsValue1}),
      answered<&ZELCameraUCD::msgReqSetTimelapseEVBias>("msgReqSetTimelapseEVBias", {"bias"}),
      answered<&ZELCameraUCD::msgReqGetTimelapseEVBiasWithRebackBlock>("msgReqGetTimelapseEVBiasWithRebackBlock", {},
                                                                       {shortValue}),
      answered<&ZELCameraUCD::msgReqSwitchAudioStreamType>("msgReqSwitchAudioStreamType", {"type"}),
      answered<&ZELCameraUCD::msgReqSetAudioBitrate>("msgReqSetAudioBitrate", {"bitrate"}),
      answered<&ZELCameraUCD::msgReqGetAudioBitrateWithRebackBlock>("msgReqGetAudioBitrateWithRebackBlock", {},
                                                                    {uintValue}),
      answered<&ZELCameraUCD::msgReqGetMediaOffset>("msgReqGetMediaOffset", {"type", "typeInfo"}, {nsString}),
      answered<&ZELCameraUCD::msgReqSetMediaOffset>("msgReqSetMediaOffset", {"type", "typeInfo", "offset"}),
      answered<&ZELCameraUCD::msgReqGetOriginOffset>("msgReqGetOriginOffset", {"type", "typeInfo"}, {nsValue1}),
      answered<&ZELCameraUCD::msgReqSetOriginOffset>("msgReqSetOriginOffset", {"type", "typeInfo", "offset"}),
      answered<&ZELCameraUCD::msgReqSetCalibWBGain>("msgReqSetCalibWBGain", {"gain"}),
      answered<&ZELCameraUCD::msgReqGetCalibWBGainWithRebackBlock>("msgReqGetCalibWBGainWithRebackBlock", {},
                                                                   {nsValue1}),
      answered<&ZELCameraUCD::msgReqSetCalibVignetteLuma>("msgReqSetCalibVignetteLuma", {"luma"}),
      answered<&ZELCameraUCD::msgReqGetCalibVignetteLumaWithRebackBlock>("msgReqGetCalibVignetteLumaWithRebackBlock",
                                                                         {}, {nsValue1}),
      answered<&ZELCameraUCD::msgReqSetCalibVigGain>("msgReqSetCalibVigGain", {"gain"}),
      answered<&ZELCameraUCD::msgReqGetCalibVigGainWithRebackBlock>("msgReqGetCalibVigGainWithRebackBlock", {},
                                                                    {nsValue1}),
      answered<&ZELCameraUCD::msgReqGetCalibWBEnableWithRebackBlock>("msgReqGetCalibWBEnableWithRebackBlock", {},
                                                                     {ucharValue}),
      answered<&ZELCameraUCD::msgReqGetCalibVigEnableWithRebackBlock>("msgReqGetCalibVigEnableWithRebackBlock", {},
                                                                      {ucharValue}),
      written<&ZELCameraUCD::msgReqUpdateGps>("msgReqUpdateGps", {"gps"}),
      written<&ZELCameraUCD::newMsgReqUpdateGps>("newMsgReqUpdateGps", {"gps"}),
      written<&ZELCameraUCD::msgReqUpdateGyro>("msgReqUpdateGyro", {"gyro"}),
      written<&ZELCameraUCD::newMsgReqUpdateGyro>("newMsgReqUpdateGyro", {"gyro"}),
      doesNothing<&ZELCameraUCD::msgReqUpdateOrientation>("msgReqUpdateOrientation", {"orientation"}),
      doesNothing<&ZELCameraUCD::newMsgReqUpdateOrientation>("newMsgReqUpdateOrientation", {"orientation"}),
      answered<&ZELCameraUCD::msgReqGetFileMnd>("msgReqGetFileMnd", {"fileName"}, {nsValue1}),
      answeredEvenWithError<&ZELCameraUCD::msgReqCreateTxtFile>("msgReqCreateTxtFile", {"fileName", "dataSize", "data"},
                                                                {intValue}),
      answered<&ZELCameraUCD::msgReqSetPhotoExtraInfoWithFileName>("msgReqSetPhotoExtraInfoWithFileName",
                                                                   {"fileName", "extraInfoData"}),
      answered<&ZELCameraUCD::msgReqSetVideoExtraInfoWithFileName>("msgReqSetVideoExtraInfoWithFileName",
                                                                   {"fileName", "extraInfoData"}),
      answered<&ZELCameraUCD::msgReqGetVideoExtraInfoWithFileName>("msgReqGetVideoExtraInfoWithFileName", {"fileName"},
                                                                   {nsData}),
      answered<&ZELCameraUCD::msgReqSendSyncData>("msgReqSendSyncData", {"data"}),
      answered<&ZELCameraManager::queryCameraBattery>("queryCameraBattery", {}, {ucharValue, ucharValue2}),
      answered<&ZELCameraManager::getCameraMediaOffset>("getCameraMediaOffset", {"typeInfo"}, {nsString}),
      answered<&ZELCameraManager::getCameraAudioBitrateWithRebackBlock>("getCameraAudioBitrateWithRebackBlock", {},
                                                                        {uintValue}),
      answered<&ZELCameraManager::setCameraAudioBitrate>("setCameraAudioBitrate", {"bitrate"}),
  };
}

}  // namespace

std::span<const Operation> operations() {
  static const std::vector<Operation> all = allOperations();
  return all;
}

const Operation* findOperation(std::string_view name) {
  const auto all = operations();
  const auto found = std::ranges::find(all, name, &Operation::name);
  return found != all.end() ? &*found : nullptr;
}

}  // namespace zel::app
