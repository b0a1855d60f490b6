#include "simulator/host_frames.h"

namespace zel::simulator {
namespace {

constexpr std::size_t kLongestFrame = 256u * 1024 * 1024;  // an uploaded file is one frame

std::uint32_t number(const Bytes& bytes, std::size_t at, std::size_t size) {
  std::uint32_t value = 0;
  for (std::size_t i = size; i > 0; --i) value = (value << 8) | bytes[at + i - 1];
  return value;
}

}  // namespace

void HostFrames::append(std::span<const std::uint8_t> bytes) { held_.insert(held_.end(), bytes.begin(), bytes.end()); }

std::optional<HostMessage> HostFrames::next() {
  while (fault_.empty() && held_.size() >= 6) {
    const std::uint32_t length = number(held_, 0, 4);
    const std::uint32_t type = number(held_, 4, 2);
    if (length < 6 || length > kLongestFrame) {
      fault_ = "the host sent a frame of " + std::to_string(length) + " bytes";
      break;
    }
    if (held_.size() < length) break;
    const Bytes whole(held_.begin(), held_.begin() + static_cast<std::ptrdiff_t>(length));
    held_.erase(held_.begin(), held_.begin() + static_cast<std::ptrdiff_t>(length));
    if (type != kMessage || length < 8) continue;
    return HostMessage{static_cast<std::uint16_t>(number(whole, 6, 2)), Bytes(whole.begin() + 8, whole.end())};
  }
  return std::nullopt;
}

}  // namespace zel::simulator
