#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include <ZELTarkaSDK/ZELData.h>
#include <ZELTarkaSDK/ZELHandlers.h>
#include <ZELTarkaSDK/platform/queues.h>

#include "base/pending_table.h"
#include "base/shared_value.h"
#include "link/roles.h"

// Sends whole files to the camera, and matches its replies to the handlers by the file's path.
// There is no timeout: a transfer is pending until its own reply, or a reply that completes all transfers.
// Owner:  mainQueue must outlive the object.
// Thread: parserUCD on the session thread, the rest on any thread.
class ZELUCDFile final : public zel::FileReplyConsumer {
 public:
  // writeData queues bytes for the camera.
  ZELUCDFile(std::function<void(const ZELData&)> writeData, zel::platform::Queue& mainQueue)
      : writeData_(std::move(writeData)), mainQueue_(mainQueue) {}

  // sendFileWithType:filePath:fileData:rebackBlock: - sends the file as one frame. type: its low 16 bits are sent.
  // filePath: the file's name on the camera. A path with a drive loses its first three characters, wherever the drive
  // is: "C:/a" becomes "a", and "x/C:/a" becomes ":/a". The camera gets its first 64 bytes. If nothing is left of the
  // path, the handler is dropped and never called; the reply, if any, completes all transfers.
  // Thread: the handler runs on the session thread when the reply names the path, and on the main queue when the reply
  //         completes all transfers or arrived before this call returned.
  // Errors: 100 connection lost; 101 the camera failed, answered nonsense, the file is larger than a frame can say, or
  //         there is no memory for it.
  void sendFileWithType(std::int64_t type, const std::optional<std::string>& filePath, const ZELData& fileData,
                        const zel::RebackBlock<>& rebackBlock);

  // Whether a file of that many bytes can be sent: the length of its frame has 32 bits.
  static bool fitsAFrame(std::uint64_t fileSize);

  // Files that were not sent, and answers, of which nobody could be told for want of memory.
  std::uint64_t lostForMemory() const { return lostForMemory_.load(); }

  // parserUCD:size: - one reply of the camera.
  void parserUCD(zel::ByteView bytes) override;

  // replyAllBlockWithError:, replyAllBlockWithErrorCode:, replyAllBlockWithCameraError - complete every pending
  // transfer. They throw nothing where memory ends.
  void replyAllBlockWithError(const std::optional<ZELError>& error);
  void replyAllBlockWithErrorCode(int code);
  void replyAllBlockWithCameraError() { replyAllBlockWithErrorCode(kZELErrorRefused); }

 private:
  using Answer = std::optional<ZELError>;
  using Blocks = zel::PendingTable<std::string, zel::RebackBlock<>, Answer>;

  void send(std::int64_t type, const std::string& filePath, const ZELData& fileData,
            const zel::RebackBlock<>& rebackBlock);
  void refuse(const zel::RebackBlock<>& rebackBlock);
  std::optional<zel::RebackBlock<>> takeAny() {
    return blocks_.with([](Blocks& blocks) { return blocks.takeAny(); });
  }
  void wait(const std::string& path, std::optional<zel::RebackBlock<>>& handler);
  void post(const zel::RebackBlock<>& rebackBlock, const Answer& answer);
  void postOrRefuse(const zel::RebackBlock<>& rebackBlock, const Answer& answer);

  std::atomic<std::uint64_t> lostForMemory_ = 0;
  const std::function<void(const ZELData&)> writeData_;
  zel::platform::Queue& mainQueue_;
  zel::Guarded<Blocks> blocks_;
};
