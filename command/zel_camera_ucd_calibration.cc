// Calibration of the lenses and the sensor.

#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <utility>

#include "command/request.h"

using zel::request;

void ZELCameraUCD::msgReqGetMediaOffset(Byte type, Byte typeInfo, TextBlock rebackBlock) {
  request<"registerMsgReqMediaOffset">(*engine_, std::move(rebackBlock), type, typeInfo);
}

void ZELCameraUCD::msgReqSetMediaOffset(Byte type, Byte typeInfo, const Text& offset, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetMediaOffset">(*engine_, std::move(rebackBlock), type, typeInfo, offset);
}

void ZELCameraUCD::msgReqGetOriginOffset(Byte type, Byte typeInfo,
                                         zel::RebackBlock<const ZELOriginOffset&> rebackBlock) {
  request<"registerMsgReqGetOriginOffset">(*engine_, std::move(rebackBlock), type, typeInfo);
}

void ZELCameraUCD::msgReqSetOriginOffset(Byte type, Byte typeInfo, const ZELOriginOffset& offset,
                                         ErrorBlock rebackBlock) {
  request<"registerMsgReqSetOriginOffset">(*engine_, std::move(rebackBlock), type, typeInfo, offset);
}

void ZELCameraUCD::msgReqSetCalibWBGain(const calib_wb_gain& gain, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetCalibWBGain">(*engine_, std::move(rebackBlock), gain);
}

void ZELCameraUCD::msgReqGetCalibWBGainWithRebackBlock(zel::RebackBlock<const calib_wb_gain&> rebackBlock) {
  request<"registerMsgReqGetCalibWBGain">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqSetCalibVignetteLuma(const calib_vignette_luma& luma, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetCalibVigneteLuma">(*engine_, std::move(rebackBlock), luma);
}

void ZELCameraUCD::msgReqGetCalibVignetteLumaWithRebackBlock(zel::RebackBlock<const calib_vignette_luma&> rebackBlock) {
  request<"registerMsgReqGetCalibVignetteLuma">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqSetCalibVigGain(const calib_vignette_gain& gain, ErrorBlock rebackBlock) {
  request<"registerMsgReqSetCalibVigGain">(*engine_, std::move(rebackBlock), gain);
}

void ZELCameraUCD::msgReqGetCalibVigGainWithRebackBlock(zel::RebackBlock<const calib_vignette_gain&> rebackBlock) {
  request<"registerMsgReqGetCalibVigGain">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqGetCalibWBEnableWithRebackBlock(ByteBlock rebackBlock) {
  request<"registerMsgReqGetCalibWBEnable">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgReqGetCalibVigEnableWithRebackBlock(ByteBlock rebackBlock) {
  request<"registerMsgReqGetCalibVigEnable">(*engine_, std::move(rebackBlock));
}
