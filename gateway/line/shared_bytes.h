#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "base/wire.h"
#include "protocol/frame.h"

namespace zel::gateway {

// Bytes as they go out, immutable and shared by everybody to whom they go. Copying it copies no bytes.
class SharedBytes {
 public:
  // One frame: its header, and a copy of the payload's parts.
  static SharedBytes frame(FrameType type, ByteView payload, ByteView rest = {}) {
    const std::size_t size = kFrameHeader + payload.size() + rest.size();
    auto bytes = std::make_shared_for_overwrite<std::uint8_t[]>(size);
    Bytes header;
    appendLittleEndian(header, static_cast<std::uint32_t>(size));
    appendLittleEndian(header, static_cast<std::uint16_t>(type));
    std::uint8_t* to = std::ranges::copy(header, bytes.get()).out;
    to = std::ranges::copy(payload, to).out;
    std::ranges::copy(rest, to);
    return {std::move(bytes), size};
  }
  static SharedBytes copyOf(ByteView all) {
    auto bytes = std::make_shared_for_overwrite<std::uint8_t[]>(all.size());
    std::ranges::copy(all, bytes.get());
    return {std::move(bytes), all.size()};
  }

  ByteView view() const { return {bytes_.get(), size_}; }
  // Of a frame.
  ByteView payload() const { return view().subspan(kFrameHeader); }
  std::size_t size() const { return size_; }

 private:
  SharedBytes(std::shared_ptr<const std::uint8_t[]> bytes, std::size_t size) : bytes_(std::move(bytes)), size_(size) {}

  std::shared_ptr<const std::uint8_t[]> bytes_;
  std::size_t size_;
};

}  // namespace zel::gateway
