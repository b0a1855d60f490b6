#pragma once

#include <cstddef>
#include <cstdint>

#include "base/wire.h"
#include "gateway/line/shared_bytes.h"

namespace zel::gateway {

// One frame of the camera's preview.
struct MediaItem {
  enum class Kind {
    video,
    audio,
    videoTime,
    audioTime,
    other,  // of a type that only hosts may know
  };

  Kind kind = Kind::other;
  SharedBytes frame;
  bool beginsPicture = false;  // a picture's first slice is in it
  // When the camera's clock stood at 0, on the line's clock: what a time counts from.
  std::int64_t zero = 0;

  bool isTime() const { return kind == Kind::videoTime || kind == Kind::audioTime; }
};

// The time frame as a host has it whose clock counts from another zero: each host's own comparison of the clocks sets
// the camera's clock to 0, and the others' times must go on.
inline SharedBytes timeSince(const MediaItem& item, std::int64_t zero) {
  if (item.zero == zero || item.frame.payload().size() < kTimestampPayload) return item.frame;
  const ByteView payload = item.frame.payload();
  // Unsigned, since a hostile time must wrap around.
  const auto shift = static_cast<std::uint64_t>(item.zero) - static_cast<std::uint64_t>(zero);
  Bytes time{payload[0]};
  appendLittleEndian(time, loadLittleEndian<std::uint64_t>(payload.data() + 1) + shift);
  return SharedBytes::frame(FrameType::timestamp, time, payload.subspan(kTimestampPayload));
}

}  // namespace zel::gateway
