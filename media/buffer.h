#pragma once

#include <cstdint>

#include "media/heap_bytes.h"

namespace orq {

// Owned bytes that print what happens to them on standard output. Deliberate: people and scripts read these traces, so
// their wording stays, including the misleading prefixes.
// Thread: one.
class Buffer {
 public:
  // Copies the bytes and prints "size is N"; null or a count below 1 makes an empty buffer and prints nothing.
  Buffer(const void* data, int size);

  // Copies the bytes behind those held and prints "data is N" into an empty buffer, "333size is N" otherwise. Null or a
  // count below 1 changes nothing and prints "000size is N". The bytes must not be the buffer's own.
  void AppendData(const void* data, int size);

  // Null exactly when the size is 0.
  const std::uint8_t* data() const { return bytes_.data(); }
  std::int32_t size() const { return bytes_.size(); }

 private:
  zel::HeapBytes bytes_;
};

}  // namespace orq
