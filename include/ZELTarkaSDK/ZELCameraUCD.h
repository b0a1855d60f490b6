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
namespace platform {
class Queue;
}
}  // namespace zel

// Every command, query and setting of the camera, and the events that it sends.
//
// A request is sent at status 2 (frames arrive) and 3 (frames stopped), and fails with 100 otherwise. Its handler is
// called once: with the camera's reply; with 101 when the camera refuses or sends a malformed reply; with 100 when the
// link is lost. It is never called when a later request of the same kind is sent before the reply. There are no
// timeouts: it stays pending while the camera does not reply.
//
// Numbers such as resolution codes, modes and types are the camera's; they are passed through.
//
// Owner:  the arguments of the constructor must outlive the object; no frame may arrive after its destruction.
// Thread: any thread; handlers run on the main queue.
// Errors: 100 no connection, 101 refused; see ZELError.h. A request for which there is no memory is not sent, and its
//         handlers get 101. Where there is none for that either, or nobody to be told, the call does nothing and counts
//         as lostForMemory().
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
  // The same; numbers are absent when there is an error.
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

  // Keeps the stack alive while receivers are called. Set by the stack, before traffic starts.
  void setKeepAlive(const zel::KeepAlive& keepAlive);
  // Calls every pending handler of requests, captures and uploads with error 100; the stack is being destroyed.
  void failEverything();

  // Calls of the host and answers for which there was no memory, of which nobody could be told.
  std::uint64_t lostForMemory() const;

  // -- The engine

  // sendMsg:msgDataDic:rebackBlock: - sends the request of a message type with these fields.
  void sendMsg(std::int64_t msgType, const ZELMessageFields& msgDataDic, zel::RebackDic rebackBlock);
  // responseCameraMsg:rebackDic: - completes the type's pending handler.
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

  // addCameraNotificationReceiver: - the receiver gets every event; one that is added twice gets each event twice.
  // Owner:  held until it is removed.
  void addCameraNotificationReceiver(std::shared_ptr<ZELCameraNotificationProtocol> receiver);
  // removeCameraNotificationReceiver: - removes every addition of it. Afterwards it is not called and no call is in
  // progress. Inside a callback the removal does not wait, and a call in progress on another thread is the last.
  void removeCameraNotificationReceiver(const ZELCameraNotificationProtocol* receiver);
  // sendNotification:value: - hands an event to every receiver before it returns, in the order of their addition.
  void sendNotification(std::int64_t type, const std::optional<ZELMessageFields>& value);

  // sendFileWithType:filePath:fileData:rebackBlock: - uploads a file. type: the camera's; filePath: its name there. A
  // path with a drive ("C:/") loses its first three characters. When nothing is left of it, the handler is dropped.
  // Thread: the handler runs on the session thread when the camera's reply names the path, else on the main queue.
  void sendFileWithType(std::int64_t type, const Text& filePath, const ZELData& fileData, ErrorBlock rebackBlock);

  // -- Preview and photos
  //
  // photoData gets the picture, or 100 when the link is lost before it arrives. It gets the error of a refused capture
  // only when there is a rebackBlock. Without one it stays pending, although no picture will arrive.
  //
  // The error goes to the capture that is current after rebackBlock has returned. A retry that rebackBlock starts is
  // that capture: it fails with the old error and loses its picture. Start a retry when photoData is called.

  // setDemuxVideoRes: - tells the de-multiplexer the resolution of the preview. Starting the preview does so too.
  void setDemuxVideoRes(std::uint64_t videoRes);
  // msgCmdStartVideoWithVideoRes:rebackBlock: - starts the preview stream at that resolution; the camera replies with
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

  // -- The host's position and motion. The camera does not reply.

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

  // msgReqGetFileMnd:rebackBlock: - the metadata of a recorded video.
  void msgReqGetFileMnd(const Text& fileName, zel::RebackBlock<const ZELVideoMnd&> rebackBlock);
  // msgReqCreateTxtFile:dataSize:data:rebackBlock: - the handler gets the camera's own code, also together with an
  // error. fileName: its first 32 bytes are sent. dataSize: its low 16 bits are.
  void msgReqCreateTxtFile(const Text& fileName, std::int32_t dataSize, const Data& data, IntBlock rebackBlock);
  // msgReqSetPhotoExtraInfoWithFileName:extraInfoData:rebackBlock: - the first 64 bytes of the name are sent.
  void msgReqSetPhotoExtraInfoWithFileName(const Text& fileName, const Data& extraInfoData, ErrorBlock rebackBlock);
  // msgReqSetVideoExtraInfoWithFileName:extraInfoData:rebackBlock:
  void msgReqSetVideoExtraInfoWithFileName(const Text& fileName, const Data& extraInfoData, ErrorBlock rebackBlock);
  // msgReqGetVideoExtraInfoWithFileName:rebackBlock:
  void msgReqGetVideoExtraInfoWithFileName(const Text& fileName, zel::RebackBlock<const Data&> rebackBlock);
  // msgReqSendSyncData:rebackBlock: - requests the synchronisation marker. It is sent at any status, because the camera
  // sends no frame before it. The handler gets nothing, or the error's dictionary.
  void msgReqSendSyncData(const ZELData& data, zel::RebackDic rebackBlock);

 private:
  std::unique_ptr<zel::RequestEngine> engine_;
};
