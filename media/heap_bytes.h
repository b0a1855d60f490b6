#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

namespace zel {

// Bytes in one heap block of exactly their size; no block without bytes.
class HeapBytes {
 public:
  HeapBytes() = default;
  ~HeapBytes() { std::free(data_); }
  HeapBytes(HeapBytes&& other) noexcept
      : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)) {}
  HeapBytes(const HeapBytes&) = delete;
  HeapBytes& operator=(const HeapBytes&) = delete;

  // Appends a copy of the bytes, which must not be this object's own. No spare capacity, so that a queue of these holds
  // no more memory than its bytes; realloc() can mostly extend the block in place.
  // Errors: nothing changes for null, for a count below 1, and when memory runs out.
  void append(const void* source, std::int32_t count) {
    const std::int32_t before = size_;
    if (source == nullptr || count < 1 || count > std::numeric_limits<std::int32_t>::max() - before) return;
    if (resize(before + count)) std::memcpy(data_ + before, source, static_cast<std::size_t>(count));
  }

  // Removes bytes from the end, or adds bytes with undefined values. size: at least 1.
  // Errors: false, and nothing changes, when memory runs out.
  bool resize(std::int32_t size) {
    void* const resized = std::realloc(data_, static_cast<std::size_t>(size));
    if (resized == nullptr && size > size_) return false;
    if (resized != nullptr) data_ = static_cast<std::uint8_t*>(resized);
    size_ = size;
    return true;
  }

  const std::uint8_t* data() const { return data_; }
  std::uint8_t* data() { return data_; }
  std::int32_t size() const { return size_; }

 private:
  std::uint8_t* data_ = nullptr;
  std::int32_t size_ = 0;
};

}  // namespace zel
