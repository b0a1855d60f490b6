// Calibration of the lenses and the sensor.

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

void ZELCameraUCD::msgReqGetMediaOffset(Byte type, Byte typeInfo, TextBlock rebackBlock) {
  request(family("registerMsgReqMediaOffset"), fieldsOf(ucharValue, type, ucharValue2, typeInfo),
          takingApart(std::move(rebackBlock), nsString));
}

void ZELCameraUCD::msgReqSetMediaOffset(Byte type, Byte typeInfo, const Text& offset, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetMediaOffset"), fieldsOf(ucharValue, type, ucharValue2, typeInfo, nsString, offset),
          takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqGetOriginOffset(Byte type, Byte typeInfo,
                                         zel::RebackBlock<const ZELOriginOffset&> rebackBlock) {
  request(family("registerMsgReqGetOriginOffset"), fieldsOf(ucharValue, type, ucharValue2, typeInfo),
          takingApart(std::move(rebackBlock), nsValue1));
}

void ZELCameraUCD::msgReqSetOriginOffset(Byte type, Byte typeInfo, const ZELOriginOffset& offset,
                                         ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetOriginOffset"), fieldsOf(ucharValue, type, ucharValue2, typeInfo, nsValue1, offset),
          takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqSetCalibWBGain(const calib_wb_gain& gain, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetCalibWBGain"), fieldsOf(nsValue1, gain), takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqGetCalibWBGainWithRebackBlock(zel::RebackBlock<const calib_wb_gain&> rebackBlock) {
  request(family("registerMsgReqGetCalibWBGain"), fieldsOf(), takingApart(std::move(rebackBlock), nsValue1));
}

void ZELCameraUCD::msgReqSetCalibVignetteLuma(const calib_vignette_luma& luma, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetCalibVigneteLuma"), fieldsOf(nsValue1, luma), takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqGetCalibVignetteLumaWithRebackBlock(zel::RebackBlock<const calib_vignette_luma&> rebackBlock) {
  request(family("registerMsgReqGetCalibVignetteLuma"), fieldsOf(), takingApart(std::move(rebackBlock), nsValue1));
}

void ZELCameraUCD::msgReqSetCalibVigGain(const calib_vignette_gain& gain, ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetCalibVigGain"), fieldsOf(nsValue1, gain), takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqGetCalibVigGainWithRebackBlock(zel::RebackBlock<const calib_vignette_gain&> rebackBlock) {
  request(family("registerMsgReqGetCalibVigGain"), fieldsOf(), takingApart(std::move(rebackBlock), nsValue1));
}

void ZELCameraUCD::msgReqGetCalibWBEnableWithRebackBlock(ByteBlock rebackBlock) {
  request(family("registerMsgReqGetCalibWBEnable"), fieldsOf(), takingApart(std::move(rebackBlock), ucharValue));
}

void ZELCameraUCD::msgReqGetCalibVigEnableWithRebackBlock(ByteBlock rebackBlock) {
  request(family("registerMsgReqGetCalibVigEnable"), fieldsOf(), takingApart(std::move(rebackBlock), ucharValue));
}
