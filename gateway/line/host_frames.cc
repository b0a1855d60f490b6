#include "gateway/line/host_frames.h"

#include <algorithm>
#include <utility>

namespace zel::gateway {

std::optional<HostFrame> HostFrames::take(ByteView& bytes) {
  while (state_ != State::faulty && state_ != State::fileWaits) {
    const std::size_t count = std::min(missing(), bytes.size());
    if (state_ == State::passing) {
      passed_ += count;
    } else {
      frame_.insert(frame_.end(), bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count));
    }
    bytes = bytes.subspan(count);
    if (missing() != 0) return std::nullopt;
    if (state_ == State::header) {
      beginPayload();
      continue;
    }
    const bool isWanted = std::exchange(state_, State::header) == State::payload;
    HostFrame whole{type_, std::exchange(frame_, {})};
    if (isWanted) return whole;
  }
  return std::nullopt;
}

std::size_t HostFrames::missing() const {
  if (state_ == State::passing) return length_ - passed_;
  return (state_ == State::header ? kFrameHeader : length_) - frame_.size();
}

void HostFrames::beginPayload() {
  length_ = loadLittleEndian<std::uint32_t>(frame_.data());
  type_ = FrameType{loadLittleEndian<std::uint16_t>(frame_.data() + 4)};
  const bool isFile = type_ == FrameType::file;
  if (length_ < kFrameHeader || length_ > (isFile ? kMaxFrameLength : kLongestMessage)) {
    state_ = State::faulty;
  } else if (isFile) {
    state_ = State::fileWaits;
  } else if (type_ == FrameType::message) {
    state_ = State::payload;
  } else {
    state_ = State::passing;
    passed_ = kFrameHeader;
    frame_.clear();
  }
}

void HostFrames::admitFile() {
  if (state_ == State::fileWaits) state_ = State::payload;
}

}  // namespace zel::gateway
