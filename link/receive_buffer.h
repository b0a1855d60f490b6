#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>

#include "base/wire.h"

namespace zel {

// The bytes received and not yet consumed, in one piece. It doubles until the awaited frame fits, never holds more than
// twice the needed memory, and shrinks again after a large frame.
// Thread: one.
class ReceiveBuffer {
 public:
  // Whether append() needs no memory for so many bytes.
  bool hasRoomFor(std::size_t count) const { return count <= capacity_ - end_; }
  // Errors: std::bad_alloc; what was held is held still.
  void append(ByteView bytes) {
    if (bytes.empty()) return;
    if (!hasRoomFor(bytes.size())) makeRoom(bytes.size());
    std::memcpy(storage_.get() + std::exchange(end_, end_ + bytes.size()), bytes.data(), bytes.size());
  }
  ByteView view() const { return {storage_.get() + begin_, end_ - begin_}; }
  std::size_t size() const { return end_ - begin_; }

  // Removes bytes from the front, and sets the length of the frame that the rest begins (0 when unknown).
  void consume(std::size_t count, std::size_t awaited);
  void clear();

  // Length of the incomplete frame in the buffer; 0 when unknown.
  std::size_t awaited() const { return awaited_; }

  std::size_t capacity() const { return capacity_; }

 private:
  void makeRoom(std::size_t count);
  void shrink();
  void reallocate(std::size_t capacity);
  void moveToFront();

  std::unique_ptr<std::uint8_t[]> storage_;
  std::size_t capacity_ = 0;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::size_t awaited_ = 0;  // length of the incomplete frame, 0 when unknown
};

}  // namespace zel
