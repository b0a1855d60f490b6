// Preview, photos and recording.

#include <ZELTarkaSDK/ZELCameraUCD.h>
#include <ZELTarkaSDK/ZELHDRShutter.h>

#include <utility>

#include "capture/zel_photo_data_parser.h"
#include "command/reply_adapters.h"
#include "command/request_engine.h"
#include "command/request_fields.h"
#include "protocol/catalogue.h"

using zel::family;
using zel::fieldsOf;
using zel::RebackDic;
using zel::recordOf;
using zel::takingApart;
using namespace zel::key;

namespace {

ZELMessageFields sensorFields(const ZELGpsData& gps, const ZELGyroData& gyro, const ZELOrientationData& orientation,
                              const std::optional<ZELData>& jsonData = std::nullopt) {
  return fieldsOf(gpsData, gps, gyroData, gyro, orientationData, orientation, nsData, jsonData);
}

}  // namespace

void ZELCameraUCD::setDemuxVideoRes(std::uint64_t videoRes) { engine_->parser().setVideoStreamRes(videoRes); }

void ZELCameraUCD::msgCmdStartVideoWithVideoRes(Byte videoRes, ByteBlock rebackBlock) {
  setDemuxVideoRes(videoRes);
  // Also without a handler, so that the player does not mix the old stream with the new one.
  const auto resetting = [alive = engine_->whileAlive(), answer = takingApart(std::move(rebackBlock), ucharValue)](
                             const std::optional<ZELMessageFields>& reply) {
    alive([](CameraDataParser& parser) {
      if (const auto player = parser.previewPlayer()) player->resetPlayer();
    });
    if (answer) answer(reply);
  };
  request(family("registerMsgCmdStartVideo"), fieldsOf(ucharValue, videoRes), resetting);
}

// A failed shutter command also fails the capture, which would otherwise stay pending.
template <class Block>
RebackDic ZELCameraUCD::captureAdapter(Block rebackBlock) {
  if (!rebackBlock) return nullptr;
  return [alive = engine_->whileAlive(), answer = takingApart(std::move(rebackBlock), fileTime, fileSize, fileName)](
             const std::optional<ZELMessageFields>& reply) {
    answer(reply);
    const auto error = zel::errorIn(reply);
    if (!error) return;
    alive([&error](CameraDataParser& parser) {
      if (const auto photo = parser.photoParser()) photo->replyBlockWithError(*error);
    });
  };
}

void ZELCameraUCD::msgCmdShutterWithGps(const ZELGpsData& gps, const ZELGyroData& gyro,
                                        const ZELOrientationData& orientation, CaptureBlock rebackBlock,
                                        ZELPhotoBlock photoData) {
  engine_->parser().setPhotoParser(
      ZELPhotoDataParser::initWithShutterBlock(engine_->mainQueue(), std::move(photoData)));
  request(family("registerMsgCmdShutter"), sensorFields(gps, gyro, orientation),
          captureAdapter(std::move(rebackBlock)));
}

void ZELCameraUCD::newMsgCmdShutterWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                           CaptureBlock rebackBlock, ZELPhotoBlock photoData) {
  msgCmdShutterWithGps(recordOf(gps), recordOf(gyro), recordOf(orientation), std::move(rebackBlock),
                       std::move(photoData));
}

void ZELCameraUCD::msgCmdShutterExtraWithGps(const ZELGpsData& gps, const ZELGyroData& gyro,
                                             const ZELOrientationData& orientation, const Data& jsonData,
                                             CaptureBlock rebackBlock, ZELPhotoBlock photoData) {
  engine_->parser().setPhotoParser(
      ZELPhotoDataParser::initWithShutterBlock(engine_->mainQueue(), std::move(photoData)));
  request(family("registerMsgCmdShutterExtra"), sensorFields(gps, gyro, orientation, jsonData),
          captureAdapter(std::move(rebackBlock)));
}

void ZELCameraUCD::newMsgCmdShutterExtraWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                                const Data& jsonData, CaptureBlock rebackBlock,
                                                ZELPhotoBlock photoData) {
  msgCmdShutterExtraWithGps(recordOf(gps), recordOf(gyro), recordOf(orientation), jsonData, std::move(rebackBlock),
                            std::move(photoData));
}

void ZELCameraUCD::msgCmdShutterAEBWithGps(const ZELGpsData& gps, const ZELGyroData& gyro,
                                           const ZELOrientationData& orientation, const aeb_info& aebInfo,
                                           const Data& jsonData, SeriesBlock rebackBlock,
                                           ZELPhotoSeriesBlock photoData) {
  engine_->parser().setPhotoParser(
      ZELPhotoDataParser::initWithAEBShutterCount(engine_->mainQueue(), aebInfo.count, std::move(photoData)));
  ZELMessageFields fields = sensorFields(gps, gyro, orientation, jsonData);
  fields.set(nsValue1, aebInfo);
  request(family("registerMsgCmdShutterAEB"), fields, captureAdapter(std::move(rebackBlock)));
}

void ZELCameraUCD::newMsgCmdShutterAEBWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                              const aeb_info& aebInfo, const Data& jsonData, SeriesBlock rebackBlock,
                                              ZELPhotoSeriesBlock photoData) {
  msgCmdShutterAEBWithGps(recordOf(gps), recordOf(gyro), recordOf(orientation), aebInfo, jsonData,
                          std::move(rebackBlock), std::move(photoData));
}

void ZELCameraUCD::msgCmdShutterHDRWithGps(const ZELGpsData& gps, const ZELGyroData& gyro,
                                           const ZELOrientationData& orientation, const Data& jsonData,
                                           CaptureBlock rebackBlock) {  // NOLINT(performance-unnecessary-value-param)
  ZELHDRShutter().shutterWithGps(gps, gyro, orientation, jsonData, rebackBlock);
}

void ZELCameraUCD::newMsgCmdShutterHDRWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                              const Data& jsonData, CaptureBlock rebackBlock) {
  msgCmdShutterHDRWithGps(recordOf(gps), recordOf(gyro), recordOf(orientation), jsonData, std::move(rebackBlock));
}

void ZELCameraUCD::msgCmdStartRecordWithGps(const ZELGpsData& gps, const ZELGyroData& gyro,
                                            const ZELOrientationData& orientation, ErrorBlock rebackBlock) {
  request(family("registerMsgCmdStartRecord"), sensorFields(gps, gyro, orientation),
          takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::newMsgCmdStartRecordWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                               ErrorBlock rebackBlock) {
  msgCmdStartRecordWithGps(recordOf(gps), recordOf(gyro), recordOf(orientation), std::move(rebackBlock));
}

void ZELCameraUCD::msgCmdStartRecordExtraWithGps(const ZELGpsData& gps, const ZELGyroData& gyro,
                                                 const ZELOrientationData& orientation, const Data& jsonData,
                                                 ErrorBlock rebackBlock) {
  request(family("registerMsgCmdStartRecordExtra"), sensorFields(gps, gyro, orientation, jsonData),
          takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::newMsgCmdStartRecordExtraWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                                    const Data& jsonData, ErrorBlock rebackBlock) {
  msgCmdStartRecordExtraWithGps(recordOf(gps), recordOf(gyro), recordOf(orientation), jsonData, std::move(rebackBlock));
}

void ZELCameraUCD::newMsgCmdStartRecordPTSWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                                  const Data& jsonData, zel::RebackBlock<std::int64_t> rebackBlock) {
  request(family("registerMsgCmdStartRecordPTS"),
          sensorFields(recordOf(gps), recordOf(gyro), recordOf(orientation), jsonData),
          takingApart(std::move(rebackBlock), int64Value));
}

void ZELCameraUCD::msgCmdStopVPWithRebackBlock(ErrorBlock rebackBlock) {
  request(family("registerMsgCmdStopVP"), fieldsOf(), takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgCmdStopRecordWithRebackBlock(CaptureBlock rebackBlock) {
  request(family("registerMsgCmdStopRecord"), fieldsOf(),
          takingApart(std::move(rebackBlock), fileTime, fileSize, fileName));
}

void ZELCameraUCD::msgCmdRecordCancelWithRebackBlock(ErrorBlock rebackBlock) {
  request(family("registerMsgCmdRecordCancel"), fieldsOf(), takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::msgCmdSetVideoRes(Byte videoRes, ByteBlock rebackBlock) {
  request(family("registerMsgCmdSetVideoRes"), fieldsOf(ucharValue, videoRes),
          takingApart(std::move(rebackBlock), ucharValue));
}

void ZELCameraUCD::msgCmdSetVideoBitrate(Byte type, Byte videoBitrate, ByteBlock rebackBlock) {
  request(family("registerMsgCmdSetVideoBitrate"), fieldsOf(ucharValue, type, ucharValue2, videoBitrate),
          takingApart(std::move(rebackBlock), ucharValue));
}
