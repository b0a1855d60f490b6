#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include <ZELTarkaSDK/LinkStatistics.h>
#include <ZELTarkaSDK/ZELData.h>
#include <ZELTarkaSDK/ZELMessageFields.h>

#include "base/mutex.h"
#include "link/camera_msg_packet.h"
#include "link/camera_msg_parser.h"
#include "link/frame_statistics.h"
#include "link/message_registry.h"
#include "link/receive_buffer.h"
#include "link/roles.h"
#include "link/zel_camera_data_parser.h"

// Cuts the camera's byte stream into frames and delivers each to its consumer; packs outbound messages. Nothing on the
// stream is trusted: a partial frame waits for the rest, an unknown one is dropped and counted, an invalid length
// reopens the session.
// Owner:  consumers and the accessory are not owned.
// Thread: appendBytes, parserData and all that they call run on the session thread; everything else on any thread.
class CameraDataParser final : public zel::InboundStream {
 public:
  // The de-multiplexer of the process-wide stack.
  static CameraDataParser& shareCameraDataParser();

  CameraDataParser() = default;
  CameraDataParser(const CameraDataParser&) = delete;
  CameraDataParser& operator=(const CameraDataParser&) = delete;

  // Receives the reports of arriving data and of the time synchronisation; may be null. Set before traffic starts.
  void setAccessory(zel::AccessoryLink* accessory) { accessory_ = accessory; }
  // Sends the marker request. Set before traffic starts.
  void setSyncDataRequester(zel::SyncDataRequester* requester) { syncDataRequester_ = requester; }

  // appendBytes:length: - appends received bytes without parsing them.
  void appendBytes(const std::uint8_t* bytes, std::size_t length) override;

  // Delivers every whole received frame in order. While resynchronising it searches for the marker instead, and leaves
  // the bytes after the marker for the next call.
  void parserData();

  // The same as appendBytes() with these bytes and then parserData(), but copies only an incomplete frame at the end:
  // whole frames are delivered in place.
  void parserData(zel::ByteView lastRead) override;

  // parserDataWithUCDType:data:dataLen: - routes one frame's payload, and reports arriving data to the accessory, for
  // any type.
  void parserDataWithUCDType(std::int32_t type, const std::uint8_t* data, std::size_t dataLen);

  // parserMsg:dataLen: - dispatches a message by its code.
  void parserMsg(const std::uint8_t* data, std::size_t dataLen);

  // Drops the received bytes. Called from another thread while frames are being routed, it lets the current frame
  // finish and drops the rest.
  void clearData() override;

  // Whether it searches for the marker.
  bool isNeedDataSynchronism() const { return isNeedDataSynchronism_.load(); }
  void setIsNeedDataSynchronism(bool needed) override { isNeedDataSynchronism_.store(needed); }

  // Requests the marker from the camera.
  void sendSyncData();

  // Received bytes that are not consumed yet.
  // Thread: session thread.
  zel::ByteView data() const;
  // The size of their buffer.
  // Thread: session thread.
  std::size_t dataCapacity() const { return buffer_.capacity(); }

  // Consumer of types 1, 2 and 8, held weakly.
  void setPreviewPlayer(std::weak_ptr<zel::PreviewConsumer> player);
  std::shared_ptr<zel::PreviewConsumer> previewPlayer() const;
  // Consumer of type 3; each capture sets its own.
  void setPhotoParser(std::shared_ptr<zel::PhotoConsumer> parser);
  std::shared_ptr<zel::PhotoConsumer> photoParser() const;
  // Consumer of type 9.
  void setUcdFile(std::shared_ptr<zel::FileReplyConsumer> file);
  std::shared_ptr<zel::FileReplyConsumer> ucdFile() const;

  // setVideoStreamRes: - stores the code; one from 0 to 15 also sets the preview player's picture size and frame rate.
  void setVideoStreamRes(std::uint64_t code);
  std::uint64_t videoStreamRes() const { return videoStreamRes_.load(); }

  // Registries; an earlier record under the same key is replaced. Only the low 32 bits of keys are used.
  void registerMsgPacket(CameraMsgPacket packet, std::int64_t msgType);
  void registerMsgParser(CameraMsgParser parser, std::int64_t ucdMsgResponseType);
  void registerDataParser(ZELCameraDataParser parser, std::int64_t ucdDataType);
  void removeDataParser(std::int64_t ucdDataType);

  // packetMsgData:withData: - the whole outbound frame; nothing when no request is registered under the number.
  std::optional<ZELData> packetMsgData(std::int64_t msgType, const ZELMessageFields& fields) const;

  // Sets the de-multiplexer's counters in `into`.
  // Thread: any thread.
  void copyStatistics(zel::LinkStatistics& into) const { statistics_.copyTo(into); }

 private:
  struct Consumers {
    std::weak_ptr<zel::PreviewConsumer> player;
    std::weak_ptr<zel::PhotoConsumer> photo;
    std::weak_ptr<zel::FileReplyConsumer> file;
  };

  const Consumers& consumers();
  bool wasCleared() const { return clears_.load() != clearsSeen_; }
  void forgetClearedBytes();
  void parseAppended();
  void findSynchronism();
  void startAfterMarker(std::size_t markerEnd);
  // The following return false when the session was closed or reopened; the read bytes are then invalid.
  bool parseHeld();
  bool completeHeld(zel::ByteView& lastRead);
  // Delivers the whole frames at the front of `bytes` and removes them; `awaited` is the length of the incomplete one.
  bool walk(zel::ByteView& bytes, std::size_t& awaited);
  bool losePosition();
  void route(std::int32_t type, zel::ByteView payload);
  void routeVideo(zel::ByteView payload);
  void routeAudio(zel::ByteView payload);
  void routePhoto(zel::ByteView payload);
  void routeRegistered(zel::ByteView payload);
  void routeTimestamp(zel::ByteView payload);
  void routeFile(zel::ByteView payload);

  zel::AccessoryLink* accessory_ = nullptr;              // set before traffic starts
  zel::SyncDataRequester* syncDataRequester_ = nullptr;  // set before traffic starts

  zel::ReceiveBuffer buffer_;     // session thread only
  std::uint64_t clearsSeen_ = 0;  // session thread only
  std::atomic<std::uint64_t> clears_ = 0;
  std::atomic<bool> isNeedDataSynchronism_ = false;
  std::atomic<std::uint64_t> videoStreamRes_ = 0;
  zel::FrameStatistics statistics_;

  zel::Registry<CameraMsgPacket> msgPacketDic_;
  zel::Registry<CameraMsgParser> msgParserDic_;
  zel::Registry<ZELCameraDataParser> dataParserDic_;

  Consumers consumersCopy_;          // session thread only
  std::uint64_t consumersSeen_ = 0;  // session thread only
  std::atomic<std::uint64_t> consumersVersion_ = 0;
  mutable zel::Mutex consumersMutex_;
  std::weak_ptr<zel::PreviewConsumer> previewPlayer_ ZEL_GUARDED_BY(consumersMutex_);
  std::shared_ptr<zel::PhotoConsumer> photoParser_ ZEL_GUARDED_BY(consumersMutex_);
  std::shared_ptr<zel::FileReplyConsumer> ucdFile_ ZEL_GUARDED_BY(consumersMutex_);
};
