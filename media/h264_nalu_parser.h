#pragma once

#include <cstdint>
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
  using Units = std::vector<std::shared_ptr<MediaBuffer>>;

  // More bytes than this without a start code are not H.264, and are dropped.
  static constexpr std::int32_t kLargestPending = 64 << 20;

  // Takes one received chunk and returns the complete units. Null or a count below 1 is ignored.
  Units AppendData(const void* data, int size);

  // Cuts the held-back bytes, searching for start codes from `lookBack` bytes before their end on; the first unit
  // begins at offset `lookBack`.
  Units ProcessBuffer(int lookBack);

  // Bytes held back.
  std::int32_t pendingSize() const { return pending_->size(); }

 private:
  Units cutChunk(const std::uint8_t* data, std::int32_t size);
  Units continuePending(const std::uint8_t* data, std::int32_t size);
  Units cutBehindSeam(const std::uint8_t* data, std::int32_t size, std::int32_t lookBack);

  std::shared_ptr<MediaBuffer> pending_ = std::make_shared<MediaBuffer>();
};

}  // namespace orq
