#include "command/sync_data_request.h"

#include <ZELTarkaSDK/ZELCameraAccessory.h>

#include <utility>

namespace zel {
namespace {

constexpr std::int64_t kMsgType = 64;
constexpr std::int32_t kRequest = 0x402E;
constexpr std::int64_t kReply = 0xC02E;

}  // namespace

SyncDataRequest::SyncDataRequest(CameraDataParser& parser, ZELCameraAccessory& accessory, platform::Queue& mainQueue)
    : parser_(parser), accessory_(accessory), mainQueue_(mainQueue) {
  registerMsgReqSendSyncData();
}

void SyncDataRequest::registerMsgReqSendSyncData() {
  parser_.registerMsgPacket(CameraMsgPacket(kRequest, [](std::int32_t, const ZELMessageFields& fields,
                                                         void*) { return fields.get<ZELData>("NSData"); }),
                            kMsgType);
  // Whatever the reply holds, it is a success.
  parser_.registerMsgParser(
      CameraMsgParser(kMsgType, [this](std::uint64_t, const std::optional<ZELData>&, void*) { complete(); }), kReply);
}

void SyncDataRequest::msgReqSendSyncData(const ZELData& marker, Handler rebackBlock) {
  const auto frame = parser_.packetMsgData(kMsgType, {{"NSData", marker}});
  {
    // Stored before the frame is written: the reply may come before this thread goes on.
    const MutexLock lock(mutex_);
    std::swap(waiting_, rebackBlock);
  }
  if (frame) accessory_.writeData(*frame);
}

void SyncDataRequest::complete() {
  Handler handler;
  {
    const MutexLock lock(mutex_);
    std::swap(waiting_, handler);
  }
  if (handler) mainQueue_.post([handler = std::move(handler)] { handler(std::nullopt); });
}

}  // namespace zel
