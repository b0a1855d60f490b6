#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <ZELTarkaSDK/ZELCameraNotificationProtocol.h>
#include <ZELTarkaSDK/ZELCameraRecords.h>
#include <ZELTarkaSDK/ZELHandlers.h>
#include <ZELTarkaSDK/ZELMediaGps.h>
#include <ZELTarkaSDK/ZELMediaGyro.h>
#include <ZELTarkaSDK/ZELMediaOrientation.h>
#include <ZELTarkaSDK/ZELMessageFields.h>
#include <ZELTarkaSDK/platform/export.h>

class CameraDataParser;
class ZELCameraAccessory;
class ZELUCDFile;

namespace zel {
class KeepAlive;
class RequestEngine;
struct Family;
namespace platform {
class Queue;
}
}  // namespace zel

// Every command, query and setting of the camera, and the events that it sends.
//
// A request is sent where frames arrive or have just stopped (status 2 and 3), and fails with 100 elsewhere. Its
// handler is called once: with the camera's answer; with 101 where the camera refuses or answers nonsense; with 100
// where the link is lost. It is never called where a later request of the same kind is sent before the answer, and it
// waits for good where the camera does not answer: there are no time-outs.
//
// What numbers mean (resolution codes, modes, types) is the camera's; they are passed through.
//
// Owner:  the arguments of the constructor must outlive the object; no frame may arrive once it has gone.
// Thread: any thread; handlers run on the main queue.
// Errors: 100 no connection, 101 refused; see ZELError.h.
class ZEL_EXPORT ZELCameraUCD {
 public:
  using Byte = std::uint8_t;
  using Text = std::optional<std::string>;
  using Data = std::optional<ZELData>;
  using ErrorBlock = zel::RebackBlock<>;
  using ByteBlock = zel::RebackBlock<std::uint8_t>;
  using IntBlock = zel::RebackBlock<std::int32_t>;
  using UintBlock = zel::RebackBlock<std::uint32_t>;
  using TextBlock = zel::RebackBlock<const Text&>;
  // fileTime, fileSize in bytes, fileName: what a capture or a recording was stored as.
  using CaptureBlock = zel::RebackBlock<std::uint32_t, std::uint64_t, const Text&>;
  // The same, with numbers that are absent where there is an error.
  using SeriesBlock =
      zel::RebackBlock<const std::optional<std::uint32_t>&, const std::optional<std::uint64_t>&, const Text&>;
  using Gps = std::shared_ptr<const ZELMediaGps>;
  using Gyro = std::shared_ptr<const ZELMediaGyro>;
  using Orientation = std::shared_ptr<const ZELMediaOrientation>;

  // The command layer of the process-wide stack.
  static ZELCameraUCD& defaultCameraUCD();

  ZELCameraUCD(ZELCameraAccessory& accessory, CameraDataParser& parser, ZELUCDFile& ucdFile,
               zel::platform::Queue& mainQueue);
  ~ZELCameraUCD();
  ZELCameraUCD(const ZELCameraUCD&) = delete;
  ZELCameraUCD& operator=(const ZELCameraUCD&) = delete;

  // What is held while receivers are called. Set by the stack, before traffic starts.
  void setKeepAlive(const zel::KeepAlive& keepAlive);
  // The stack goes: every handler that waits gets 100, of requests, captures and uploads.
  void failEverything();

  // -- The engine

  // sendMsg:msgDataDic:rebackBlock: - sends the request of a message type, built of these fields.
  void sendMsg(std::int64_t msgType, const ZELMessageFields& msgDataDic, zel::RebackDic rebackBlock);
  // responseCameraMsg:rebackDic: - completes the handler that waits under the type.
  void responseCameraMsg(std::int64_t msgType, const std::optional<ZELMessageFields>& rebackDic);
  // responseCameraErrorMsg: - fails it with 101.
  void responseCameraErrorMsg(std::int64_t msgType);
  // responseAllReblackBlockWithErrorCode: - fails every handler that waits, and the capture that waits for its photo.
  // ("Reblack" is the interface's spelling.)
  void responseAllReblackBlockWithErrorCode(int errorCode);

  // Shared readers of replies; each completes the handler of the type. Bytes beyond the value are ignored.
  // parserReceiveUint8ResponseData:msgType:
  void parserReceiveUint8ResponseData(const Data& data, std::int64_t msgType);
  // parserReceiveUint8ValueData:msgType:
  void parserReceiveUint8ValueData(const Data& data, std::int64_t msgType);
  // parserReceiveUint8ResponseAndUint8ValueData:msgType:
  void parserReceiveUint8ResponseAndUint8ValueData(const Data& data, std::int64_t msgType);
  // parserReceiveUint8ResponseAndInt16ValueData:msgType:
  void parserReceiveUint8ResponseAndInt16ValueData(const Data& data, std::int64_t msgType);
  // parserReceiveUint8ResponseAndUint32ValueData:msgType:
  void parserReceiveUint8ResponseAndUint32ValueData(const Data& data, std::int64_t msgType);

  // addCameraNotificationReceiver: - the receiver hears of every event; one that is added twice hears twice.
  // Owner:  held until it is removed.
  void addCameraNotificationReceiver(std::shared_ptr<ZELCameraNotificationProtocol> receiver);
  // removeCameraNotificationReceiver: - every addition of it. Afterwards it hears nothing and is not being called;
  // inside a callback nobody is waited for, and a call in progress on another thread is the last.
  void removeCameraNotificationReceiver(const ZELCameraNotificationProtocol* receiver);
  // sendNotification:value: - hands an event to every receiver before it returns, in the order of their addition.
  void sendNotification(std::int64_t type, const std::optional<ZELMessageFields>& value);

  // sendFileWithType:filePath:fileData:rebackBlock: - uploads a file. type: the camera's; filePath: its name there.
  // A drive in it ("C:/") cuts its first three characters; where nothing is left of it, the handler is not kept.
  // Thread: the handler runs on the session thread where the camera's answer names the path, else on the main queue.
  void sendFileWithType(std::int64_t type, const Text& filePath, const ZELData& fileData, ErrorBlock rebackBlock);

  // -- Preview and photos
  //
  // photoData gets the picture, or 100 where the link is lost before it comes. What the command itself ends with, it
  // gets only where there is a rebackBlock: without one, a capture that is refused waits for a picture that never
  // comes.
  //
  // The error goes to the capture in force once rebackBlock has returned. A capture that rebackBlock begins, as a
  // retry, is that one: it is failed with the old error, and loses its picture. Begin it when photoData is called.

  // setDemuxVideoRes: - has the de-multiplexer expect the preview of that resolution; starting it does so by itself.
  void setDemuxVideoRes(std::uint64_t videoRes);
  // msgCmdStartVideoWithVideoRes:rebackBlock: - starts the preview stream of that resolution; the camera answers with
  // the one it chose. The preview player is reset before the handler is called.
  void msgCmdStartVideoWithVideoRes(Byte videoRes, ByteBlock rebackBlock);
  // msgCmdStopVPWithRebackBlock:
  void msgCmdStopVPWithRebackBlock(ErrorBlock rebackBlock);
  // msgCmdShutterWithGps:gyro:orientation:rebackBlock:photoData:
  void msgCmdShutterWithGps(const ZELGpsData& gps, const ZELGyroData& gyro, const ZELOrientationData& orientation,
                            CaptureBlock rebackBlock, ZELPhotoBlock photoData);
  // newMsgCmdShutterWithGps:gyro:orientation:rebackBlock:photoData:
  void newMsgCmdShutterWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                               CaptureBlock rebackBlock, ZELPhotoBlock photoData);
  // msgCmdShutterExtraWithGps:gyro:orientation:jsonData:rebackBlock:photoData:
  void msgCmdShutterExtraWithGps(const ZELGpsData& gps, const ZELGyroData& gyro, const ZELOrientationData& orientation,
                                 const Data& jsonData, CaptureBlock rebackBlock, ZELPhotoBlock photoData);
  // newMsgCmdShutterExtraWithGps:gyro:orientation:jsonData:rebackBlock:photoData:
  void newMsgCmdShutterExtraWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                    const Data& jsonData, CaptureBlock rebackBlock, ZELPhotoBlock photoData);
  // msgCmdShutterAEBWithGps:gyro:orientation:aebInfo:jsonData:rebackBlock:photoData: - one picture an exposure step.
  void msgCmdShutterAEBWithGps(const ZELGpsData& gps, const ZELGyroData& gyro, const ZELOrientationData& orientation,
                               const aeb_info& aebInfo, const Data& jsonData, SeriesBlock rebackBlock,
                               ZELPhotoSeriesBlock photoData);
  // newMsgCmdShutterAEBWithGps:gyro:orientation:aebInfo:jsonData:rebackBlock:photoData:
  void newMsgCmdShutterAEBWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                  const aeb_info& aebInfo, const Data& jsonData, SeriesBlock rebackBlock,
                                  ZELPhotoSeriesBlock photoData);
  // msgCmdShutterHDRWithGps:gyro:orientation:jsonData:rebackBlock: - does nothing, see ZELHDRShutter.
  void msgCmdShutterHDRWithGps(const ZELGpsData& gps, const ZELGyroData& gyro, const ZELOrientationData& orientation,
                               const Data& jsonData, CaptureBlock rebackBlock);
  // newMsgCmdShutterHDRWithGps:gyro:orientation:jsonData:rebackBlock: - does nothing either.
  void newMsgCmdShutterHDRWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                  const Data& jsonData, CaptureBlock rebackBlock);

  // -- Recording

  // msgCmdStartRecordWithGps:gyro:orientation:rebackBlock:
  void msgCmdStartRecordWithGps(const ZELGpsData& gps, const ZELGyroData& gyro, const ZELOrientationData& orientation,
                                ErrorBlock rebackBlock);
  // newMsgCmdStartRecordWithGps:gyro:orientation:rebackBlock:
  void newMsgCmdStartRecordWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                   ErrorBlock rebackBlock);
  // msgCmdStartRecordExtraWithGps:gyro:orientation:jsonData:rebackBlock:
  void msgCmdStartRecordExtraWithGps(const ZELGpsData& gps, const ZELGyroData& gyro,
                                     const ZELOrientationData& orientation, const Data& jsonData,
                                     ErrorBlock rebackBlock);
  // newMsgCmdStartRecordExtraWithGps:gyro:orientation:jsonData:rebackBlock:
  void newMsgCmdStartRecordExtraWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                        const Data& jsonData, ErrorBlock rebackBlock);
  // newMsgCmdStartRecordPTSWithGps:gyro:orientation:jsonData:rebackBlock: - the handler gets the camera's time stamp of
  // the recording's start.
  void newMsgCmdStartRecordPTSWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                      const Data& jsonData, zel::RebackBlock<std::int64_t> rebackBlock);
  // msgCmdStopRecordWithRebackBlock:
  void msgCmdStopRecordWithRebackBlock(CaptureBlock rebackBlock);
  // msgCmdRecordCancelWithRebackBlock:
  void msgCmdRecordCancelWithRebackBlock(ErrorBlock rebackBlock);
  // msgCmdSetVideoRes:rebackBlock: - the handler gets the resolution that the camera chose.
  void msgCmdSetVideoRes(Byte videoRes, ByteBlock rebackBlock);
  // msgCmdSetVideoBitrate:videoBitrate:rebackBlock:
  void msgCmdSetVideoBitrate(Byte type, Byte videoBitrate, ByteBlock rebackBlock);

  // -- The camera's state

  // msgReqBatteryWithRebackBlock: - power type, battery level.
  void msgReqBatteryWithRebackBlock(zel::RebackBlock<std::uint8_t, std::uint8_t> rebackBlock);
  // msgReqGetCardStateWithRebackBlock: - state, then the card's whole and free space.
  // Units:  bytes.
  void msgReqGetCardStateWithRebackBlock(zel::RebackBlock<std::uint8_t, std::uint64_t, std::uint64_t> rebackBlock);
  // msgReqGetSerialNumber: - the text is absent where the camera's is not ASCII.
  void msgReqGetSerialNumber(TextBlock rebackBlock);
  // msgReqSetSerialNumber:rebackBlock: - a text that is not ASCII is sent as nothing.
  void msgReqSetSerialNumber(const Text& serialNumber, ErrorBlock rebackBlock);
  // msgReqGetUUIDWithRebackBlock:
  void msgReqGetUUIDWithRebackBlock(TextBlock rebackBlock);
  // msgReqGetLensIndexWithRebackBlock:
  void msgReqGetLensIndexWithRebackBlock(UintBlock rebackBlock);
  // msgReqGetEVIndexWithRebackBlock:
  void msgReqGetEVIndexWithRebackBlock(zel::RebackBlock<std::uint16_t> rebackBlock);
  // msgReqGetVideoTimeRemainingWithRebackBlock: - seconds.
  void msgReqGetVideoTimeRemainingWithRebackBlock(UintBlock rebackBlock);
  // msgReqGetPhotoShotsRemainingWithRebackBlock:
  void msgReqGetPhotoShotsRemainingWithRebackBlock(UintBlock rebackBlock);
  // msgReqSysctrl:delayTime:rebackBlock:
  void msgReqSysctrl(Byte command, Byte delayTime, ErrorBlock rebackBlock);
  // msgReqSysctrlCancel:rebackBlock:
  void msgReqSysctrlCancel(Byte command, ErrorBlock rebackBlock);
  // msgReqDelFileCancelWithRebackBlock:
  void msgReqDelFileCancelWithRebackBlock(ErrorBlock rebackBlock);

  // -- Settings

  // msgReqSetPhotoSize:rebackBlock: - the handler gets the size that the camera chose.
  void msgReqSetPhotoSize(Byte photoSize, ByteBlock rebackBlock);
  // msgReqSetLocalTime:timeZoneMinutesWest:rebackBlock: - seconds, and minutes west of UTC.
  void msgReqSetLocalTime(std::int32_t time, std::int32_t timeZoneMinutesWest, ErrorBlock rebackBlock);
  // msgReqSetActiveTime:timeZoneMinutesWest:rebackBlock:
  void msgReqSetActiveTime(std::int32_t time, std::int32_t timeZoneMinutesWest, ErrorBlock rebackBlock);
  // msgReqGetActiveTimeWithRebackBlock:
  void msgReqGetActiveTimeWithRebackBlock(zel::RebackBlock<std::int32_t, std::int32_t> rebackBlock);
  // msgReqSetKeyFunc0:rebackBlock:
  void msgReqSetKeyFunc0(Byte function, ErrorBlock rebackBlock);
  // msgReqSetMute:rebackBlock:
  void msgReqSetMute(Byte mute, ErrorBlock rebackBlock);
  // msgReqSetIPSwitchMode:rebackBlock:
  void msgReqSetIPSwitchMode(Byte mode, ErrorBlock rebackBlock);
  // msgReqSetAEEVBias:rebackBlock:
  void msgReqSetAEEVBias(std::int16_t bias, ErrorBlock rebackBlock);
  // msgReqSetAEMeterMode:rebackBlock:
  void msgReqSetAEMeterMode(Byte mode, ErrorBlock rebackBlock);
  // msgReqSetAEMMWeight:rebackBlock: - sets the metering mode to 0 instead: the weights never reach the camera.
  void msgReqSetAEMMWeight(const ZELIPAEMMWeight& weight, ErrorBlock rebackBlock);
  // msgReqSetStillPMode:value:rebackBlock:
  void msgReqSetStillPMode(Byte mode, Byte value, ErrorBlock rebackBlock);
  // msgReqSetMEParam:param:rebackBlock:
  void msgReqSetMEParam(Byte mode, const ZELIPMEParam& param, ErrorBlock rebackBlock);
  // msgReqSetWBMode:rebackBlock:
  void msgReqSetWBMode(Byte mode, ErrorBlock rebackBlock);
  // msgReqSetImageBrightness:rebackBlock:
  void msgReqSetImageBrightness(std::int16_t brightness, ErrorBlock rebackBlock);
  // msgReqSetImageContrast:rebackBlock:
  void msgReqSetImageContrast(std::uint16_t contrast, ErrorBlock rebackBlock);
  // msgReqSetImageSaturation:rebackBlock:
  void msgReqSetImageSaturation(std::uint16_t saturation, ErrorBlock rebackBlock);
  // msgReqSetImageHue:rebackBlock:
  void msgReqSetImageHue(Byte hue, ErrorBlock rebackBlock);
  // msgReqSetImageSharpness:rebackBlock:
  void msgReqSetImageSharpness(Byte sharpness, ErrorBlock rebackBlock);
  // msgReqReqSetImageDEffect:rebackBlock: - the doubled "Req" is the interface's spelling.
  void msgReqReqSetImageDEffect(Byte effect, ErrorBlock rebackBlock);
  // msgReqSetFlicker:rebackBlock:
  void msgReqSetFlicker(Byte flicker, ErrorBlock rebackBlock);
  // msgReqGetFlickerWithRebackBlock:
  void msgReqGetFlickerWithRebackBlock(ByteBlock rebackBlock);
  // msgReqSetRecTimeLimit:rebackBlock: - the limit's low 8 bits are sent.
  void msgReqSetRecTimeLimit(std::int32_t limit, ErrorBlock rebackBlock);
  // msgReqGetRecTimeLimitWithRebackBlock:
  void msgReqGetRecTimeLimitWithRebackBlock(IntBlock rebackBlock);
  // msgReqSetPhotoSelfTimer:rebackBlock:
  void msgReqSetPhotoSelfTimer(Byte seconds, ErrorBlock rebackBlock);
  // msgReqGetPhotoSelfTimerWithRebackBlock:
  void msgReqGetPhotoSelfTimerWithRebackBlock(IntBlock rebackBlock);
  // msgReqSetGPSTimeout:rebackBlock: - the time-out's low 8 bits are sent.
  void msgReqSetGPSTimeout(std::uint16_t timeout, ErrorBlock rebackBlock);
  // msgReqGetGPSTimeoutWithRebackBlock:
  void msgReqGetGPSTimeoutWithRebackBlock(IntBlock rebackBlock);
  // msgReqSetTriplePressMode:rebackBlock:
  void msgReqSetTriplePressMode(Byte mode, ErrorBlock rebackBlock);
  // msgReqGetTriplePressModeWithRebackBlock:
  void msgReqGetTriplePressModeWithRebackBlock(ByteBlock rebackBlock);
  // msgReqSetTimelapseInfo:rebackBlock:
  void msgReqSetTimelapseInfo(const timelapse_info& info, ErrorBlock rebackBlock);
  // msgReqGetTimelapseInfoWithRebackBlock:
  void msgReqGetTimelapseInfoWithRebackBlock(zel::RebackBlock<const timelapse_info&> rebackBlock);
  // msgReqSetTimelapseEVBias:rebackBlock:
  void msgReqSetTimelapseEVBias(std::int16_t bias, ErrorBlock rebackBlock);
  // msgReqGetTimelapseEVBiasWithRebackBlock:
  void msgReqGetTimelapseEVBiasWithRebackBlock(zel::RebackBlock<std::int16_t> rebackBlock);
  // msgReqSwitchAudioStreamType:rebackBlock:
  void msgReqSwitchAudioStreamType(Byte type, ErrorBlock rebackBlock);
  // msgReqSetAudioBitrate:rebackBlock:
  void msgReqSetAudioBitrate(std::uint32_t bitrate, ErrorBlock rebackBlock);
  // msgReqGetAudioBitrateWithRebackBlock:
  void msgReqGetAudioBitrateWithRebackBlock(UintBlock rebackBlock);

  // -- Lens and sensor calibration

  // msgReqGetMediaOffset:typeInfo:rebackBlock: - the lens offset's text.
  void msgReqGetMediaOffset(Byte type, Byte typeInfo, TextBlock rebackBlock);
  // msgReqSetMediaOffset:typeInfo:offset:rebackBlock:
  void msgReqSetMediaOffset(Byte type, Byte typeInfo, const Text& offset, ErrorBlock rebackBlock);
  // msgReqGetOriginOffset:typeInfo:rebackBlock:
  void msgReqGetOriginOffset(Byte type, Byte typeInfo, zel::RebackBlock<const ZELOriginOffset&> rebackBlock);
  // msgReqSetOriginOffset:typeInfo:offset:rebackBlock:
  void msgReqSetOriginOffset(Byte type, Byte typeInfo, const ZELOriginOffset& offset, ErrorBlock rebackBlock);
  // msgReqSetCalibWBGain:rebackBlock:
  void msgReqSetCalibWBGain(const calib_wb_gain& gain, ErrorBlock rebackBlock);
  // msgReqGetCalibWBGainWithRebackBlock:
  void msgReqGetCalibWBGainWithRebackBlock(zel::RebackBlock<const calib_wb_gain&> rebackBlock);
  // msgReqSetCalibVignetteLuma:rebackBlock:
  void msgReqSetCalibVignetteLuma(const calib_vignette_luma& luma, ErrorBlock rebackBlock);
  // msgReqGetCalibVignetteLumaWithRebackBlock:
  void msgReqGetCalibVignetteLumaWithRebackBlock(zel::RebackBlock<const calib_vignette_luma&> rebackBlock);
  // msgReqSetCalibVigGain:rebackBlock:
  void msgReqSetCalibVigGain(const calib_vignette_gain& gain, ErrorBlock rebackBlock);
  // msgReqGetCalibVigGainWithRebackBlock:
  void msgReqGetCalibVigGainWithRebackBlock(zel::RebackBlock<const calib_vignette_gain&> rebackBlock);
  // msgReqGetCalibWBEnableWithRebackBlock:
  void msgReqGetCalibWBEnableWithRebackBlock(ByteBlock rebackBlock);
  // msgReqGetCalibVigEnableWithRebackBlock:
  void msgReqGetCalibVigEnableWithRebackBlock(ByteBlock rebackBlock);

  // -- Where the host is. No answer comes.

  // msgReqUpdateGps:, newMsgReqUpdateGps:
  void msgReqUpdateGps(const ZELGpsData& gps);
  void newMsgReqUpdateGps(const Gps& gps);
  // msgReqUpdateGyro:, newMsgReqUpdateGyro:
  void msgReqUpdateGyro(const ZELGyroData& gyro);
  void newMsgReqUpdateGyro(const Gyro& gyro);
  // msgReqUpdateOrientation:, newMsgReqUpdateOrientation: - nothing is ever sent: cameras take the orientation with
  // each capture.
  void msgReqUpdateOrientation(const ZELOrientationData& orientation);
  void newMsgReqUpdateOrientation(const Orientation& orientation);

  // -- Files

  // msgReqGetFileMnd:rebackBlock: - what the camera keeps with a recorded video.
  void msgReqGetFileMnd(const Text& fileName, zel::RebackBlock<const ZELVideoMnd&> rebackBlock);
  // msgReqCreateTxtFile:dataSize:data:rebackBlock: - the handler gets the camera's own code, with the error too.
  // fileName: its first 32 bytes are sent. dataSize: its low 16 bits are.
  void msgReqCreateTxtFile(const Text& fileName, std::int32_t dataSize, const Data& data, IntBlock rebackBlock);
  // msgReqSetPhotoExtraInfoWithFileName:extraInfoData:rebackBlock: - of the name the first 64 bytes are sent.
  void msgReqSetPhotoExtraInfoWithFileName(const Text& fileName, const Data& extraInfoData, ErrorBlock rebackBlock);
  // msgReqSetVideoExtraInfoWithFileName:extraInfoData:rebackBlock:
  void msgReqSetVideoExtraInfoWithFileName(const Text& fileName, const Data& extraInfoData, ErrorBlock rebackBlock);
  // msgReqGetVideoExtraInfoWithFileName:rebackBlock:
  void msgReqGetVideoExtraInfoWithFileName(const Text& fileName, zel::RebackBlock<const Data&> rebackBlock);
  // msgReqSendSyncData:rebackBlock: - asks the camera for the synchronisation marker. It is sent whatever the status,
  // because it is what brings the first frame. The handler gets nothing, or the error's dictionary.
  void msgReqSendSyncData(const ZELData& data, zel::RebackDic rebackBlock);

 private:
  void request(const zel::Family& family, const ZELMessageFields& fields, zel::RebackDic rebackBlock);
  template <class Block>
  zel::RebackDic captureAdapter(Block rebackBlock);

  std::unique_ptr<zel::RequestEngine> engine_;
};
