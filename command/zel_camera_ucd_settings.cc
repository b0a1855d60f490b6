// State, settings, and the host's position.

#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <utility>

#include "command/reply_adapters.h"
#include "command/request_fields.h"
#include "protocol/catalogue.h"

using zel::family;
using zel::fieldsOf;
using zel::recordOf;
using zel::takingApart;
using namespace zel::key;

void ZELCameraUCD::msgReqBatteryWithRebackBlock(zel::RebackBlock<std::uint8_t, std::uint8_t> rebackBlock) {
  request(family("registerMsgReqBattery"), fieldsOf(), takingApart(std::move(rebackBlock), ucharValue, ucharValue2));
}

void ZELCameraUCD::msgReqGetCardStateWithRebackBlock(
    zel::RebackBlock<std::uint8_t, std::uint64_t, std::uint64_t> rebackBlock) {
  request(family("registerMsgReqGetCardState"), fieldsOf(),
          takingApart(std::move(rebackBlock), ucharValue, uint64Value, uint64Value2));
}

void ZELCameraUCD::msgReqGetSerialNumber(TextBlock rebackBlock) {
  request(family("registerMsgReqGetSerialNumber"), fieldsOf(), takingApart(std::move(rebackBlock), nsString));
}

void ZELCameraUCD::msgReqSetSerialNumber(const Text& serialNumber, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetSerialNumber"), fieldsOf(nsString, serialNumber),
          takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqGetUUIDWithRebackBlock(TextBlock rebackBlock) {
  request(family("registerMsgReqGetUUID"), fieldsOf(), takingApart(std::move(rebackBlock), nsString));
}

void ZELCameraUCD::msgReqGetLensIndexWithRebackBlock(UintBlock rebackBlock) {
  request(family("registerMsgReqGetLensIndex"), fieldsOf(), takingApart(std::move(rebackBlock), uintValue));
}

void ZELCameraUCD::msgReqGetEVIndexWithRebackBlock(zel::RebackBlock<std::uint16_t> rebackBlock) {
  request(family("registerMsgReqGetEVIndex"), fieldsOf(), takingApart(std::move(rebackBlock), ushortValue));
}

void ZELCameraUCD::msgReqGetVideoTimeRemainingWithRebackBlock(UintBlock rebackBlock) {
  request(family("registerMsgReqGetVideoTimeRemaining"), fieldsOf(), takingApart(std::move(rebackBlock), uintValue));
}

void ZELCameraUCD::msgReqGetPhotoShotsRemainingWithRebackBlock(UintBlock rebackBlock) {
  request(family("registerMsgReqGetPhotoShotsRemaining"), fieldsOf(), takingApart(std::move(rebackBlock), uintValue));
}

void ZELCameraUCD::msgReqSysctrl(Byte command, Byte delayTime, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSysctrl"), fieldsOf(ucharValue, command, ucharValue2, delayTime),
          takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqSysctrlCancel(Byte command, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSysctrlCancel"), fieldsOf(ucharValue, command), takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqDelFileCancelWithRebackBlock(ErrorBlock rebackBlock) {
  request(family("registerMsgReqDelFileCancel"), fieldsOf(), takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqSetPhotoSize(Byte photoSize, ByteBlock rebackBlock) {
  request(family("registerMsgReqSetPhotoSize"), fieldsOf(ucharValue, photoSize),
          takingApart(std::move(rebackBlock), ucharValue));
}

void ZELCameraUCD::msgReqSetLocalTime(std::int32_t time, std::int32_t timeZoneMinutesWest, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetLocalTime"), fieldsOf(intValue, time, intValue2, timeZoneMinutesWest),
          takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqSetActiveTime(std::int32_t time, std::int32_t timeZoneMinutesWest, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetActiveTime"), fieldsOf(intValue, time, intValue2, timeZoneMinutesWest),
          takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqGetActiveTimeWithRebackBlock(zel::RebackBlock<std::int32_t, std::int32_t> rebackBlock) {
  request(family("registerMsgReqGetActiveTime"), fieldsOf(), takingApart(std::move(rebackBlock), intValue, intValue2));
}

void ZELCameraUCD::msgReqSetKeyFunc0(Byte function, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetKeyFunc0"), fieldsOf(ucharValue, function), takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqSetMute(Byte mute, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetMute"), fieldsOf(ucharValue, mute), takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqSetIPSwitchMode(Byte mode, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetIPSwitchMode"), fieldsOf(ucharValue, mode), takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqSetAEEVBias(std::int16_t bias, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetAEEVBias"), fieldsOf(shortValue, bias), takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqSetAEMeterMode(Byte mode, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetAEMeterMode"), fieldsOf(ucharValue, mode), takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqSetAEMMWeight(const ZELIPAEMMWeight& weight, ErrorBlock rebackBlock) {
  // Deliberate: this has always been sent as the metering mode, whose packer ignores the weights and sets mode 0.
  request(family("registerMsgReqSetAEMeterMode"), fieldsOf(meteringWeights, weight),
          takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqSetStillPMode(Byte mode, Byte value, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetStillPMode"), fieldsOf(ucharValue, mode, ucharValue2, value),
          takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqSetMEParam(Byte mode, const ZELIPMEParam& param, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetMEParam"), fieldsOf(ucharValue, mode, exposureParam, param),
          takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqSetWBMode(Byte mode, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetWBMode"), fieldsOf(ucharValue, mode), takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqSetImageBrightness(std::int16_t brightness, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetImageBrightness"), fieldsOf(shortValue, brightness),
          takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqSetImageContrast(std::uint16_t contrast, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetImageContrast"), fieldsOf(ushortValue, contrast),
          takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqSetImageSaturation(std::uint16_t saturation, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetImageSaturation"), fieldsOf(ushortValue, saturation),
          takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqSetImageHue(Byte hue, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetImageHue"), fieldsOf(ucharValue, hue), takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqSetImageSharpness(Byte sharpness, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetImageSharpness"), fieldsOf(ucharValue, sharpness),
          takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqReqSetImageDEffect(Byte effect, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetImageDEffect"), fieldsOf(ucharValue, effect), takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqSetFlicker(Byte flicker, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetFlicker"), fieldsOf(ucharValue, flicker), takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqGetFlickerWithRebackBlock(ByteBlock rebackBlock) {
  request(family("registerMsgReqGetFlicker"), fieldsOf(), takingApart(std::move(rebackBlock), ucharValue));
}

void ZELCameraUCD::msgReqSetRecTimeLimit(std::int32_t limit, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetRecLimitTime"), fieldsOf(intValue, limit), takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqGetRecTimeLimitWithRebackBlock(IntBlock rebackBlock) {
  request(family("registerMsgReqGetRecLimitTime"), fieldsOf(), takingApart(std::move(rebackBlock), intValue));
}

void ZELCameraUCD::msgReqSetPhotoSelfTimer(Byte seconds, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetPhotoSelfTimer"), fieldsOf(ucharValue, seconds),
          takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqGetPhotoSelfTimerWithRebackBlock(IntBlock rebackBlock) {
  request(family("registerMsgReqGetPhotoSelfTimer"), fieldsOf(), takingApart(std::move(rebackBlock), intValue));
}

void ZELCameraUCD::msgReqSetGPSTimeout(std::uint16_t timeout, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetGPSTimeout"), fieldsOf(ushortValue, timeout), takingApart(std::move(rebackBlock)));
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): handlers are passed by value everywhere
void ZELCameraUCD::msgReqGetGPSTimeoutWithRebackBlock(IntBlock rebackBlock) {
  const auto widened = [rebackBlock](const std::optional<ZELError>& error, std::uint16_t timeout) {
    rebackBlock(error, timeout);
  };
  using UshortBlock = zel::RebackBlock<std::uint16_t>;
  request(family("registerMsgReqGetGPSTimeout"), fieldsOf(),
          takingApart(rebackBlock ? UshortBlock(widened) : UshortBlock(), ushortValue));
}

void ZELCameraUCD::msgReqSetTriplePressMode(Byte mode, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetTriplePressMode"), fieldsOf(ucharValue, mode), takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqGetTriplePressModeWithRebackBlock(ByteBlock rebackBlock) {
  request(family("registerMsgReqGetTriplePressMode"), fieldsOf(), takingApart(std::move(rebackBlock), ucharValue));
}

void ZELCameraUCD::msgReqSetTimelapseInfo(const timelapse_info& info, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetTimelapseInfo"), fieldsOf(nsValue1, info), takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqGetTimelapseInfoWithRebackBlock(zel::RebackBlock<const timelapse_info&> rebackBlock) {
  request(family("registerMsgReqGetTimeLapseInfo"), fieldsOf(), takingApart(std::move(rebackBlock), nsValue1));
}

void ZELCameraUCD::msgReqSetTimelapseEVBias(std::int16_t bias, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetTimelapseEVBias"), fieldsOf(shortValue, bias), takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqGetTimelapseEVBiasWithRebackBlock(zel::RebackBlock<std::int16_t> rebackBlock) {
  request(family("registerMsgReqGetTimelapseEVBias"), fieldsOf(), takingApart(std::move(rebackBlock), shortValue));
}

void ZELCameraUCD::msgReqSwitchAudioStreamType(Byte type, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSwitchAudioStreamType"), fieldsOf(ucharValue, type),
          takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqSetAudioBitrate(std::uint32_t bitrate, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetAudioBitrate"), fieldsOf(uintValue, bitrate), takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqGetAudioBitrateWithRebackBlock(UintBlock rebackBlock) {
  request(family("registerMsgReqGetAudioBitrate"), fieldsOf(), takingApart(std::move(rebackBlock), uintValue));
}

void ZELCameraUCD::msgReqUpdateGps(const ZELGpsData& gps) {
  request(family("registerMsgReqUpdateGps"), fieldsOf(gpsData, gps), nullptr);
}

void ZELCameraUCD::newMsgReqUpdateGps(const Gps& gps) { msgReqUpdateGps(recordOf(gps)); }

void ZELCameraUCD::msgReqUpdateGyro(const ZELGyroData& gyro) {
  request(family("registerMsgReqUpdateGyro"), fieldsOf(gyroData, gyro), nullptr);
}

void ZELCameraUCD::newMsgReqUpdateGyro(const Gyro& gyro) { msgReqUpdateGyro(recordOf(gyro)); }

void ZELCameraUCD::msgReqUpdateOrientation(const ZELOrientationData& orientation) {
  request(family("registerMsgReqUpdateOrientation"), fieldsOf(orientationData, orientation), nullptr);
}

void ZELCameraUCD::newMsgReqUpdateOrientation(const Orientation& orientation) {
  msgReqUpdateOrientation(recordOf(orientation));
}
