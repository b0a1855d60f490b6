#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

#include <ZELTarkaSDK/ZELData.h>
#include <ZELTarkaSDK/ZELMessageFields.h>

// How one kind of request is packed: the wire code and the function that makes the body.
class CameraMsgPacket {
 public:
  // Called with the record's UCDMsgType, the request's fields and the source object. An empty result is an empty body.
  using PacketBlock =
      std::function<std::optional<ZELData>(std::int32_t ucdMsgType, const ZELMessageFields& fields, void* sourceObj)>;

  // initWithUCDMsgType:source:packetBlock: and initWithUCDMsgType:packetBlock:
  // Owner:  sourceObj is not owned and never cleared; it must live as long as the record.
  CameraMsgPacket(std::int32_t ucdMsgType, void* sourceObj, PacketBlock packetBlock)
      : UCDMsgType_(ucdMsgType), sourceObj_(sourceObj), packetBlock_(std::move(packetBlock)) {}
  CameraMsgPacket(std::int32_t ucdMsgType, PacketBlock packetBlock)
      : CameraMsgPacket(ucdMsgType, nullptr, std::move(packetBlock)) {}

  std::int32_t UCDMsgType() const { return UCDMsgType_; }
  void* sourceObj() const { return sourceObj_; }
  const PacketBlock& packetBlock() const { return packetBlock_; }

 private:
  std::int32_t UCDMsgType_;
  void* sourceObj_;
  PacketBlock packetBlock_;
};
