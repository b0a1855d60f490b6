#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "base/shared_value.h"
#include "link/camera_msg_parser.h"
#include "link/frame_statistics.h"
#include "link/message_registry.h"
#include "link/roles.h"
#include "link/zel_camera_data_parser.h"

namespace zel {

// Hands each frame to its consumer: preview to the player, photos, files and messages to who waits for them. What
// nobody takes is dropped and counted.
//
// Owner:  the statistics must outlive the object; the accessory is not owned.
// Thread: route() and parserMsg() on the session thread; everything else on any thread.
class FrameRouter {
 public:
  explicit FrameRouter(FrameStatistics& statistics) : statistics_(statistics) {}
  FrameRouter(const FrameRouter&) = delete;
  FrameRouter& operator=(const FrameRouter&) = delete;

  // Who knows the firmware and the clocks; null while there is nobody. Set before traffic starts.
  void setAccessory(AccessoryLink* accessory) { accessory_ = accessory; }

  void route(std::int32_t type, ByteView payload);
  // A message, from its code on.
  void parserMsg(ByteView message);

  // Consumer of video, audio and timestamps, held weakly.
  void setPreviewPlayer(std::weak_ptr<PreviewConsumer> player);
  std::shared_ptr<PreviewConsumer> previewPlayer() const { return consumers_.get(&Owned::player).lock(); }
  // Consumer of photos; each capture brings its own.
  void setPhotoParser(std::shared_ptr<PhotoConsumer> parser);
  std::shared_ptr<PhotoConsumer> photoParser() const { return consumers_.get(&Owned::photo); }
  // Whether there is one.
  // Thread: session thread.
  bool awaitsPhoto() { return !consumers().photo.expired(); }
  // Consumer of file replies.
  void setUcdFile(std::shared_ptr<FileReplyConsumer> file);
  std::shared_ptr<FileReplyConsumer> ucdFile() const { return consumers_.get(&Owned::file); }

  Registry<CameraMsgParser>& msgParserDic() { return msgParserDic_; }
  Registry<ZELCameraDataParser>& dataParserDic() { return dataParserDic_; }

 private:
  // The consumers as they were set, and as the session thread sees them.
  struct Owned {
    std::weak_ptr<PreviewConsumer> player;
    std::shared_ptr<PhotoConsumer> photo;
    std::shared_ptr<FileReplyConsumer> file;
  };
  struct Consumers {
    std::weak_ptr<PreviewConsumer> player;
    std::weak_ptr<PhotoConsumer> photo;
    std::weak_ptr<FileReplyConsumer> file;
  };

  const Consumers& consumers() {
    if (consumersVersion_.load() != consumersSeen_) lookAtConsumers();
    return consumersCopy_;
  }
  void lookAtConsumers();
  template <class Consumer>
  void set(Consumer Owned::*which, Consumer consumer);
  template <auto kTake, class Consumer, class Given>
  void hand(const std::weak_ptr<Consumer>& consumer, Given given);
  void routeRegistered(ByteView payload);
  void routeTimestamp(ByteView payload);

  FrameStatistics& statistics_;
  AccessoryLink* accessory_ = nullptr;  // set before traffic starts
  Registry<CameraMsgParser> msgParserDic_;
  Registry<ZELCameraDataParser> dataParserDic_;

  Consumers consumersCopy_;          // session thread only
  std::uint64_t consumersSeen_ = 0;  // session thread only
  std::atomic<std::uint64_t> consumersVersion_ = 0;
  Guarded<Owned> consumers_;
};

}  // namespace zel
