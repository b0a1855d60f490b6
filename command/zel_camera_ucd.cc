// The public side of the request engine. The requests are in the files next to this one: commands, settings,
// calibration, files.

#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <utility>

#include "command/reply_adapters.h"
#include "command/request_engine.h"

using zel::RebackDic;
using zel::RequestEngine;

namespace {

constexpr zel::Reply kFlag = zel::flag();
constexpr zel::Reply kByte = zel::value(zel::field::u8(zel::key::ucharValue));
constexpr zel::Reply kFlagAndByte = zel::flag(zel::field::u8(zel::key::ucharValue));
constexpr zel::Reply kFlagAndShort = zel::flag(zel::field::s16(zel::key::shortValue));
constexpr zel::Reply kFlagAndUint = zel::flag(zel::field::u32(zel::key::uintValue));

}  // namespace

ZELCameraUCD::ZELCameraUCD(ZELCameraAccessory& accessory, CameraDataParser& parser, ZELUCDFile& ucdFile,
                           zel::platform::Queue& mainQueue)
    : engine_(std::make_unique<RequestEngine>(accessory, parser, ucdFile, mainQueue)) {
  parser.setSyncDataRequester(engine_.get());
}

// Receivers that are destroyed with it may remove themselves in their destructors; the engine is still complete then.
ZELCameraUCD::~ZELCameraUCD() {
  engine_->parser().setSyncDataRequester(nullptr);
  engine_->removeAllReceivers();
}

void ZELCameraUCD::setKeepAlive(const zel::KeepAlive& keepAlive) { engine_->setKeepAlive(keepAlive); }

void ZELCameraUCD::failEverything() { engine_->failEverything(); }

std::uint64_t ZELCameraUCD::lostForMemory() const { return engine_->lostForMemory(); }

// NOLINTNEXTLINE(performance-unnecessary-value-param): handlers are passed by value everywhere
void ZELCameraUCD::sendMsg(std::int64_t msgType, const ZELMessageFields& msgDataDic, RebackDic rebackBlock) {
  engine_->orRefuse([&] { return rebackBlock; }, [&] { engine_->send(msgType, msgDataDic, rebackBlock); });
}

void ZELCameraUCD::responseCameraMsg(std::int64_t msgType, const std::optional<ZELMessageFields>& rebackDic) {
  engine_->orCount([&] { engine_->respond(msgType, rebackDic); });
}

void ZELCameraUCD::responseCameraErrorMsg(std::int64_t msgType) {
  engine_->orCount([&] { engine_->respondWithError(msgType); });
}

void ZELCameraUCD::responseAllReblackBlockWithErrorCode(int errorCode) {
  engine_->orCount([&] { engine_->respondToAllWithError(errorCode); });
}

void ZELCameraUCD::parserReceiveUint8ResponseData(const Data& data, std::int64_t msgType) {
  engine_->orCount([&] { engine_->respondTo(kFlag, data, msgType); });
}

void ZELCameraUCD::parserReceiveUint8ValueData(const Data& data, std::int64_t msgType) {
  engine_->orCount([&] { engine_->respondTo(kByte, data, msgType); });
}

void ZELCameraUCD::parserReceiveUint8ResponseAndUint8ValueData(const Data& data, std::int64_t msgType) {
  engine_->orCount([&] { engine_->respondTo(kFlagAndByte, data, msgType); });
}

void ZELCameraUCD::parserReceiveUint8ResponseAndInt16ValueData(const Data& data, std::int64_t msgType) {
  engine_->orCount([&] { engine_->respondTo(kFlagAndShort, data, msgType); });
}

void ZELCameraUCD::parserReceiveUint8ResponseAndUint32ValueData(const Data& data, std::int64_t msgType) {
  engine_->orCount([&] { engine_->respondTo(kFlagAndUint, data, msgType); });
}

void ZELCameraUCD::addCameraNotificationReceiver(std::shared_ptr<ZELCameraNotificationProtocol> receiver) {
  engine_->orCount([&] { engine_->addReceiver(std::move(receiver)); });
}

void ZELCameraUCD::removeCameraNotificationReceiver(const ZELCameraNotificationProtocol* receiver) {
  engine_->removeReceiver(receiver);
}

void ZELCameraUCD::sendNotification(std::int64_t type, const std::optional<ZELMessageFields>& value) {
  engine_->orCount([&] { engine_->notify(type, value); });
}

void ZELCameraUCD::sendFileWithType(std::int64_t type, const Text& filePath, const ZELData& fileData,
                                    ErrorBlock rebackBlock) {  // NOLINT(performance-unnecessary-value-param)
  engine_->ucdFile().sendFileWithType(type, filePath, fileData, rebackBlock);
}
