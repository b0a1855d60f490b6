#include "simulator/host_frames.h"

#include <algorithm>
#include <utility>

namespace zel::simulator {
namespace {

constexpr std::size_t kFrameHeader = 4 + 2;                                      // length, data type
constexpr std::size_t kLongestFrame = kFrameHeader + 2 + 2 + 64 + kLargestFile;  // a file's type, reserved, path

std::uint16_t typeIn(const Bytes& header) { return numberAt<std::uint16_t>(header, 4); }

}  // namespace

void HostFrames::append(std::span<const std::uint8_t> bytes) {
  while (fault_.empty() && !bytes.empty())
    bytes = bytes.subspan(header_.size() < kFrameHeader ? takeHeader(bytes) : takePayload(bytes));
}

std::optional<HostFrame> HostFrames::next() {
  if (ready_.empty()) return std::nullopt;
  HostFrame frame = std::move(ready_.front());
  ready_.pop_front();
  return frame;
}

// | 0 | u32 | length, with these six bytes |
// | 4 | u16 | data type                    |
std::size_t HostFrames::takeHeader(std::span<const std::uint8_t> bytes) {
  const std::size_t taken = std::min(kFrameHeader - header_.size(), bytes.size());
  add(header_, bytes.first(taken));
  if (header_.size() == kFrameHeader) beginPayload();
  return taken;
}

void HostFrames::beginPayload() {
  const auto length = numberAt<std::uint32_t>(header_, 0);
  if (length < kFrameHeader || length > kLongestFrame) {
    fault_ = "the host sent a frame of " + std::to_string(length) + " bytes";
    return;
  }
  left_ = length - kFrameHeader;
  if (left_ == 0) endFrame();
}

std::size_t HostFrames::takePayload(std::span<const std::uint8_t> bytes) {
  const std::size_t taken = std::min(left_, bytes.size());
  const bool wanted = typeIn(header_) == kMessage || typeIn(header_) == kFile;
  const std::size_t size = payload_.size() + taken;
  if (wanted && size > payload_.capacity()) payload_.reserve(std::min(2 * size, payload_.size() + left_));
  if (wanted) add(payload_, bytes.first(taken));
  left_ -= taken;
  if (left_ == 0) endFrame();
  return taken;
}

void HostFrames::endFrame() {
  const std::uint16_t type = typeIn(header_);
  header_.clear();
  Bytes payload = std::exchange(payload_, {});
  if (type == kFile) return void(ready_.emplace_back(HostFile{std::move(payload)}));
  if (type != kMessage || payload.size() < 2) return;
  const auto code = numberAt<std::uint16_t>(payload, 0);
  payload.erase(payload.begin(), payload.begin() + 2);
  ready_.emplace_back(HostMessage{code, std::move(payload)});
}

}  // namespace zel::simulator
