#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "media/media_buffer.h"

namespace orq {

// Cuts the camera's H.264 stream into NAL units at its start codes. The last unit of a chunk is held back, because only
// the next start code shows that it is complete. Every unit is a separate copy with timestamp 0.
//
//   chunk that begins with a start code:  what was held back goes out, the chunk is cut, its last unit is held back
//   any other chunk:                      continues what is held back, and cuts it where a start code shows
//
// Thread: one.
class H264NaluParser {
 public:
  using Unit = std::shared_ptr<MediaBuffer>;
  using Units = std::vector<Unit>;
  using TakeUnit = std::function<void(Unit)>;

  // More bytes than this without a start code are not H.264, and are dropped.
  static constexpr std::int32_t kLargestPending = 64 << 20;

  // Drops what is held back from fewer bytes on.
  void setLargestPending(std::int32_t bytes) { largestPending_ = bytes; }

  // Takes one received chunk and returns the complete units. Null or a count below 1 is ignored.
  Units AppendData(const void* data, int size);

  // The same, one unit at a time: a chunk may hold millions, of which each takes many times its own bytes.
  // Errors: where memory ends, or `take` throws, the rest of the chunk is lost and nothing is held back.
  void AppendData(const void* data, int size, const TakeUnit& take);

  // Cuts the held-back bytes, searching for start codes from `lookBack` bytes before their end on; the first unit
  // begins at offset `lookBack`.
  Units ProcessBuffer(int lookBack);

  // Bytes held back.
  std::int32_t pendingSize() const { return pending_ ? pending_->size() : 0; }

 private:
  void cutChunk(const std::uint8_t* data, std::int32_t size, const TakeUnit& take);
  void continuePending(const std::uint8_t* data, std::int32_t size, const TakeUnit& take);
  void cutBehindSeam(const std::uint8_t* data, std::int32_t size, std::int32_t lookBack, const TakeUnit& take);
  void processBuffer(int lookBack, const TakeUnit& take);
  void hold(const std::uint8_t* data, std::int32_t size);
  Unit takePending();

  std::int32_t largestPending_ = kLargestPending;
  Unit pending_;  // null where nothing is held back
};

}  // namespace orq
