#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

// A shared copy of bytes.
class CBuffer {
 public:
  // data must hold that many bytes.
  CBuffer(const void* data, unsigned long size) : data_(new std::uint8_t[size]), size_(size) {
    const auto* const first = static_cast<const std::uint8_t*>(data);
    for (std::size_t i = 0; i < size; ++i) data_[i] = first[i];
  }
  CBuffer(const CBuffer&) = delete;
  CBuffer& operator=(const CBuffer&) = delete;

  std::uint8_t* data() { return data_.get(); }
  std::size_t size() const { return size_; }
  std::span<const std::uint8_t> bytes() const { return {data_.get(), size_}; }

 private:
  const std::unique_ptr<std::uint8_t[]> data_;
  const std::size_t size_;
};
