// State, settings, and the host's position.

#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <utility>

#include "command/request.h"

using zel::recordOf;
using zel::request;
using zel::tell;

void ZELCameraUCD::msgReqBatteryWithRebackBlock(zel::RebackBlock<std::uint8_t, std::uint8_t> rebackBlock) {
  request<"registerMsgReqBattery">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqGetCardStateWithRebackBlock(
    zel::RebackBlock<std::uint8_t, std::uint64_t, std::uint64_t> rebackBlock) {
  request<"registerMsgReqGetCardState">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqGetSerialNumber(TextBlock rebackBlock) {
  request<"registerMsgReqGetSerialNumber">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqSetSerialNumber(const Text& serialNumber, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetSerialNumber">(*engine_, std::move(rebackBlock), serialNumber);
}

void ZELCameraUCD::msgReqGetUUIDWithRebackBlock(TextBlock rebackBlock) {
  request<"registerMsgReqGetUUID">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqGetLensIndexWithRebackBlock(UintBlock rebackBlock) {
  request<"registerMsgReqGetLensIndex">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqGetEVIndexWithRebackBlock(zel::RebackBlock<std::uint16_t> rebackBlock) {
  request<"registerMsgReqGetEVIndex">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqGetVideoTimeRemainingWithRebackBlock(UintBlock rebackBlock) {
  request<"registerMsgReqGetVideoTimeRemaining">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqGetPhotoShotsRemainingWithRebackBlock(UintBlock rebackBlock) {
  request<"registerMsgReqGetPhotoShotsRemaining">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqSysctrl(Byte command, Byte delayTime, ErrorBlock rebackBlock) {
  request<"registerMsgReqSysctrl">(*engine_, std::move(rebackBlock), command, delayTime);
}

void ZELCameraUCD::msgReqSysctrlCancel(Byte command, ErrorBlock rebackBlock) {
  request<"registerMsgReqSysctrlCancel">(*engine_, std::move(rebackBlock), command);
}

void ZELCameraUCD::msgReqDelFileCancelWithRebackBlock(ErrorBlock rebackBlock) {
  request<"registerMsgReqDelFileCancel">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqSetPhotoSize(Byte photoSize, ByteBlock rebackBlock) {
  request<"registerMsgReqSetPhotoSize">(*engine_, std::move(rebackBlock), photoSize);
}

void ZELCameraUCD::msgReqSetLocalTime(std::int32_t time, std::int32_t timeZoneMinutesWest, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetLocalTime">(*engine_, std::move(rebackBlock), time, timeZoneMinutesWest);
}

void ZELCameraUCD::msgReqSetActiveTime(std::int32_t time, std::int32_t timeZoneMinutesWest, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetActiveTime">(*engine_, std::move(rebackBlock), time, timeZoneMinutesWest);
}

void ZELCameraUCD::msgReqGetActiveTimeWithRebackBlock(zel::RebackBlock<std::int32_t, std::int32_t> rebackBlock) {
  request<"registerMsgReqGetActiveTime">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqSetKeyFunc0(Byte function, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetKeyFunc0">(*engine_, std::move(rebackBlock), function);
}

void ZELCameraUCD::msgReqSetMute(Byte mute, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetMute">(*engine_, std::move(rebackBlock), mute);
}

void ZELCameraUCD::msgReqSetIPSwitchMode(Byte mode, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetIPSwitchMode">(*engine_, std::move(rebackBlock), mode);
}

void ZELCameraUCD::msgReqSetAEEVBias(std::int16_t bias, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetAEEVBias">(*engine_, std::move(rebackBlock), bias);
}

void ZELCameraUCD::msgReqSetAEMeterMode(Byte mode, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetAEMeterMode">(*engine_, std::move(rebackBlock), mode);
}

void ZELCameraUCD::msgReqSetAEMMWeight(const ZELIPAEMMWeight& weight, ErrorBlock rebackBlock) {
  // Deliberate: this has always been sent as the metering mode, whose packer ignores the weights and sets mode 0.
  constexpr zel::RowName kRow = "registerMsgReqSetAEMeterMode";
  const auto reply = [&] { return zel::takingApart<kRow>(rebackBlock); };
  engine_->orRefuse(reply, [&] {
    engine_->send(zel::kMsgType<kRow>, zel::fieldsOf<"registerMsgReqSetAEMMWeight">(weight), reply());
  });
}

void ZELCameraUCD::msgReqSetStillPMode(Byte mode, Byte value, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetStillPMode">(*engine_, std::move(rebackBlock), mode, value);
}

void ZELCameraUCD::msgReqSetMEParam(Byte mode, const ZELIPMEParam& param, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetMEParam">(*engine_, std::move(rebackBlock), mode, param);
}

void ZELCameraUCD::msgReqSetWBMode(Byte mode, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetWBMode">(*engine_, std::move(rebackBlock), mode);
}

void ZELCameraUCD::msgReqSetImageBrightness(std::int16_t brightness, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetImageBrightness">(*engine_, std::move(rebackBlock), brightness);
}

void ZELCameraUCD::msgReqSetImageContrast(std::uint16_t contrast, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetImageContrast">(*engine_, std::move(rebackBlock), contrast);
}

void ZELCameraUCD::msgReqSetImageSaturation(std::uint16_t saturation, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetImageSaturation">(*engine_, std::move(rebackBlock), saturation);
}

void ZELCameraUCD::msgReqSetImageHue(Byte hue, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetImageHue">(*engine_, std::move(rebackBlock), hue);
}

void ZELCameraUCD::msgReqSetImageSharpness(Byte sharpness, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetImageSharpness">(*engine_, std::move(rebackBlock), sharpness);
}

void ZELCameraUCD::msgReqReqSetImageDEffect(Byte effect, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetImageDEffect">(*engine_, std::move(rebackBlock), effect);
}

void ZELCameraUCD::msgReqSetFlicker(Byte flicker, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetFlicker">(*engine_, std::move(rebackBlock), flicker);
}

void ZELCameraUCD::msgReqGetFlickerWithRebackBlock(ByteBlock rebackBlock) {
  request<"registerMsgReqGetFlicker">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqSetRecTimeLimit(std::int32_t limit, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetRecLimitTime">(*engine_, std::move(rebackBlock), limit);
}

void ZELCameraUCD::msgReqGetRecTimeLimitWithRebackBlock(IntBlock rebackBlock) {
  request<"registerMsgReqGetRecLimitTime">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqSetPhotoSelfTimer(Byte seconds, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetPhotoSelfTimer">(*engine_, std::move(rebackBlock), seconds);
}

void ZELCameraUCD::msgReqGetPhotoSelfTimerWithRebackBlock(IntBlock rebackBlock) {
  request<"registerMsgReqGetPhotoSelfTimer">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqSetGPSTimeout(std::uint16_t timeout, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetGPSTimeout">(*engine_, std::move(rebackBlock), timeout);
}

void ZELCameraUCD::msgReqGetGPSTimeoutWithRebackBlock(IntBlock rebackBlock) {
  request<"registerMsgReqGetGPSTimeout">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqSetTriplePressMode(Byte mode, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetTriplePressMode">(*engine_, std::move(rebackBlock), mode);
}

void ZELCameraUCD::msgReqGetTriplePressModeWithRebackBlock(ByteBlock rebackBlock) {
  request<"registerMsgReqGetTriplePressMode">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqSetTimelapseInfo(const timelapse_info& info, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetTimelapseInfo">(*engine_, std::move(rebackBlock), info);
}

void ZELCameraUCD::msgReqGetTimelapseInfoWithRebackBlock(zel::RebackBlock<const timelapse_info&> rebackBlock) {
  request<"registerMsgReqGetTimeLapseInfo">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqSetTimelapseEVBias(std::int16_t bias, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetTimelapseEVBias">(*engine_, std::move(rebackBlock), bias);
}

void ZELCameraUCD::msgReqGetTimelapseEVBiasWithRebackBlock(zel::RebackBlock<std::int16_t> rebackBlock) {
  request<"registerMsgReqGetTimelapseEVBias">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqSwitchAudioStreamType(Byte type, ErrorBlock rebackBlock) {
  request<"registerMsgReqSwitchAudioStreamType">(*engine_, std::move(rebackBlock), type);
}

void ZELCameraUCD::msgReqSetAudioBitrate(std::uint32_t bitrate, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetAudioBitrate">(*engine_, std::move(rebackBlock), bitrate);
}

void ZELCameraUCD::msgReqGetAudioBitrateWithRebackBlock(UintBlock rebackBlock) {
  request<"registerMsgReqGetAudioBitrate">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqUpdateGps(const ZELGpsData& gps) { tell<"registerMsgReqUpdateGps">(*engine_, gps); }

void ZELCameraUCD::newMsgReqUpdateGps(const Gps& gps) { msgReqUpdateGps(recordOf(gps)); }

void ZELCameraUCD::msgReqUpdateGyro(const ZELGyroData& gyro) { tell<"registerMsgReqUpdateGyro">(*engine_, gyro); }

void ZELCameraUCD::newMsgReqUpdateGyro(const Gyro& gyro) { msgReqUpdateGyro(recordOf(gyro)); }

void ZELCameraUCD::msgReqUpdateOrientation(const ZELOrientationData& orientation) {
  tell<"registerMsgReqUpdateOrientation">(*engine_, orientation);
}

void ZELCameraUCD::newMsgReqUpdateOrientation(const Orientation& orientation) {
  msgReqUpdateOrientation(recordOf(orientation));
}
