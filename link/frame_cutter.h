#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "base/wire.h"
#include "link/frame_statistics.h"
#include "link/receive_buffer.h"
#include "protocol/frame.h"

namespace zel {

// Where the synchronisation marker first stands in the bytes, nullopt where it does not.
std::optional<std::size_t> findMarker(ByteView bytes);

// Who takes what the cutter finds.
// Thread: session thread.
class FrameSink {
 public:
  // One whole frame; the payload is valid during the call only.
  virtual void takeFrame(std::uint16_t type, ByteView payload) = 0;
  // The marker was found: from here on the bytes are frames.
  virtual void streamBegins() = 0;
  // Whether somebody waits for a photo, which may be longer than any other frame.
  virtual bool awaitsPhoto() = 0;
  // An impossible length, or no memory for what came: from here on only the marker can tell where a frame begins.
  virtual void positionLost() = 0;

 protected:
  ~FrameSink() = default;
};

// Cuts the camera's bytes into frames. A partial frame waits for its rest; where the position is lost, everything up to
// the next marker goes.
//
// Owner:  the sink and the statistics must outlive the object.
// Thread: session thread, except where an operation says otherwise.
class FrameCutter {
 public:
  FrameCutter(FrameSink& sink, FrameStatistics& statistics) : sink_(sink), statistics_(statistics) {}
  FrameCutter(const FrameCutter&) = delete;
  FrameCutter& operator=(const FrameCutter&) = delete;

  // Takes bytes without cutting them.
  void append(ByteView bytes);

  // Hands on every whole frame held, in order. While the marker is looked for it looks for that instead, and what
  // follows the marker is left for the next call.
  void cut();

  // The same as append() and then cut(), but copies only what the end of the bytes cuts off: whole frames are handed on
  // from where they lie.
  void cut(ByteView lastRead);

  // Forgets the bytes received so far. Called while frames are being handed on, it lets the frame in progress finish
  // and has the rest dropped.
  // Thread: any thread.
  void clear() { clears_.fetch_add(1); }

  // Whether somebody cleared while frames were being handed on.
  bool wasCleared() const { return clears_.load() != clearsSeen_; }

  // Whether the marker is being looked for.
  // Thread: any thread.
  bool needsMarker() const { return needsMarker_.load(); }
  void setNeedsMarker(bool needed) { needsMarker_.store(needed); }

  // A longer frame counts as a lost position, as every one does that is longer than kMaxFrameLength; photos may always
  // be of that length while somebody waits for one.
  // Units:  bytes, at most kMaxFrameLength.
  // Thread: any thread.
  void setLongestFrame(std::uint32_t bytes);

  // Bytes received and not yet consumed.
  ByteView held() const { return wasCleared() ? ByteView() : buffer_.view(); }
  // Memory held for them.
  std::size_t capacity() const { return buffer_.capacity(); }

 private:
  void forgetClearedBytes();
  bool hold(ByteView bytes);
  bool awaitsMore() const { return buffer_.size() < std::max(buffer_.awaited(), kFrameHeader); }
  void cutAppended();
  void cutInPlace(ByteView lastRead);
  void searchMarker();
  void startAfterMarker(std::size_t markerEnd);
  // The following return false when the bytes were cleared or the position lost, and what was read must not be touched
  // any more.
  bool cutHeld();
  bool completeHeld(ByteView& lastRead);
  bool losePosition();
  // Hands on the whole frames at the front of `bytes` and removes them. Returns the length of the frame that is cut, 0
  // when unknown; nullopt where those above return false.
  std::optional<std::size_t> walk(ByteView& bytes);
  bool isPossible(std::uint32_t length, std::uint16_t type);

  FrameSink& sink_;
  FrameStatistics& statistics_;
  ReceiveBuffer buffer_;
  std::uint64_t clearsSeen_ = 0;
  std::atomic<std::uint64_t> clears_ = 0;
  std::atomic<bool> needsMarker_ = false;
  std::atomic<std::uint32_t> longestFrame_ = kMaxFrameLength;
};

}  // namespace zel
