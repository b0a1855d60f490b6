#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include <ZELTarkaSDK/LinkStatistics.h>
#include <ZELTarkaSDK/ZELData.h>
#include <ZELTarkaSDK/ZELMessageFields.h>

#include "link/camera_msg_packet.h"
#include "link/camera_msg_parser.h"
#include "link/frame_cutter.h"
#include "link/frame_router.h"
#include "link/frame_statistics.h"
#include "link/message_registry.h"
#include "link/roles.h"
#include "link/zel_camera_data_parser.h"

// Cuts the camera's byte stream into frames and hands each to its consumer; packs outbound messages. Nothing on the
// stream is trusted: a partial frame waits, an unknown one is dropped and counted, an impossible length has the session
// reopened.
// Owner:  consumers and the accessory are not owned.
// Thread: appendBytes, parserData and all that they call run on the session thread; everything else on any thread.
class CameraDataParser final : public zel::InboundStream, zel::FrameSink {
 public:
  // The de-multiplexer of the process-wide stack.
  static CameraDataParser& shareCameraDataParser();

  CameraDataParser() = default;
  CameraDataParser(const CameraDataParser&) = delete;
  CameraDataParser& operator=(const CameraDataParser&) = delete;
  // Receives the reports of arriving data and of the time synchronisation; may be null. Set before traffic starts.
  void setAccessory(zel::AccessoryLink* accessory);
  // Sends the marker request. Set before traffic starts.
  void setSyncDataRequester(zel::SyncDataRequester* requester) { syncDataRequester_ = requester; }

  // appendBytes:length: - appends received bytes without parsing them.
  void appendBytes(const std::uint8_t* bytes, std::size_t length) override { cutter_.append({bytes, length}); }

  // Delivers every whole received frame in order. While resynchronising it searches for the marker instead, and leaves
  // the bytes after the marker for the next call.
  void parserData() { cutter_.cut(); }

  // The same as appendBytes() with these bytes and then parserData(), but copies only an incomplete frame at the end:
  // whole frames are delivered in place.
  void parserData(zel::ByteView lastRead) override { cutter_.cut(lastRead); }

  // parserDataWithUCDType:data:dataLen: - routes one frame's payload, and reports arriving data to the accessory, for
  // any type.
  void parserDataWithUCDType(std::int32_t type, const std::uint8_t* data, std::size_t dataLen);

  // parserMsg:dataLen: - dispatches a message by its code.
  void parserMsg(const std::uint8_t* data, std::size_t dataLen) { router_.parserMsg({data, dataLen}); }

  // Drops the received bytes. Called from another thread while frames are being routed, it lets the current frame
  // finish and drops the rest.
  void clearData() override { cutter_.clear(); }

  // Whether it searches for the marker.
  bool isNeedDataSynchronism() const { return cutter_.needsMarker(); }
  void setIsNeedDataSynchronism(bool needed) override { cutter_.setNeedsMarker(needed); }

  // A longer frame counts as a lost position, as every one does that is longer than kMaxFrameLength; photos may always
  // be of that length while there is a photo parser.
  //
  // Units:  bytes, at most kMaxFrameLength.
  // Thread: any thread.
  void setLongestFrame(std::uint32_t bytes) { cutter_.setLongestFrame(bytes); }

  // Requests the marker from the camera.
  void sendSyncData();

  // Received bytes that are not consumed yet.
  // Thread: session thread.
  zel::ByteView data() const { return cutter_.held(); }
  // The size of their buffer.
  // Thread: session thread.
  std::size_t dataCapacity() const { return cutter_.capacity(); }

  // Consumer of types 1, 2 and 8, held weakly.
  void setPreviewPlayer(std::weak_ptr<zel::PreviewConsumer> player) { router_.setPreviewPlayer(std::move(player)); }
  std::shared_ptr<zel::PreviewConsumer> previewPlayer() const { return router_.previewPlayer(); }
  // Consumer of type 3; each capture sets its own.
  void setPhotoParser(std::shared_ptr<zel::PhotoConsumer> parser) { router_.setPhotoParser(std::move(parser)); }
  std::shared_ptr<zel::PhotoConsumer> photoParser() const { return router_.photoParser(); }
  // Consumer of type 9.
  void setUcdFile(std::shared_ptr<zel::FileReplyConsumer> file) { router_.setUcdFile(std::move(file)); }
  std::shared_ptr<zel::FileReplyConsumer> ucdFile() const { return router_.ucdFile(); }

  // setVideoStreamRes: - stores the code; one from 0 to 15 also sets the preview player's picture size and frame rate.
  void setVideoStreamRes(std::uint64_t code);
  std::uint64_t videoStreamRes() const { return videoStreamRes_.load(); }

  // Registries; an earlier record under the same key is replaced. Only the low 32 bits of keys are used.
  void registerMsgPacket(CameraMsgPacket packet, std::int64_t msgType) {
    msgPacketDic_.put(msgType, std::move(packet));
  }
  void registerMsgParser(CameraMsgParser parser, std::int64_t ucdMsgResponseType) {
    router_.msgParserDic().put(ucdMsgResponseType, std::move(parser));
  }
  void registerDataParser(ZELCameraDataParser parser, std::int64_t ucdDataType) {
    router_.dataParserDic().put(ucdDataType, std::move(parser));
  }
  void removeDataParser(std::int64_t ucdDataType) { router_.dataParserDic().remove(ucdDataType); }

  // packetMsgData:withData: - the whole outbound frame; nothing when no request is registered under the number.
  std::optional<ZELData> packetMsgData(std::int64_t msgType, const ZELMessageFields& fields) const;

  // Sets the de-multiplexer's counters in `into`.
  // Thread: any thread.
  void copyStatistics(zel::LinkStatistics& into) const { statistics_.copyTo(into); }

 private:
  void takeFrame(std::uint16_t type, zel::ByteView payload) override;
  void streamBegins() override;
  bool awaitsPhoto() override { return router_.awaitsPhoto(); }
  void positionLost() override;

  zel::AccessoryLink* accessory_ = nullptr;              // set before traffic starts
  zel::SyncDataRequester* syncDataRequester_ = nullptr;  // set before traffic starts
  zel::FrameStatistics statistics_;
  zel::FrameCutter cutter_{*this, statistics_};
  zel::FrameRouter router_{statistics_};
  zel::Registry<CameraMsgPacket> msgPacketDic_;
  std::atomic<std::uint64_t> videoStreamRes_ = 0;
};
