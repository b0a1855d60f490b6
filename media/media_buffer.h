#pragma once

#include <cstdint>
#include <utility>

#include "media/heap_bytes.h"

namespace orq {

// Shared bytes with a presentation time.
// Units:  timestamp in milliseconds, 0 until it is set.
// Thread: one at a time.
class MediaBuffer {
 public:
  MediaBuffer() = default;

  // Copies the bytes; null or a count below 1 makes an empty buffer. The timestamp is kept in both cases.
  MediaBuffer(const void* data, int size, unsigned long long timestamp) : timestamp_(timestamp) {
    bytes_.append(data, size);
  }

  explicit MediaBuffer(zel::HeapBytes bytes) : bytes_(std::move(bytes)) {}

  // Appends a copy of the bytes, which must not be the buffer's own; null or a count below 1 changes nothing.
  void AppendData(const void* data, int size) { bytes_.append(data, size); }

  // Null exactly when the size is 0.
  const std::uint8_t* data() const { return bytes_.data(); }
  std::uint8_t* data() { return bytes_.data(); }
  std::int32_t size() const { return bytes_.size(); }

  std::uint64_t timestamp() const { return timestamp_; }
  void setTimestamp(std::uint64_t timestamp) { timestamp_ = timestamp; }

 private:
  zel::HeapBytes bytes_;
  std::uint64_t timestamp_ = 0;
};

}  // namespace orq
