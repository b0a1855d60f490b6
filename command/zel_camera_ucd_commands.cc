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

// A failed shutter command also fails the capture, which would otherwise stay pending.
template <zel::RowName row, class Block>
RebackDic failingTheCapture(RequestEngine& engine, const Block& rebackBlock) {
  if (!rebackBlock) return nullptr;
  return [alive = engine.whileAlive(),
          answer = takingApart<row>(rebackBlock)](const std::optional<ZELMessageFields>& reply) {
    answer(reply);
    const auto error = zel::errorIn(reply);
    if (!error) return;
    alive([&error](CameraDataParser& parser) {
      if (const auto photo = parser.photoParser()) photo->replyBlockWithError(*error);
    });
  };
}

// What waits for the pictures of a capture, and what fails their handler where there is no memory for that.
template <class Make, class Refuse>
struct Capture {
  Make make;
  Refuse refuse;
};
template <class Make, class Refuse>
Capture(Make, Refuse) -> Capture<Make, Refuse>;

auto onePhoto(RequestEngine& engine, const ZELPhotoBlock& photoData) {
  return Capture{[&] { return ZELPhotoDataParser::initWithShutterBlock(engine.mainQueue(), photoData); },
                 [&]() -> zel::platform::Task {
                   return [photoData, error = zelOSStatusError(kZELErrorRefused)] {
                     if (photoData) photoData(error, std::nullopt, std::nullopt);
                   };
                 }};
}

auto seriesOf(RequestEngine& engine, int count, const ZELPhotoSeriesBlock& photoData) {
  return Capture{
      [&, count] { return ZELPhotoDataParser::initWithAEBShutterCount(engine.mainQueue(), count, photoData); },
      [&]() -> zel::platform::Task {
        return [photoData, error = zelOSStatusError(kZELErrorRefused)] {
          if (photoData) photoData(error, {}, nullptr);
        };
      }};
}

// A request that takes photos. Without memory nothing is captured, and both handlers get 101; the photo's gets it also
// where there is no reply handler that would fail it.
template <zel::RowName row, class Photos, class Block, class... Arguments>
void shutter(RequestEngine& engine, const Photos& photos, const Block& rebackBlock, const Arguments&... arguments) {
  const auto reply = [&] { return failingTheCapture<row>(engine, rebackBlock); };
  if (!zel::hasMemoryFor([&] { engine.parser().setPhotoParser(photos.make()); })) {
    engine.refuse(reply);
    return engine.orCount([&] { engine.mainQueue().post(photos.refuse()); });
  }
  if (zel::send<row>(engine, reply, arguments...)) return;
  engine.orCount([&] {
    if (const auto photo = engine.parser().photoParser()) {
      photo->replyBlockWithError(zelOSStatusError(kZELErrorRefused));
    }
  });
}

}  // namespace

void ZELCameraUCD::setDemuxVideoRes(std::uint64_t videoRes) { engine_->parser().setVideoStreamRes(videoRes); }

// NOLINTNEXTLINE(performance-unnecessary-value-param): handlers are passed by value everywhere
void ZELCameraUCD::msgCmdStartVideoWithVideoRes(Byte videoRes, ByteBlock rebackBlock) {
  constexpr zel::RowName kRow = "registerMsgCmdStartVideo";
  setDemuxVideoRes(videoRes);
  // Also without a handler, so that the player does not mix the old stream with the new one.
  const auto resetting = [&]() -> RebackDic {
    return [alive = engine_->whileAlive(),
            answer = takingApart<kRow>(rebackBlock)](const std::optional<ZELMessageFields>& reply) {
      alive([](CameraDataParser& parser) {
        if (const auto player = parser.previewPlayer()) player->resetPlayer();
      });
      if (answer) answer(reply);
    };
  };
  zel::send<kRow>(*engine_, resetting, videoRes);
}

void ZELCameraUCD::msgCmdShutterWithGps(const ZELGpsData& gps, const ZELGyroData& gyro,
                                        const ZELOrientationData& orientation,
                                        CaptureBlock rebackBlock,   // NOLINT(performance-unnecessary-value-param)
                                        ZELPhotoBlock photoData) {  // NOLINT(performance-unnecessary-value-param)
  shutter<"registerMsgCmdShutter">(*engine_, onePhoto(*engine_, photoData), rebackBlock, gps, gyro, orientation);
}

void ZELCameraUCD::newMsgCmdShutterWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                           CaptureBlock rebackBlock, ZELPhotoBlock photoData) {
  msgCmdShutterWithGps(recordOf(gps), recordOf(gyro), recordOf(orientation), std::move(rebackBlock),
                       std::move(photoData));
}

void ZELCameraUCD::msgCmdShutterExtraWithGps(const ZELGpsData& gps, const ZELGyroData& gyro,
                                             const ZELOrientationData& orientation, const Data& jsonData,
                                             CaptureBlock rebackBlock,   // NOLINT(performance-unnecessary-value-param)
                                             ZELPhotoBlock photoData) {  // NOLINT(performance-unnecessary-value-param)
  shutter<"registerMsgCmdShutterExtra">(*engine_, onePhoto(*engine_, photoData), rebackBlock, gps, gyro, orientation,
                                        jsonData);
}

void ZELCameraUCD::newMsgCmdShutterExtraWithGps(const Gps& gps, const Gyro& gyro, const Orientation& orientation,
                                                const Data& jsonData, CaptureBlock rebackBlock,
                                                ZELPhotoBlock photoData) {
  msgCmdShutterExtraWithGps(recordOf(gps), recordOf(gyro), recordOf(orientation), jsonData, std::move(rebackBlock),
                            std::move(photoData));
}

void ZELCameraUCD::msgCmdShutterAEBWithGps(const ZELGpsData& gps, const ZELGyroData& gyro,
                                           const ZELOrientationData& orientation, const aeb_info& aebInfo,
                                           const Data& jsonData,
                                           SeriesBlock rebackBlock,  // NOLINT(performance-unnecessary-value-param)
                                           ZELPhotoSeriesBlock photoData) {  // NOLINT
  shutter<"registerMsgCmdShutterAEB">(*engine_, seriesOf(*engine_, aebInfo.count, photoData), rebackBlock, gps, gyro,
                                      orientation, aebInfo, jsonData);
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
