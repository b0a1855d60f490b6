// Files on the camera.

#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <utility>

#include "command/reply_adapters.h"
#include "command/request_engine.h"
#include "command/request_fields.h"
#include "protocol/catalogue.h"

using zel::family;
using zel::fieldsOf;
using zel::recordOf;
using zel::takingApart;
using zel::key::intValue;
using zel::key::nsData;
using zel::key::nsString;
using zel::key::nsValue1;

void ZELCameraUCD::msgReqGetFileMnd(const Text& fileName, zel::RebackBlock<const ZELVideoMnd&> rebackBlock) {
  request(family("registerMsgReqGetFileMnd"), fieldsOf(nsString, fileName),
          takingApart(std::move(rebackBlock), nsValue1));
}

void ZELCameraUCD::msgReqCreateTxtFile(const Text& fileName, std::int32_t dataSize, const Data& data,
                                       IntBlock rebackBlock) {
  request(family("registerMsgReqCreateTxtFile"), fieldsOf(nsString, fileName, intValue, dataSize, nsData, data),
          takingApart(std::move(rebackBlock), intValue));
}

void ZELCameraUCD::msgReqSetPhotoExtraInfoWithFileName(const Text& fileName, const Data& extraInfoData,
                                                       ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetPhotoExtraInfo"), fieldsOf(nsString, fileName, nsData, extraInfoData),
          takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqSetVideoExtraInfoWithFileName(const Text& fileName, const Data& extraInfoData,
                                                       ErrorBlock rebackBlock) {
  request(family("registerMsgReqSetVideoExtraInfo"), fieldsOf(nsString, fileName, nsData, extraInfoData),
          takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgReqGetVideoExtraInfoWithFileName(const Text& fileName,
                                                       zel::RebackBlock<const Data&> rebackBlock) {
  request(family("registerMsgReqGetVideoExtraInfo"), fieldsOf(nsString, fileName),
          takingApart(std::move(rebackBlock), nsData));
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): handlers are passed by value everywhere
void ZELCameraUCD::msgReqSendSyncData(const ZELData& data, zel::RebackDic rebackBlock) {
  const zel::LazyReplyHandler reply([&] { return rebackBlock; });
  engine_->orRefuse(reply, [&] { engine_->msgReqSendSyncData(data, reply.made()); });
}
