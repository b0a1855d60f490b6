#pragma once

#include <cstddef>

#include "base/wire.h"

namespace zel {

// Bytes queued for the camera, removed from the front as the stream accepts them.
// Removing moves no bytes until half of the memory is free, so that draining takes linear time.
// Thread: one at a time.
class WriteQueue {
 public:
  void append(ByteView bytes) { bytes_.insert(bytes_.end(), bytes.begin(), bytes.end()); }
  ByteView view() const { return ByteView(bytes_).subspan(taken_); }
  bool empty() const { return taken_ == bytes_.size(); }
  void removeFirst(std::size_t count);

 private:
  Bytes bytes_;
  std::size_t taken_ = 0;
};

}  // namespace zel
