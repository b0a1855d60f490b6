#include "link/frame_router.h"

#include <limits>
#include <optional>
#include <utility>

#include <ZELTarkaSDK/platform/clock.h>

#include "protocol/frame.h"

namespace zel {

void FrameRouter::route(std::int32_t type, ByteView payload) {
  const bool isOnTheWire = type >= 0 && type <= std::numeric_limits<std::uint16_t>::max();
  switch (isOnTheWire ? FrameType(type) : FrameType::other) {
    case FrameType::previewVideo:
      return hand<&PreviewConsumer::appendVideoBytes>(consumers().player, payload);
    case FrameType::previewAudio:
      return hand<&PreviewConsumer::appendAudioBytes>(consumers().player, payload);
    case FrameType::photo:
      return hand<&PhotoConsumer::parserData>(consumers().photo, payload);
    case FrameType::message:
      return parserMsg(payload);
    case FrameType::registered:
      return routeRegistered(payload);
    case FrameType::timestamp:
      return routeTimestamp(payload);
    case FrameType::file:
      return hand<&FileReplyConsumer::parserUCD>(consumers().file, payload);
    case FrameType::other:
      break;
  }
  statistics_.dropped.unknownType.add(1);
}

template <auto kTake, class Consumer, class Given>
void FrameRouter::hand(const std::weak_ptr<Consumer>& consumer, Given given) {
  const auto there = consumer.lock();
  if (!there) return statistics_.dropped.noConsumer.add(1);
  ((*there).*kTake)(given);
}

void FrameRouter::routeRegistered(ByteView payload) {
  const auto record = dataParserDic_.find(static_cast<std::int64_t>(FrameType::registered));
  if (!record || !record->parserBlock()) return statistics_.dropped.unregisteredData.add(1);
  record->parserBlock()(record->srcObj(), payload);
}

// Payload:
//
//   0      1                       9
//   +------+-----------------------+----------
//   | flag | camera time, ms (s64) | ignored
//   +------+-----------------------+----------
//
// Flag 0 is video, anything else audio.
void FrameRouter::routeTimestamp(ByteView payload) {
  if (payload.size() < kTimestampPayload) return statistics_.dropped.shortTimestamp.add(1);
  if (accessory_ == nullptr || accessory_->firewareVersion() < kFirewareVersion190) {
    return statistics_.dropped.timestampOldFirmware.add(1);
  }
  // Added as unsigned numbers, because a hostile time must wrap around and not overflow.
  const auto cameraTime = loadLittleEndian<std::uint64_t>(payload.data() + 1);
  const auto phoneTime = static_cast<std::int64_t>(cameraTime + static_cast<std::uint64_t>(accessory_->timeOffset()));
  if (payload[0] == 0) return hand<&PreviewConsumer::setNextVideoTimestamp>(consumers().player, phoneTime);
  hand<&PreviewConsumer::setNextAudioTimestamp>(consumers().player, phoneTime);
}

void FrameRouter::parserMsg(ByteView message) {
  if (message.size() < 2) return statistics_.dropped.shortMessage.add(1);
  const auto code = loadLittleEndian<std::uint16_t>(message.data());
  if (message.size() >= 3 && code == kSyncTimeReply && accessory_ != nullptr) {
    accessory_->updateReceiveSyncTimeCmdTimestamp(platform::wholeMilliseconds(accessory_->absoluteTime()));
  }
  const auto record = msgParserDic_.find(code);
  if (!record) {
    if (code != kSyncTimeReply) statistics_.dropped.unregisteredCode.add(1);
    return;
  }
  std::optional<ZELData> body;  // a message of two bytes has no body at all, which is not an empty one
  if (message.size() >= 3) body.emplace(message.subspan(2));
  if (record->parserBlock()) record->parserBlock()(record->msgType(), body, record->sourceObj());
}

// The session thread's own copy, renewed when somebody set a consumer: a frame then costs no lock.
void FrameRouter::lookAtConsumers() {
  consumersSeen_ = consumersVersion_.load();
  consumersCopy_ = consumers_.with([](const Owned& all) { return Consumers{all.player, all.photo, all.file}; });
}

template <class Consumer>
void FrameRouter::set(Consumer Owned::*which, Consumer consumer) {
  consumers_.set(which, std::move(consumer));
  consumersVersion_.fetch_add(1);
}

void FrameRouter::setPreviewPlayer(std::weak_ptr<PreviewConsumer> player) { set(&Owned::player, std::move(player)); }
void FrameRouter::setPhotoParser(std::shared_ptr<PhotoConsumer> parser) { set(&Owned::photo, std::move(parser)); }
void FrameRouter::setUcdFile(std::shared_ptr<FileReplyConsumer> file) { set(&Owned::file, std::move(file)); }

}  // namespace zel
