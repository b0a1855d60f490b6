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
using zel::LazyReplyHandler;
using zel::RebackDic;
using zel::recordOf;
using zel::RequestEngine;
using zel::takingApart;
using namespace zel::key;

namespace {

template <class... More>
auto sensorFields(const ZELGpsData& gps, const ZELGyroData& gyro, const ZELOrientationData& orientation,
                  const More&... more) {
  return fieldsOf(gpsData, gps, gyroData, gyro, orientationData, orientation, more...);
}

// A shutter command that fails fails the capture too, which else would wait for its photo.
template <class Block>
auto capturing(RequestEngine& engine, Block rebackBlock) {
  return LazyReplyHandler([&engine, rebackBlock = std::move(rebackBlock)]() -> RebackDic {
    if (!rebackBlock) return nullptr;
    return [alive = engine.whileAlive(), answer = zel::apart(rebackBlock, fileTime, fileSize, fileName)](
               const std::optional<ZELMessageFields>& reply) {
      answer(reply);
      const auto error = zel::errorIn(reply);
      if (!error) return;
      alive([&error](CameraDataParser& parser) {
        if (const auto photo = parser.photoParser()) photo->replyBlockWithError(*error);
      });
    };
  });
}

// Puts the capture's parser in force. Where there is no memory for it, nothing is captured, and its handlers get 101.
template <class MakeParser, class FailPhoto>
bool expect(RequestEngine& engine, MakeParser make, FailPhoto failPhoto, const zel::ReplyHandler& reply) {
  if (zel::hasMemoryFor([&] { engine.parser().setPhotoParser(make()); })) return true;
  engine.refuse(reply);
  engine.orCount([&] { engine.mainQueue().post(failPhoto()); });
  return false;
}

bool expectPhoto(RequestEngine& engine, const ZELPhotoBlock& photoData, const zel::ReplyHandler& reply) {
  const auto make = [&] { return ZELPhotoDataParser::initWithShutterBlock(engine.mainQueue(), photoData); };
  const auto fail = [&]() -> zel::platform::Task {
    return [photoData, error = zelOSStatusError(kZELErrorRefused)] {
      if (photoData) photoData(error, std::nullopt, std::nullopt);
    };
  };
  return expect(engine, make, fail, reply);
}

bool expectPhotos(RequestEngine& engine, int count, const ZELPhotoSeriesBlock& photoData,
                  const zel::ReplyHandler& reply) {
  const auto make = [&] { return ZELPhotoDataParser::initWithAEBShutterCount(engine.mainQueue(), count, photoData); };
  const auto fail = [&]() -> zel::platform::Task {
    return [photoData, error = zelOSStatusError(kZELErrorRefused)] {
      if (photoData) photoData(error, {}, nullptr);
    };
  };
  return expect(engine, make, fail, reply);
}

}  // namespace

void ZELCameraUCD::setDemuxVideoRes(std::uint64_t videoRes) { engine_->parser().setVideoStreamRes(videoRes); }

// NOLINTNEXTLINE(performance-unnecessary-value-param): handlers are passed by value everywhere
void ZELCameraUCD::msgCmdStartVideoWithVideoRes(Byte videoRes, ByteBlock rebackBlock) {
  setDemuxVideoRes(videoRes);
  // Even without a handler: the player must not mix the old stream with the new one.
  const LazyReplyHandler resetting([&]() -> RebackDic {
    return [alive = engine_->whileAlive(),
            answer = zel::apart(rebackBlock, ucharValue)](const std::optional<ZELMessageFields>& reply) {
      alive([](CameraDataParser& parser) {
        if (const auto player = parser.previewPlayer()) player->resetPlayer();
      });
      if (answer) answer(reply);
    };
  });
  request(family("registerMsgCmdStartVideo"), fieldsOf(ucharValue, videoRes), resetting);
}

// A capture that could not be sent fails its photo too, also where there is no reply handler that would.
void ZELCameraUCD::capture(const zel::Family& family, const zel::RequestFields& fields,
                           const zel::ReplyHandler& reply) {
  if (request(family, fields, reply)) return;
  engine_->orCount([this] {
    if (const auto photo = engine_->parser().photoParser()) {
      photo->replyBlockWithError(zelOSStatusError(kZELErrorRefused));
    }
  });
}

void ZELCameraUCD::msgCmdShutterWithGps(const ZELGpsData& gps, const ZELGyroData& gyro,
                                        const ZELOrientationData& orientation, CaptureBlock rebackBlock,
                                        ZELPhotoBlock photoData) {  // NOLINT(performance-unnecessary-value-param)
  const auto reply = capturing(*engine_, std::move(rebackBlock));
  if (!expectPhoto(*engine_, photoData, reply)) return;
  capture(family("registerMsgCmdShutter"), sensorFields(gps, gyro, orientation), reply);
}

void ZELCameraUCD::newMsgCmdShutterWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                           CaptureBlock rebackBlock, ZELPhotoBlock photoData) {
  msgCmdShutterWithGps(recordOf(gps), recordOf(gyro), recordOf(orientation), std::move(rebackBlock),
                       std::move(photoData));
}

void ZELCameraUCD::msgCmdShutterExtraWithGps(const ZELGpsData& gps, const ZELGyroData& gyro,
                                             const ZELOrientationData& orientation, const Data& jsonData,
                                             CaptureBlock rebackBlock,
                                             ZELPhotoBlock photoData) {  // NOLINT(performance-unnecessary-value-param)
  const auto reply = capturing(*engine_, std::move(rebackBlock));
  if (!expectPhoto(*engine_, photoData, reply)) return;
  capture(family("registerMsgCmdShutterExtra"), sensorFields(gps, gyro, orientation, nsData, jsonData), reply);
}

void ZELCameraUCD::newMsgCmdShutterExtraWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                                const Data& jsonData, CaptureBlock rebackBlock,
                                                ZELPhotoBlock photoData) {
  msgCmdShutterExtraWithGps(recordOf(gps), recordOf(gyro), recordOf(orientation), jsonData, std::move(rebackBlock),
                            std::move(photoData));
}

void ZELCameraUCD::msgCmdShutterAEBWithGps(
    const ZELGpsData& gps, const ZELGyroData& gyro, const ZELOrientationData& orientation, const aeb_info& aebInfo,
    const Data& jsonData, SeriesBlock rebackBlock,
    ZELPhotoSeriesBlock photoData) {  // NOLINT(performance-unnecessary-value-param)
  const auto reply = capturing(*engine_, std::move(rebackBlock));
  if (!expectPhotos(*engine_, aebInfo.count, photoData, reply)) return;
  capture(family("registerMsgCmdShutterAEB"), sensorFields(gps, gyro, orientation, nsData, jsonData, nsValue1, aebInfo),
          reply);
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
  request(family("registerMsgCmdStartRecordExtra"), sensorFields(gps, gyro, orientation, nsData, jsonData),
          takingApart(std::move(rebackBlock)));
}

void ZELCameraUCD::newMsgCmdStartRecordExtraWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                                    const Data& jsonData, ErrorBlock rebackBlock) {
  msgCmdStartRecordExtraWithGps(recordOf(gps), recordOf(gyro), recordOf(orientation), jsonData, std::move(rebackBlock));
}

void ZELCameraUCD::newMsgCmdStartRecordPTSWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                                  const Data& jsonData, zel::RebackBlock<std::int64_t> rebackBlock) {
  request(family("registerMsgCmdStartRecordPTS"),
          sensorFields(recordOf(gps), recordOf(gyro), recordOf(orientation), nsData, jsonData),
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
