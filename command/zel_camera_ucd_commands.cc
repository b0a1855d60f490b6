// Preview, photos and recording.

#include <ZELTarkaSDK/ZELCameraUCD.h>
#include <ZELTarkaSDK/ZELHDRShutter.h>

#include <utility>

#include "capture/zel_photo_data_parser.h"
#include "command/request.h"

using zel::fieldsOf;
using zel::kMsgType;
using zel::RebackDic;
using zel::recordOf;
using zel::request;
using zel::RequestEngine;
using zel::takingApart;

namespace {

// A shutter command that fails fails the capture too, which else would wait for its photo.
template <zel::RowName row, class Block>
RebackDic failingTheCapture(RequestEngine& engine, Block rebackBlock) {
  if (!rebackBlock) return nullptr;
  return [alive = engine.whileAlive(),
          answer = takingApart<row>(std::move(rebackBlock))](const std::optional<ZELMessageFields>& reply) {
    answer(reply);
    const auto error = zel::errorIn(reply);
    if (!error) return;
    alive([&error](CameraDataParser& parser) {
      if (const auto photo = parser.photoParser()) photo->replyBlockWithError(*error);
    });
  };
}

// A request that takes a photo, and the capture that waits for its picture.
template <zel::RowName row, class Block, class... Arguments>
void shutter(RequestEngine& engine, std::shared_ptr<zel::PhotoConsumer> photo, Block rebackBlock,
             const Arguments&... arguments) {
  engine.parser().setPhotoParser(std::move(photo));
  engine.send(kMsgType<row>, fieldsOf<row>(arguments...), failingTheCapture<row>(engine, std::move(rebackBlock)));
}

}  // namespace

void ZELCameraUCD::setDemuxVideoRes(std::uint64_t videoRes) { engine_->parser().setVideoStreamRes(videoRes); }

void ZELCameraUCD::msgCmdStartVideoWithVideoRes(Byte videoRes, ByteBlock rebackBlock) {
  constexpr zel::RowName kRow = "registerMsgCmdStartVideo";
  setDemuxVideoRes(videoRes);
  // Even without a handler: the player must not mix the old stream with the new one.
  const auto resetting = [alive = engine_->whileAlive(), answer = takingApart<kRow>(std::move(rebackBlock))](
                             const std::optional<ZELMessageFields>& reply) {
    alive([](CameraDataParser& parser) {
      if (const auto player = parser.previewPlayer()) player->resetPlayer();
    });
    if (answer) answer(reply);
  };
  engine_->send(kMsgType<kRow>, fieldsOf<kRow>(videoRes), resetting);
}

void ZELCameraUCD::msgCmdShutterWithGps(const ZELGpsData& gps, const ZELGyroData& gyro,
                                        const ZELOrientationData& orientation, CaptureBlock rebackBlock,
                                        ZELPhotoBlock photoData) {
  shutter<"registerMsgCmdShutter">(*engine_,
                                   ZELPhotoDataParser::initWithShutterBlock(engine_->mainQueue(), std::move(photoData)),
                                   std::move(rebackBlock), gps, gyro, orientation);
}

void ZELCameraUCD::newMsgCmdShutterWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                           CaptureBlock rebackBlock, ZELPhotoBlock photoData) {
  msgCmdShutterWithGps(recordOf(gps), recordOf(gyro), recordOf(orientation), std::move(rebackBlock),
                       std::move(photoData));
}

void ZELCameraUCD::msgCmdShutterExtraWithGps(const ZELGpsData& gps, const ZELGyroData& gyro,
                                             const ZELOrientationData& orientation, const Data& jsonData,
                                             CaptureBlock rebackBlock, ZELPhotoBlock photoData) {
  shutter<"registerMsgCmdShutterExtra">(
      *engine_, ZELPhotoDataParser::initWithShutterBlock(engine_->mainQueue(), std::move(photoData)),
      std::move(rebackBlock), gps, gyro, orientation, jsonData);
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
  shutter<"registerMsgCmdShutterAEB">(
      *engine_, ZELPhotoDataParser::initWithAEBShutterCount(engine_->mainQueue(), aebInfo.count, std::move(photoData)),
      std::move(rebackBlock), gps, gyro, orientation, aebInfo, jsonData);
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
  request<"registerMsgCmdStartRecord">(*engine_, std::move(rebackBlock), gps, gyro, orientation);
}

void ZELCameraUCD::newMsgCmdStartRecordWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                               ErrorBlock rebackBlock) {
  msgCmdStartRecordWithGps(recordOf(gps), recordOf(gyro), recordOf(orientation), std::move(rebackBlock));
}

void ZELCameraUCD::msgCmdStartRecordExtraWithGps(const ZELGpsData& gps, const ZELGyroData& gyro,
                                                 const ZELOrientationData& orientation, const Data& jsonData,
                                                 ErrorBlock rebackBlock) {
  request<"registerMsgCmdStartRecordExtra">(*engine_, std::move(rebackBlock), gps, gyro, orientation, jsonData);
}

void ZELCameraUCD::newMsgCmdStartRecordExtraWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                                    const Data& jsonData, ErrorBlock rebackBlock) {
  msgCmdStartRecordExtraWithGps(recordOf(gps), recordOf(gyro), recordOf(orientation), jsonData, std::move(rebackBlock));
}

void ZELCameraUCD::newMsgCmdStartRecordPTSWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                                  const Data& jsonData, zel::RebackBlock<std::int64_t> rebackBlock) {
  request<"registerMsgCmdStartRecordPTS">(*engine_, std::move(rebackBlock), recordOf(gps), recordOf(gyro),
                                          recordOf(orientation), jsonData);
}

void ZELCameraUCD::msgCmdStopVPWithRebackBlock(ErrorBlock rebackBlock) {
  request<"registerMsgCmdStopVP">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgCmdStopRecordWithRebackBlock(CaptureBlock rebackBlock) {
  request<"registerMsgCmdStopRecord">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgCmdRecordCancelWithRebackBlock(ErrorBlock rebackBlock) {
  request<"registerMsgCmdRecordCancel">(*engine_, std::move(rebackBlock));
}

void ZELCameraUCD::msgCmdSetVideoRes(Byte videoRes, ByteBlock rebackBlock) {
  request<"registerMsgCmdSetVideoRes">(*engine_, std::move(rebackBlock), videoRes);
}

void ZELCameraUCD::msgCmdSetVideoBitrate(Byte type, Byte videoBitrate, ByteBlock rebackBlock) {
  request<"registerMsgCmdSetVideoBitrate">(*engine_, std::move(rebackBlock), type, videoBitrate);
}
