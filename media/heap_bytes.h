#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace zel {

// Bytes in one block of the C heap, which is exactly as large as they are; without bytes there is no block.
class HeapBytes {
 public:
  HeapBytes() = default;
  ~HeapBytes() { std::free(data_); }
  HeapBytes(const HeapBytes&) = delete;
  HeapBytes& operator=(const HeapBytes&) = delete;

  // Copies bytes, which must not be this object's own, behind those held. No spare capacity, so that a queue of these
  // holds no more memory than its bytes; realloc() can mostly extend the block where it lies.
  // Errors: nothing changes for null, for a count below 1, and where there is no memory for the bytes.
  void append(const void* source, std::int32_t count) {
    if (source == nullptr || count < 1 || count > std::numeric_limits<std::int32_t>::max() - size_) return;
    void* const grown = std::realloc(data_, static_cast<std::size_t>(size_) + static_cast<std::size_t>(count));
    if (grown == nullptr) return;
    data_ = static_cast<std::uint8_t*>(grown);
    std::memcpy(data_ + size_, source, static_cast<std::size_t>(count));
    size_ += count;
  }

  const std::uint8_t* data() const { return data_; }
  std::uint8_t* data() { return data_; }
  std::int32_t size() const { return size_; }

 private:
  std::uint8_t* data_ = nullptr;
  std::int32_t size_ = 0;
};

}  // namespace zel
