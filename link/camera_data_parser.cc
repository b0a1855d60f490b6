#include "link/camera_data_parser.h"

#include <algorithm>
#include <utility>

#include <ZELTarkaSDK/platform/call_gate.h>
#include <ZELTarkaSDK/platform/clock.h>
#include "link/marker_search.h"
#include "protocol/frame.h"
#include "protocol/resolution_table.h"

using zel::ByteView;
using zel::FrameType;
using zel::MutexLock;

namespace {

constexpr std::size_t kShortRead = 4096;

}  // namespace

void CameraDataParser::appendBytes(const std::uint8_t* bytes, std::size_t length) {
  forgetClearedBytes();
  buffer_.append({bytes, length});
  statistics_.bytesReceived.add(length);
}

void CameraDataParser::clearData() { clears_.fetch_add(1); }

ByteView CameraDataParser::data() const { return wasCleared() ? ByteView() : buffer_.view(); }

void CameraDataParser::forgetClearedBytes() {
  if (!wasCleared()) return;
  clearsSeen_ = clears_.load();
  buffer_.clear();
}

void CameraDataParser::parserData() {
  forgetClearedBytes();
  parseAppended();
}

void CameraDataParser::parseAppended() {
  if (isNeedDataSynchronism()) {
    findSynchronism();
  } else {
    parseHeld();
  }
}

void CameraDataParser::parserData(ByteView lastRead) {
  forgetClearedBytes();
  statistics_.bytesReceived.add(lastRead.size());
  // A short read is cheaper to copy than to parse in place.
  if (lastRead.size() < kShortRead || isNeedDataSynchronism()) {
    buffer_.append(lastRead);
    return parseAppended();
  }
  if (!parseHeld() || !completeHeld(lastRead) || lastRead.empty()) return;
  std::size_t awaited = 0;
  if (!walk(lastRead, awaited)) return;
  buffer_.append(lastRead);
  buffer_.consume(0, awaited);
}

bool CameraDataParser::parseHeld() {
  if (buffer_.size() < buffer_.awaited() || buffer_.size() < zel::kFrameHeader) return true;
  ByteView rest = buffer_.view();
  std::size_t awaited = 0;
  if (!walk(rest, awaited)) return false;
  buffer_.consume(buffer_.size() - rest.size(), awaited);
  return true;
}

// Completes the held frame with only its missing bytes, so that all others are delivered in place.
bool CameraDataParser::completeHeld(ByteView& lastRead) {
  while (buffer_.size() != 0 && !lastRead.empty()) {
    const std::size_t wanted = std::max(buffer_.awaited(), zel::kFrameHeader);
    const std::size_t taken = std::min(wanted - buffer_.size(), lastRead.size());
    buffer_.append(lastRead.first(taken));
    lastRead = lastRead.subspan(taken);
    if (!parseHeld()) return false;
  }
  return true;
}

bool CameraDataParser::walk(ByteView& bytes, std::size_t& awaited) {
  awaited = 0;
  while (bytes.size() >= zel::kFrameHeader) {
    const auto length = zel::loadLittleEndian<std::uint32_t>(bytes.data());
    if (length < zel::kFrameHeader || length > zel::kMaxFrameLength) return losePosition();
    if (bytes.size() < length) {  // not an error: the rest comes with a later read
      awaited = length;
      break;
    }
    const auto type = zel::loadLittleEndian<std::uint16_t>(bytes.data() + 4);
    statistics_.addFrame(type, length);
    parserDataWithUCDType(type, bytes.data() + zel::kFrameHeader, length - zel::kFrameHeader);
    if (wasCleared()) return false;  // a consumer, or another thread, closed or reopened the session
    bytes = bytes.subspan(length);
  }
  return true;
}

bool CameraDataParser::losePosition() {
  statistics_.positionsLost.add(1);
  buffer_.clear();
  setIsNeedDataSynchronism(true);  // parses no more frames, even if reopening fails
  if (accessory_ != nullptr) accessory_->streamPositionLost();
  return false;
}

void CameraDataParser::findSynchronism() {
  constexpr std::size_t kMarker = dataSynchronismValue.size();
  const ByteView held = buffer_.view();
  if (held.size() < kMarker) return;
  // A marker at the very end is left for a later call: it is recognised only when a byte follows it.
  if (const auto at = zel::findMarker(held.first(held.size() - 1))) return startAfterMarker(*at + kMarker);
  const std::size_t garbage = held.size() - kMarker;  // the rest may be the beginning of a split marker
  statistics_.bytesDiscarded.add(garbage);
  buffer_.consume(garbage, 0);
}

void CameraDataParser::startAfterMarker(std::size_t markerEnd) {
  statistics_.bytesDiscarded.add(markerEnd - dataSynchronismValue.size());
  statistics_.markersFound.add(1);
  buffer_.consume(markerEnd, 0);
  setIsNeedDataSynchronism(false);
  if (accessory_ != nullptr && accessory_->firewareVersion() >= kFirewareVersion190) accessory_->sendSyncTimeCmd();
}

void CameraDataParser::parserDataWithUCDType(std::int32_t type, const std::uint8_t* data, std::size_t dataLen) {
  {
    const zel::CallbackScope consumer;
    route(type, {data, dataLen});
  }
  if (accessory_ != nullptr) accessory_->receivedData();
}

void CameraDataParser::route(std::int32_t type, ByteView payload) {
  switch (type) {
    case 1:
      return routeVideo(payload);
    case 2:
      return routeAudio(payload);
    case 3:
      return routePhoto(payload);
    case 4:
      return parserMsg(payload.data(), payload.size());
    case 7:
      return routeRegistered(payload);
    case 8:
      return routeTimestamp(payload);
    case 9:
      return routeFile(payload);
    default:
      statistics_.dropped.unknownType.add(1);
  }
}

void CameraDataParser::routeVideo(ByteView payload) {
  const auto player = consumers().player.lock();
  if (!player) return statistics_.dropped.noConsumer.add(1);
  player->appendVideoBytes(payload);
}

void CameraDataParser::routeAudio(ByteView payload) {
  const auto player = consumers().player.lock();
  if (!player) return statistics_.dropped.noConsumer.add(1);
  player->appendAudioBytes(payload);
}

void CameraDataParser::routePhoto(ByteView payload) {
  const auto parser = consumers().photo.lock();
  if (!parser) return statistics_.dropped.noConsumer.add(1);
  parser->parserData(payload);
}

void CameraDataParser::routeFile(ByteView payload) {
  const auto file = consumers().file.lock();
  if (!file) return statistics_.dropped.noConsumer.add(1);
  file->parserUCD(payload);
}

void CameraDataParser::routeRegistered(ByteView payload) {
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
void CameraDataParser::routeTimestamp(ByteView payload) {
  if (payload.size() < zel::kTimestampPayload) return statistics_.dropped.shortTimestamp.add(1);
  if (accessory_ == nullptr || accessory_->firewareVersion() < kFirewareVersion190) {
    return statistics_.dropped.timestampOldFirmware.add(1);
  }
  const auto player = consumers().player.lock();
  if (!player) return statistics_.dropped.noConsumer.add(1);
  // Unsigned addition, so that a hostile time wraps instead of overflowing.
  const auto cameraTime = zel::loadLittleEndian<std::uint64_t>(payload.data() + 1);
  const auto phoneTime = static_cast<std::int64_t>(cameraTime + static_cast<std::uint64_t>(accessory_->timeOffset()));
  if (payload[0] == 0) return player->setNextVideoTimestamp(phoneTime);
  player->setNextAudioTimestamp(phoneTime);
}

void CameraDataParser::parserMsg(const std::uint8_t* data, std::size_t dataLen) {
  if (dataLen < 2) return statistics_.dropped.shortMessage.add(1);
  const auto code = zel::loadLittleEndian<std::uint16_t>(data);
  if (dataLen >= 3 && code == zel::kSyncTimeReply && accessory_ != nullptr) {
    accessory_->updateReceiveSyncTimeCmdTimestamp(zel::platform::wholeMilliseconds(accessory_->absoluteTime()));
  }
  const auto record = msgParserDic_.find(code);
  if (!record) {
    if (code != zel::kSyncTimeReply) statistics_.dropped.unregisteredCode.add(1);
    return;
  }
  std::optional<ZELData> body;  // a message of two bytes has no body, which differs from an empty one
  if (dataLen >= 3) body.emplace(ByteView(data + 2, dataLen - 2));
  if (record->parserBlock()) record->parserBlock()(record->msgType(), body, record->sourceObj());
}

void CameraDataParser::sendSyncData() {
  if (syncDataRequester_ == nullptr) return;
  syncDataRequester_->msgReqSendSyncData(ZELData(ByteView(dataSynchronismValue)), [](const auto&) {});
}

// The session thread's own copy, updated when a consumer was set, so that a frame needs no lock.
const CameraDataParser::Consumers& CameraDataParser::consumers() {
  const std::uint64_t version = consumersVersion_.load();
  if (version != consumersSeen_) {
    const MutexLock lock(consumersMutex_);
    consumersCopy_ = {previewPlayer_, photoParser_, ucdFile_};
    consumersSeen_ = version;
  }
  return consumersCopy_;
}

void CameraDataParser::setPreviewPlayer(std::weak_ptr<zel::PreviewConsumer> player) {
  const MutexLock lock(consumersMutex_);
  std::swap(previewPlayer_, player);
  consumersVersion_.fetch_add(1);
}

std::shared_ptr<zel::PreviewConsumer> CameraDataParser::previewPlayer() const {
  const MutexLock lock(consumersMutex_);
  return previewPlayer_.lock();
}

void CameraDataParser::setPhotoParser(std::shared_ptr<zel::PhotoConsumer> parser) {
  const MutexLock lock(consumersMutex_);
  std::swap(photoParser_, parser);
  consumersVersion_.fetch_add(1);
}

std::shared_ptr<zel::PhotoConsumer> CameraDataParser::photoParser() const {
  const MutexLock lock(consumersMutex_);
  return photoParser_;
}

void CameraDataParser::setUcdFile(std::shared_ptr<zel::FileReplyConsumer> file) {
  const MutexLock lock(consumersMutex_);
  std::swap(ucdFile_, file);
  consumersVersion_.fetch_add(1);
}

std::shared_ptr<zel::FileReplyConsumer> CameraDataParser::ucdFile() const {
  const MutexLock lock(consumersMutex_);
  return ucdFile_;
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

void CameraDataParser::registerMsgPacket(CameraMsgPacket packet, std::int64_t msgType) {
  msgPacketDic_.put(msgType, std::move(packet));
}

void CameraDataParser::registerMsgParser(CameraMsgParser parser, std::int64_t ucdMsgResponseType) {
  msgParserDic_.put(ucdMsgResponseType, std::move(parser));
}

void CameraDataParser::registerDataParser(ZELCameraDataParser parser, std::int64_t ucdDataType) {
  dataParserDic_.put(ucdDataType, std::move(parser));
}

void CameraDataParser::removeDataParser(std::int64_t ucdDataType) { dataParserDic_.remove(ucdDataType); }

std::optional<ZELData> CameraDataParser::packetMsgData(std::int64_t msgType, const ZELMessageFields& fields) const {
  const auto packet = msgPacketDic_.find(msgType);
  if (!packet) return std::nullopt;
  return zel::packedFrame(*packet, fields);
}
