// Files on the camera.

#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <utility>

#include "command/request.h"

using zel::request;

void ZELCameraUCD::msgReqGetFileMnd(const Text& fileName, zel::RebackBlock<const ZELVideoMnd&> rebackBlock) {
  request<"registerMsgReqGetFileMnd">(*engine_, std::move(rebackBlock), fileName);
}

void ZELCameraUCD::msgReqCreateTxtFile(const Text& fileName, std::int32_t dataSize, const Data& data,
                                       IntBlock rebackBlock) {
  request<"registerMsgReqCreateTxtFile">(*engine_, std::move(rebackBlock), fileName, dataSize, data);
}

void ZELCameraUCD::msgReqSetPhotoExtraInfoWithFileName(const Text& fileName, const Data& extraInfoData,
                                                       ErrorBlock rebackBlock) {
  request<"registerMsgReqSetPhotoExtraInfo">(*engine_, std::move(rebackBlock), fileName, extraInfoData);
}

void ZELCameraUCD::msgReqSetVideoExtraInfoWithFileName(const Text& fileName, const Data& extraInfoData,
                                                       ErrorBlock rebackBlock) {
  request<"registerMsgReqSetVideoExtraInfo">(*engine_, std::move(rebackBlock), fileName, extraInfoData);
}

void ZELCameraUCD::msgReqGetVideoExtraInfoWithFileName(const Text& fileName,
                                                       zel::RebackBlock<const Data&> rebackBlock) {
  request<"registerMsgReqGetVideoExtraInfo">(*engine_, std::move(rebackBlock), fileName);
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): handlers are passed by value everywhere
void ZELCameraUCD::msgReqSendSyncData(const ZELData& data, zel::RebackDic rebackBlock) {
  engine_->orRefuse([&] { return rebackBlock; }, [&] { engine_->msgReqSendSyncData(data, rebackBlock); });
}
