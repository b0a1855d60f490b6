#include "link/camera_data_parser.h"

#include <ZELTarkaSDK/PreviewFormat.h>
#include <ZELTarkaSDK/platform/call_gate.h>

#include "base/has_memory_for.h"

void CameraDataParser::setAccessory(zel::AccessoryLink* accessory) {
  accessory_ = accessory;
  router_.setAccessory(accessory);
}

void CameraDataParser::takeFrame(std::uint16_t type, zel::ByteView payload) {
  parserDataWithUCDType(type, payload.data(), payload.size());
}

// A consumer that finds no memory has missed the frame; the next one may be smaller.
void CameraDataParser::parserDataWithUCDType(std::int32_t type, const std::uint8_t* data, std::size_t dataLen) {
  const bool isTaken = zel::hasMemoryFor([&] {
    const zel::CallbackScope consumer;
    router_.route(type, {data, dataLen});
  });
  if (!isTaken) statistics_.dropped.noMemory.add(1);
  if (accessory_ != nullptr) accessory_->receivedData();
}

void CameraDataParser::streamBegins() {
  if (accessory_ != nullptr && accessory_->firewareVersion() >= kFirewareVersion190) accessory_->sendSyncTimeCmd();
}

void CameraDataParser::positionLost() {
  if (accessory_ != nullptr) accessory_->streamPositionLost();
}

void CameraDataParser::sendSyncData() {
  if (syncDataRequester_ == nullptr) return;
  syncDataRequester_->msgReqSendSyncData(ZELData(zel::ByteView(dataSynchronismValue)), [](const auto&) {});
}

void CameraDataParser::setVideoStreamRes(std::uint64_t code) {
  videoStreamRes_.store(code);
  const auto player = previewPlayer();
  const auto format = zel::previewFormat(code);
  if (!player || !format) return;
  player->setImageWidth(format->width);
  player->setImageHeight(format->height);
  player->setFps(format->fps);
}

std::optional<ZELData> CameraDataParser::packetMsgData(std::int64_t msgType, const ZELMessageFields& fields) const {
  const auto packet = msgPacketDic_.find(msgType);
  if (!packet) return std::nullopt;
  return zel::packedFrame(*packet, fields);
}
