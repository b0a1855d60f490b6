#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "base/wire.h"

namespace zel {

// The bytes received and not yet consumed, in one piece. Its memory follows the frame that it waits for: it grows by
// doubling up to that frame's length, never beyond twice what is needed, and shrinks again after a large frame.
// Thread: one.
class ReceiveBuffer {
 public:
  void append(ByteView bytes) {
    if (bytes.empty()) return;
    if (bytes.size() > capacity_ - end_) makeRoom(bytes.size());
    std::memcpy(storage_.get() + end_, bytes.data(), bytes.size());
    end_ += bytes.size();
  }
  ByteView view() const { return {storage_.get() + begin_, end_ - begin_}; }
  std::size_t size() const { return end_ - begin_; }

  // Removes bytes from the front, and tells how long the frame is that the rest waits for (0 when that is not known
  // yet).
  void consume(std::size_t count, std::size_t awaited);
  void clear();

  // Length of the frame whose beginning is held; 0 when that is not known yet.
  std::size_t awaited() const { return awaited_; }

  std::size_t capacity() const { return capacity_; }

 private:
  void makeRoom(std::size_t count);
  void reallocate(std::size_t capacity);
  void moveToFront();

  std::unique_ptr<std::uint8_t[]> storage_;
  std::size_t capacity_ = 0;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::size_t awaited_ = 0;  // length of the frame whose beginning is held, 0 when unknown
};

}  // namespace zel
